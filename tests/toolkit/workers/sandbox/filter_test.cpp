// SPDX-License-Identifier: MIT
/// What each filter lets a process call, and that it refuses everything else.
#include "toolkit/workers/sandbox/filter_internal.h"

#include "child.h"
#include "toolkit/workers/sandbox/system_calls_internal.h"

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <linux/sched.h>
#include <omp.h>
#include <poll.h>
#include <sched.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace umbrixlib::test {
namespace {

using toolkit::filter_system_calls;
using toolkit::Rights;
using toolkit::Service;
using toolkit::SystemCall;

constexpr long kCalls = 470; ///< More than any kernel of today has.

bool is_among(std::span<SystemCall const> calls, long number)
{
    return std::ranges::any_of(calls, [=](SystemCall const& call) { return call.number == number; });
}

/// Linux 6.11 ends a process that makes one of these, whatever its filter says.
bool is_of_the_kernel(long call)
{
#if defined(__x86_64__)
    return call == 335 || call == 336; // return from a probe of the kernel's
#else
    return call < 0;
#endif
}

/// How many calls that no table of @p rights names do not fail with EPERM.
int not_refused(Rights rights)
{
    filter_system_calls(rights);
    int count = 0;
    for (long call = 0; call < kCalls; ++call) {
        bool const allowed = is_among(toolkit::calls_of_computing(), call) ||
                             is_among(toolkit::calls_by_argument(), call) ||
                             (rights == Rights::kFolder && is_among(toolkit::calls_of_files(), call));
        int const expected = call == SYS_clone3 ? ENOSYS : EPERM;
        if (!allowed && !is_of_the_kernel(call) && error_of(call, -1L, -1L, -1L, -1L, -1L, -1L) != expected) {
            std::fprintf(stderr, "call %ld is not refused\n", call);
            ++count;
        }
    }
    return count;
}

TEST(SystemCallFilter, OfDecodingRefusesEveryCallThatItsTablesDoNotName)
{
    EXPECT_EQ(in_child([] { return not_refused(Rights::kDecoding); }), 0);
}

TEST(SystemCallFilter, OfFoldersRefusesEveryCallThatItsTablesDoNotName)
{
    EXPECT_EQ(in_child([] { return not_refused(Rights::kFolder); }), 0);
}

TEST(SystemCallFilter, OfDriversRefusesWhatNoDriverNeeds)
{
    EXPECT_EQ(in_child([] {
                  filter_system_calls(Rights::kGraphics);
                  for (SystemCall const& call : toolkit::calls_of_no_driver()) {
                      if (call.number >= 0 && error_of(call.number, -1L, -1L, -1L, -1L, -1L, -1L) != EPERM) {
                          std::fprintf(stderr, "%s is not refused\n", call.name);
                          return 1;
                      }
                  }
                  return 0;
              }),
              0);
}

TEST(SystemCallFilter, OfDriversLeavesSocketsOfThisMachineAlone)
{
    EXPECT_EQ(in_child([] {
                  filter_system_calls(Rights::kGraphics);
                  for (int const family : {AF_INET, AF_INET6, AF_NETLINK, AF_PACKET}) {
                      if (error_of(SYS_socket, family, SOCK_STREAM, 0) != EPERM) {
                          return 1;
                      }
                  }
                  return error_of(SYS_socket, AF_UNIX, SOCK_STREAM, 0);
              }),
              0);
}

/// Counts the calls that do not fail with EPERM, and names them.
class Attack {
public:
    template <typename... Words>
    void call(char const* what, long number, Words... words)
    {
        if (int const error = error_of(number, words...); error != EPERM) {
            std::fprintf(stderr, "%s gives %d\n", what, error);
            ++not_refused;
        }
    }

