// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/landlock_internal.h"

#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint64_t kExecute = LANDLOCK_ACCESS_FS_EXECUTE;
constexpr std::uint64_t kRead = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

/// Each version knows more. The header may be older than the kernel, so it is asked for the oldest only.
constexpr std::uint64_t kFilesOfFirst = (std::uint64_t{1} << 13) - 1;
constexpr std::uint64_t kRefer = std::uint64_t{1} << 13;    ///< Version 2: moves between folders.
constexpr std::uint64_t kTruncate = std::uint64_t{1} << 14; ///< 3.
constexpr std::uint64_t kDevices = std::uint64_t{1} << 15;  ///< 5: calls of devices.
constexpr std::uint64_t kNetwork = 3;                       ///< 4: TCP.
constexpr std::uint64_t kScope = 3; ///< 6: abstract sockets of others, and signals to them.

/// As the kernel of the latest version that we know takes it.
struct Ruleset {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scope = 0;
};

std::uint64_t files_known_to(long version)
{
    return kFilesOfFirst | (version >= 2 ? kRefer : 0) | (version >= 3 ? kTruncate : 0) |
           (version >= 5 ? kDevices : 0);
}

std::size_t size_known_to(long version)
{
    return version >= 6   ? sizeof(Ruleset)
           : version >= 4 ? offsetof(Ruleset, scope)
                          : offsetof(Ruleset, network);
}

void open_folder(int ruleset, std::string const& folder, std::uint64_t rights)
{
    landlock_path_beneath_attr rule{};
    rule.parent_fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    rule.allowed_access = rights;
    if (rule.parent_fd >= 0) {
        syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        close(rule.parent_fd);
    }
}

} // namespace

bool close_folders(OpenFolders const& folders)
{
    long const version = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return false;
    }
    Ruleset asked;
    asked.files = files_known_to(version);
    asked.network = kNetwork;
    asked.scope = kScope;
    auto const ruleset =
        static_cast<int>(syscall(SYS_landlock_create_ruleset, &asked, size_known_to(version), 0));
    if (ruleset < 0) {
        return false;
    }
    if (folders.all_read) {
        open_folder(ruleset, "/", kRead | kExecute);
    }
    for (std::string const& folder : folders.written) {
        open_folder(ruleset, folder, asked.files);
    }
    bool const closed =
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    close(ruleset);
    return closed;
}

} // namespace umbrixlib::toolkit
