// SPDX-License-Identifier: MIT
#include "temporary.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

constexpr char const* kPattern = ".umbrix-XXXXXX";

/// The access rights that the output will have: those of the file it replaces, or of any new file.
mode_t rights_for(fs::path const& target)
{
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0) {
        return status.st_mode & 07777U;
    }
    mode_t const mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

/// Renames unless @p to exists. File systems that cannot do that in one step get a hard link instead.
bool rename_to_new_name(fs::path const& from, fs::path const& to)
{
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

} // namespace

OutputFile::OutputFile(fs::path target, std::string const& extension) : target_(std::move(target))
{
    std::string name = (target_.parent_path() / kPattern).string() + extension;
    int const file = mkostemps(name.data(), static_cast<int>(extension.size()), O_CLOEXEC);
    if (file < 0) {
        throw Failure(target_.string(), std::string("its folder takes no new file: ") + std::strerror(errno),
                      "choose another folder with -o");
    }
    fchmod(file, rights_for(target_));
    close(file);
    temporary_ = name;
}

OutputFile::~OutputFile()
{
    if (!placed_) {
        unlink(temporary_.c_str());
    }
}

void OutputFile::move_into_place(bool overwrite)
{
    bool const done = overwrite ? std::rename(temporary_.c_str(), target_.c_str()) == 0
                                : rename_to_new_name(temporary_, target_);
    if (!done) {
        throw Failure(target_.string(),
                      std::string("the finished file cannot take its name: ") + std::strerror(errno),
                      errno == EEXIST ? "add --overwrite to replace it" : "check the folder");
    }
    placed_ = true;
}

ScratchFolder::ScratchFolder()
{
    std::error_code error;
    fs::path const parent = fs::temp_directory_path(error);
    std::string name = (parent / "umbrix-XXXXXX").string();
    if (error || mkdtemp(name.data()) == nullptr) {
        throw Failure(error ? "TMPDIR" : parent.string(),
                      "no folder for intermediate files can be made there",
                      "set TMPDIR to a folder that takes files");
    }
    path_ = name;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

} // namespace umbrix_cli