    int not_refused = 0;
};

constexpr char const* kFile = "/proc/self/status";

/// Does no harm where nothing refuses it.
int use_files_sockets_and_code()
{
    static char page[8192] = {};
    Attack attack;
    attack.call("openat", SYS_openat, AT_FDCWD, kFile, O_RDONLY);
    attack.call("memfd_create", SYS_memfd_create, "a", 0);
    attack.call("statx", SYS_statx, AT_FDCWD, kFile, 0, 0xfff, page);
    attack.call("unlinkat", SYS_unlinkat, AT_FDCWD, "/there/is/none", 0);
    attack.call("renameat2", SYS_renameat2, AT_FDCWD, "/there/is/none", AT_FDCWD, "/there/is/no/other", 0);
    attack.call("fchmod", SYS_fchmod, -1, 0600);
    attack.call("pipe2", SYS_pipe2, page, 0);
    attack.call("socket", SYS_socket, AF_INET, SOCK_STREAM, 0);
    attack.call("socket of this machine", SYS_socket, AF_UNIX, SOCK_STREAM, 0);
    attack.call("sendmsg", SYS_sendmsg, 0, nullptr, 0);
    attack.call("kill", SYS_kill, getppid(), 0);
    attack.call("tgkill of another", SYS_tgkill, getppid(), getppid(), 0);
    attack.call("prlimit64 of another", SYS_prlimit64, getppid(), RLIMIT_CORE, nullptr, nullptr);
    attack.call("sched_setaffinity of another", SYS_sched_setaffinity, getppid(), 0, page);
    attack.call("prctl", SYS_prctl, PR_SET_DUMPABLE, 1, 0, 0, 0);
    attack.call("ioctl", SYS_ioctl, 0, 0x5413, page);
    attack.call("fcntl, owner of signals", SYS_fcntl, 0, F_SETOWN, getpid());
    attack.call("mmap of code", SYS_mmap, nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS,
                -1, 0);
    attack.call("mmap of a file", SYS_mmap, nullptr, 4096, PROT_READ, MAP_PRIVATE, 0, 0);
    auto const of_data = (reinterpret_cast<std::uintptr_t>(page) + 4095) & ~std::uintptr_t{4095};
    attack.call("mprotect to code", SYS_mprotect, of_data, 4096, PROT_READ | PROT_WRITE | PROT_EXEC);
#if defined(SYS_open)
    attack.call("open", SYS_open, kFile, O_RDONLY);
    attack.call("stat", SYS_stat, kFile, page);
#endif
    return attack.not_refused;
}

/// Only for a process that cannot.
int become_others()
{
    static char shell[] = "/bin/true";
    static char* const words[] = {shell, nullptr};
    Attack attack;
    attack.call("execve", SYS_execve, shell, words, words + 1);
    attack.call("execveat", SYS_execveat, AT_FDCWD, shell, words, words + 1, 0);
    attack.call("clone of a process", SYS_clone, SIGCHLD, 0, 0, 0, 0);
    attack.call("clone as by posix_spawn", SYS_clone, CLONE_VM | CLONE_VFORK | SIGCHLD, 0, 0, 0, 0);
    attack.call("clone with a namespace", SYS_clone, CLONE_THREAD | CLONE_SIGHAND | CLONE_VM | CLONE_NEWNET,
                0, 0, 0, 0);
#if defined(SYS_fork)
    attack.call("fork", SYS_fork);
    attack.call("vfork", SYS_vfork);
#endif
    attack.call("ptrace", SYS_ptrace, 0, 0, 0, 0);
    attack.call("mount", SYS_mount, "none", "/there/is/none", "tmpfs", 0, "");
    attack.call("unshare", SYS_unshare, CLONE_NEWUSER);
    attack.call("setuid", SYS_setuid, getuid());
    attack.call("io_uring_setup", SYS_io_uring_setup, 1, nullptr);
    attack.call("bpf", SYS_bpf, 0, nullptr, 0);
    return attack.not_refused;
}

TEST(SystemCallFilter, OfDecodingRefusesFilesSocketsAndCode)
{
    EXPECT_EQ(in_child([] {
                  filter_system_calls(Rights::kDecoding);
                  return use_files_sockets_and_code();
              }),
              0);
    EXPECT_GT(in_child(use_files_sockets_and_code), 15) << "without a filter they reach the kernel";
}

TEST(SystemCallFilter, OfDecodingAndFoldersRefuseProcesses)
{
    for (Rights const rights : {Rights::kDecoding, Rights::kFolder}) {
        EXPECT_EQ(in_child([=] {
                      filter_system_calls(rights);
                      return become_others();
                  }),
                  0);
    }
}

TEST(SystemCallFilter, AnswersTheNewCloneAsAKernelWithoutIt)
{
    for (Rights const rights : {Rights::kDecoding, Rights::kFolder}) {
        EXPECT_EQ(in_child([=] {
                      filter_system_calls(rights);
                      clone_args arguments{};
                      arguments.exit_signal = SIGCHLD;
                      return error_of(SYS_clone3, &arguments, sizeof arguments);
                  }),
                  ENOSYS);
    }
}

/// Memory of every size, threads of three kinds, exceptions, sleep.
int compute()
{
    std::vector<std::vector<char>> blocks;
    for (std::size_t size = 1; size < (std::size_t{64} << 20); size *= 4) {
        blocks.emplace_back(size, 'a');
        blocks.back().resize(size * 2, 'b');
    }
    int threads = 0;
    std::thread([&] {
        std::vector<char> const other(300000, 'c'); // another pool of the C library
        threads += other[7] == 'c' ? 1 : 0;
    }).join();
    int team = 0;
#pragma omp parallel num_threads(3) reduction(+ : team)
    team += 1;
    int caught = 0;
    try {
        throw std::runtime_error("thrown");
    } catch (std::runtime_error const&) {
        caught = 1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return threads == 1 && team == 3 && caught == 1 ? 0 : 1;
}

TEST(SystemCallFilter, LeavesMemoryAndThreads)
{
    for (Rights const rights : {Rights::kDecoding, Rights::kFolder, Rights::kGraphics}) {
        EXPECT_EQ(in_child([=] {
                      omp_get_num_procs(); // OpenMP opens files when it is first asked
                      filter_system_calls(rights);
                      return compute();
                  }),
                  0);
    }
}

TEST(SystemCallFilter, LeavesDescriptorsThatAreOpen)
{
    for (Rights const rights : {Rights::kDecoding, Rights::kFolder, Rights::kGraphics}) {
        EXPECT_EQ(in_child([=] {
                      std::FILE* const file = std::tmpfile();
                      filter_system_calls(rights);
                      char text[6] = {};
                      bool const good = std::fputs("bytes", file) >= 0 && std::fflush(file) == 0 &&
                                        fsync(fileno(file)) == 0 && std::fseek(file, 0, SEEK_SET) == 0 &&
                                        std::fread(text, 1, 5, file) == 5 && std::string(text) == "bytes" &&
                                        ftruncate(fileno(file), 2) == 0;
                      pollfd waiting{fileno(file), POLLIN, 0};
                      return good && poll(&waiting, 1, 0) == 1 && std::fclose(file) == 0 ? 0 : 1;
                  }),
                  0);
    }
}

TEST(SystemCallFilter, LeavesManyJobsMessagesOfTheStandardInputAlone)
{
    auto const receive = [](Service service, int from) {
        return in_child([=] {
            int ends[2];
            if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0 || dup2(ends[0], STDIN_FILENO) < 0 ||
                write(ends[1], "x", 1) != 1) {
                return -1;
            }
            filter_system_calls(Rights::kDecoding, service);
            char byte = 0;
            iovec text{&byte, 1};
            msghdr message{};
            message.msg_iov = &text;
            message.msg_iovlen = 1;
            return error_of(SYS_recvmsg, from == STDIN_FILENO ? from : ends[0], &message, 0);
        });
    };
    EXPECT_EQ(receive(Service::kManyJobs, STDIN_FILENO), 0);
    EXPECT_EQ(receive(Service::kManyJobs, 1), EPERM);
    EXPECT_EQ(receive(Service::kOneJob, STDIN_FILENO), EPERM);
}

TEST(SystemCallFilter, LeavesManyJobsNoOtherFilesOrSockets)
{
    EXPECT_EQ(in_child([] {
                  filter_system_calls(Rights::kDecoding, Service::kManyJobs);
                  return use_files_sockets_and_code();
              }),
              0);
}

TEST(SystemCallFilter, LeavesTheWalkOfAFolderItsFiles)
{
    EXPECT_EQ(in_child([] {
                  filter_system_calls(Rights::kFolder);
                  return status_line("Seccomp") == "2" && status_line("NoNewPrivs") == "1" ? 0 : 1;
              }),
              0);
}

TEST(SystemCallFilter, LeavesAnAbortItsSignal)
{
    EXPECT_EQ(in_child([]() -> int {
                  rlimit const no_core{};
                  setrlimit(RLIMIT_CORE, &no_core);
                  filter_system_calls(Rights::kDecoding);
                  std::abort();
              }),
              -SIGABRT);
}

TEST(SystemCallFilter, HoldsForThreadsThatHadBegunBefore)
{
    EXPECT_EQ(in_child([] {
                  int ends[2];
                  if (pipe(ends) != 0) {
                      return 1;
                  }
                  int error = 0;
                  std::thread other([&] {
                      char byte = 0;
                      static_cast<void>(!read(ends[0], &byte, 1));
                      error = error_of(SYS_socket, AF_UNIX, SOCK_STREAM, 0);
                  });
                  filter_system_calls(Rights::kDecoding);
                  static_cast<void>(!write(ends[1], "x", 1));
                  other.join();
                  return error;
              }),
              EPERM);
}

} // namespace
} // namespace umbrixlib::test
