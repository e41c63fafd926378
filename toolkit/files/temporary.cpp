// SPDX-License-Identifier: MIT
#include "toolkit/files/temporary.h"

#include "toolkit/base/failure.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr char const* kOutput = ".umbrix-";
constexpr char const* kScratch = "umbrix-";
constexpr char const* kRandom = "XXXXXX"; // which the system fills in

constexpr int kFailed = -1;
constexpr int kTryAgain = -2;

/// Eight digits for the name of this machine.
std::string machine_tag()
{
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    std::uint32_t hash = 2166136261U; // FNV-1a
    for (char const* letter = name; *letter != '\0'; ++letter) {
        hash = (hash ^ static_cast<unsigned char>(*letter)) * 16777619U;
    }
    return fmt::format("{:08x}-", hash);
}

struct Made {
    fs::path path;
    std::unique_ptr<TemporaryLock> lock; ///< Null if nothing could be made; errno tells why.
};

/// Makes something with a name after @p pattern, and locks it. @p make is given the pattern, fills in its
/// kRandom and returns a descriptor, or kFailed with errno, or kTryAgain.
template <typename Make>
Made make_locked(std::string const& pattern, Make&& make)
{
    for (;;) {
        std::string name = pattern;
        int const descriptor = make(name.data());
        if (descriptor == kFailed) {
            return {};
        }
        if (descriptor == kTryAgain) {
            continue;
        }
        auto lock = std::make_unique<TemporaryLock>(descriptor);
        if (lock->hold(name)) {
            return {name, std::move(lock)};
        }
    }
}

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

/// Fills in @p name, as make_locked has it.
int make_folder(char* name)
{
    if (mkdtemp(name) == nullptr) {
        return kFailed;
    }
    int const folder = open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        return folder;
    }
    if (errno == ENOENT) {
        return kTryAgain; // taken for a leftover
    }
    rmdir(name);
    return kFailed;
}

} // namespace

std::string output_prefix()
{
    return kOutput + machine_tag();
}

std::string scratch_prefix()
{
    return kScratch + machine_tag();
}

bool is_temporary_name(fs::path const& file)
{
    return file.filename().string().starts_with(kOutput);
}

fs::path output_folder(fs::path const& target)
{
    std::error_code error;
    fs::path const behind_links = fs::weakly_canonical(target, error);
    fs::path const& file = error ? target : behind_links;
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

OutputFile::OutputFile(fs::path target, std::string const& extension) : target_(std::move(target))
{
    Made made = make_locked(
        (target_.parent_path() / output_prefix()).string() + kRandom + extension, [&](char* name) {
            int const file = mkostemps(name, static_cast<int>(extension.size()), O_CLOEXEC);
            if (file >= 0) {
                fchmod(file, rights_for(target_));
            }
            return file;
        });
    if (!made.lock) {
        throw Failure(Fault::kFolderTakesNoFile, target_.string(),
                      std::string("its folder takes no new file: ") + std::strerror(errno));
    }
    temporary_ = std::move(made.path);
    lock_ = std::move(made.lock);
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
        throw Failure(errno == EEXIST ? Fault::kOutputAppeared : Fault::kNameNotTaken, target_.string(),
                      std::string("the finished file cannot take its name: ") + std::strerror(errno));
    }
    placed_ = true;
}

ScratchFolder::ScratchFolder()
{
    std::error_code error;
    fs::path const parent = fs::temp_directory_path(error);
    Made made;
    if (!error) {
        made = make_locked((parent / scratch_prefix()).string() + kRandom, make_folder);
    }
    if (!made.lock) {
        throw Failure(Fault::kNoScratchFolder, error ? "TMPDIR" : parent.string(),
                      "no folder for intermediate files can be made there");
    }
    path_ = std::move(made.path);
    lock_ = std::move(made.lock);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

} // namespace umbrixlib::toolkit
