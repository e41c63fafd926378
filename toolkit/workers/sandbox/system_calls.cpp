// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/system_calls_internal.h"

namespace umbrixlib::toolkit {

#define UMBRIX_CALL(name)                                                                                    \
    SystemCall                                                                                               \
    {                                                                                                        \
#name, SCMP_SYS(name)                                                                                \
    }

std::span<SystemCall const> calls_of_computing()
{
    static constexpr SystemCall kCalls[] = {
        // Descriptors that are open.
        UMBRIX_CALL(read),
        UMBRIX_CALL(write),
        UMBRIX_CALL(readv),
        UMBRIX_CALL(writev),
        UMBRIX_CALL(pread64),
        UMBRIX_CALL(pwrite64),
        UMBRIX_CALL(lseek),
        UMBRIX_CALL(fstat),
        UMBRIX_CALL(fstatfs),
        UMBRIX_CALL(ftruncate),
        UMBRIX_CALL(fsync),
        UMBRIX_CALL(fdatasync),
        UMBRIX_CALL(close),
        UMBRIX_CALL(poll),
        UMBRIX_CALL(ppoll),
        // Memory.
        UMBRIX_CALL(brk),
        UMBRIX_CALL(munmap),
        UMBRIX_CALL(mremap),
        UMBRIX_CALL(madvise),
        // Threads and their signals.
        UMBRIX_CALL(futex),
        UMBRIX_CALL(sched_yield),
        UMBRIX_CALL(sched_getaffinity),
        UMBRIX_CALL(getcpu),
        UMBRIX_CALL(membarrier),
        UMBRIX_CALL(rseq),
        UMBRIX_CALL(set_robust_list),
        UMBRIX_CALL(set_tid_address),
        UMBRIX_CALL(gettid),
        UMBRIX_CALL(getpid),
        UMBRIX_CALL(getuid),
        UMBRIX_CALL(rt_sigaction),
        UMBRIX_CALL(rt_sigprocmask),
        UMBRIX_CALL(rt_sigreturn),
        UMBRIX_CALL(sigaltstack),
        UMBRIX_CALL(restart_syscall),
        UMBRIX_CALL(exit),
        UMBRIX_CALL(exit_group),
        // Time, chance, the size of the machine.
        UMBRIX_CALL(clock_gettime),
        UMBRIX_CALL(clock_getres),
        UMBRIX_CALL(clock_nanosleep),
        UMBRIX_CALL(nanosleep),
        UMBRIX_CALL(gettimeofday),
        UMBRIX_CALL(time),
        UMBRIX_CALL(getrandom),
        UMBRIX_CALL(sysinfo),
        UMBRIX_CALL(getrusage),
        UMBRIX_CALL(getrlimit),
        UMBRIX_CALL(setrlimit),
    };
    return kCalls;
}

std::span<SystemCall const> calls_by_argument()
{
    static constexpr SystemCall kCalls[] = {
        UMBRIX_CALL(mmap),
        UMBRIX_CALL(mprotect),
        UMBRIX_CALL(fcntl),
        UMBRIX_CALL(clone),
        UMBRIX_CALL(tgkill),
        UMBRIX_CALL(prlimit64),
        UMBRIX_CALL(sched_setaffinity),
        UMBRIX_CALL(recvmsg),
    };
    return kCalls;
}

std::span<SystemCall const> calls_of_files()
{
    static constexpr SystemCall kCalls[] = {
        UMBRIX_CALL(open),       UMBRIX_CALL(openat),     UMBRIX_CALL(creat),      UMBRIX_CALL(stat),
        UMBRIX_CALL(lstat),      UMBRIX_CALL(newfstatat), UMBRIX_CALL(statx),      UMBRIX_CALL(statfs),
        UMBRIX_CALL(access),     UMBRIX_CALL(faccessat),  UMBRIX_CALL(faccessat2), UMBRIX_CALL(getcwd),
        UMBRIX_CALL(chdir),      UMBRIX_CALL(fchdir),     UMBRIX_CALL(getdents64), UMBRIX_CALL(readlink),
        UMBRIX_CALL(readlinkat), UMBRIX_CALL(unlink),     UMBRIX_CALL(unlinkat),   UMBRIX_CALL(rename),
        UMBRIX_CALL(renameat),   UMBRIX_CALL(renameat2),
    };
    return kCalls;
}

std::span<SystemCall const> calls_of_no_driver()
{
    static constexpr SystemCall kCalls[] = {
        // Other processes.
        UMBRIX_CALL(ptrace),
        UMBRIX_CALL(process_vm_readv),
        UMBRIX_CALL(process_vm_writev),
        UMBRIX_CALL(process_madvise),
        UMBRIX_CALL(pidfd_getfd),
        UMBRIX_CALL(kcmp),
        UMBRIX_CALL(perf_event_open),
        // What a filter cannot look into.
        UMBRIX_CALL(io_uring_setup),
        UMBRIX_CALL(io_uring_enter),
        UMBRIX_CALL(io_uring_register),
        UMBRIX_CALL(bpf),
        UMBRIX_CALL(userfaultfd),
        // Keys, namespaces, file systems.
        UMBRIX_CALL(add_key),
        UMBRIX_CALL(request_key),
        UMBRIX_CALL(keyctl),
        UMBRIX_CALL(unshare),
        UMBRIX_CALL(setns),
        UMBRIX_CALL(chroot),
        UMBRIX_CALL(pivot_root),
        UMBRIX_CALL(mount),
        UMBRIX_CALL(umount2),
        UMBRIX_CALL(move_mount),
        UMBRIX_CALL(open_tree),
        UMBRIX_CALL(fsopen),
        UMBRIX_CALL(fsconfig),
        UMBRIX_CALL(fsmount),
        UMBRIX_CALL(fspick),
        UMBRIX_CALL(mount_setattr),
        UMBRIX_CALL(open_by_handle_at),
        UMBRIX_CALL(name_to_handle_at),
        UMBRIX_CALL(quotactl),
        // The machine.
        UMBRIX_CALL(reboot),
        UMBRIX_CALL(kexec_load),
        UMBRIX_CALL(kexec_file_load),
        UMBRIX_CALL(init_module),
        UMBRIX_CALL(finit_module),
        UMBRIX_CALL(delete_module),
        UMBRIX_CALL(swapon),
        UMBRIX_CALL(swapoff),
        UMBRIX_CALL(acct),
        UMBRIX_CALL(syslog),
        UMBRIX_CALL(vhangup),
        UMBRIX_CALL(iopl),
        UMBRIX_CALL(ioperm),
        UMBRIX_CALL(sethostname),
        UMBRIX_CALL(setdomainname),
        UMBRIX_CALL(settimeofday),
        UMBRIX_CALL(clock_settime),
        UMBRIX_CALL(clock_adjtime),
        UMBRIX_CALL(adjtimex),
    };
    return kCalls;
}

#undef UMBRIX_CALL

} // namespace umbrixlib::toolkit
