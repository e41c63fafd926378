// SPDX-License-Identifier: MIT
#include "toolkit/files/temporary.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/file_rights.h"

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
constexpr char const* kRandom = "XXXXXX"; // which the system fills in

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

/// Makes an empty file with a name between @p prefix and @p extension, and locks it.
Made make_locked(std::string const& prefix, std::string const& extension)
{
    for (;;) {
        std::string name = fmt::format("{}{}{}", prefix, kRandom, extension);
        int const descriptor = mkostemps(name.data(), static_cast<int>(extension.size()), O_CLOEXEC);
        if (descriptor < 0) {
            return {};
        }
        auto lock = std::make_unique<TemporaryLock>(descriptor);
        if (lock->hold(name)) {
            return {name, std::move(lock)};
        }
    }
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

std::string output_prefix()
{
    return kOutput + machine_tag();
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
    Made made = make_locked((target_.parent_path() / output_prefix()).string(), extension);
    if (!made.lock) {
        throw Failure(Fault::kFolderTakesNoFile, target_.string(),
                      std::string("its folder takes no new file: ") + std::strerror(errno));
    }
    temporary_ = std::move(made.path);
    lock_ = std::move(made.lock);
    take_rights(lock_->descriptor(), target_);
}

OutputFile::~OutputFile()
{
    if (!placed_) {
        unlink(temporary_.c_str());
    }
}

void OutputFile::move_into_place(bool overwrite)
{
    if (!lock_->is_on(temporary_)) {
        placed_ = true; // what has the name now is not ours to remove
        throw Failure(Fault::kNameNotTaken, target_.string(),
                      "another program has replaced or removed the file that it was written to");
    }
    bool const done = overwrite ? std::rename(temporary_.c_str(), target_.c_str()) == 0
                                : rename_to_new_name(temporary_, target_);
    if (!done) {
        throw Failure(errno == EEXIST ? Fault::kOutputAppeared : Fault::kNameNotTaken, target_.string(),
                      std::string("the finished file cannot take its name: ") + std::strerror(errno));
    }
    placed_ = true;
}

} // namespace umbrixlib::toolkit
