// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/filter_internal.h"

#include "toolkit/base/failure.h"
#include "toolkit/workers/sandbox/system_calls_internal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

using Comparison = scmp_arg_cmp;

constexpr std::uint32_t kRefused = SCMP_ACT_ERRNO(EPERM);
constexpr scmp_datum_t kProcessOrNamespace = CLONE_VFORK | CLONE_PTRACE | CLONE_NEWNS | CLONE_NEWCGROUP |
                                             CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID |
                                             CLONE_NEWNET;

void check(int result)
{
    if (result != 0) {
        throw Failure(Fault::kNoSandbox, "umbrix",
                      std::string("its worker cannot give up its rights: ") + std::strerror(-result));
    }
}

class Filter {
public:
    explicit Filter(std::uint32_t default_action) : filter_(seccomp_init(default_action), seccomp_release)
    {
        check(filter_ ? 0 : -ENOMEM);
        // The worker has no secrets of others, and the guard against such leaks would cost a part of its
        // speed.
        check(seccomp_attr_set(filter_.get(), SCMP_FLTATR_CTL_SSB, 1));
        check(seccomp_attr_set(filter_.get(), SCMP_FLTATR_CTL_TSYNC, 1));
        check(seccomp_attr_set(filter_.get(), SCMP_FLTATR_API_SYSRAWRC, 1));
    }

    void set(std::uint32_t action, std::span<SystemCall const> calls)
    {
        for (SystemCall const& call : calls) {
            set(action, call.number, {});
        }
    }

    void set(std::uint32_t action, int call, std::initializer_list<Comparison> arguments)
    {
        if (call >= 0) {
            check(seccomp_rule_add_array(filter_.get(), action, call, static_cast<unsigned>(arguments.size()),
                                         arguments.begin()));
        }
    }

    void load() const { check(seccomp_load(filter_.get())); }

private:
    std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter_;
};

constexpr Comparison bits_are(unsigned argument, scmp_datum_t mask, scmp_datum_t value)
{
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}

constexpr Comparison is(unsigned argument, scmp_datum_t value)
{
    return {argument, SCMP_CMP_EQ, value, 0};
}

/// No code is made at run time.
void allow_memory(Filter& filter, bool of_files)
{
    filter.set(SCMP_ACT_ALLOW, SCMP_SYS(mprotect), {bits_are(2, PROT_EXEC, 0)});
    if (of_files) {
        filter.set(SCMP_ACT_ALLOW, SCMP_SYS(mmap), {bits_are(2, PROT_EXEC, 0)});
    } else {
        filter.set(SCMP_ACT_ALLOW, SCMP_SYS(mmap),
                   {bits_are(2, PROT_EXEC, 0), bits_are(3, MAP_ANONYMOUS, MAP_ANONYMOUS)});
    }
}

/// Threads of this process, which the C library asks for by clone() where there is no clone3(), whose
/// arguments a filter cannot see. Signals, limits and processors of none but these.
void allow_threads(Filter& filter)
{
    filter.set(SCMP_ACT_ALLOW, SCMP_SYS(clone),
               {bits_are(0, CLONE_THREAD | kProcessOrNamespace, CLONE_THREAD)});
    filter.set(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), {});
    filter.set(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), {is(0, static_cast<scmp_datum_t>(getpid()))});
    filter.set(SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), {is(0, 0)});
    filter.set(SCMP_ACT_ALLOW, SCMP_SYS(sched_setaffinity), {is(0, 0)});
}

void allow_descriptors(Filter& filter)
{
    for (scmp_datum_t const command : {F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL}) {
        filter.set(SCMP_ACT_ALLOW, SCMP_SYS(fcntl), {is(1, command)});
    }
}

} // namespace

void filter_system_calls(Rights rights, Service service)
{
    if (rights == Rights::kGraphics) {
        Filter filter(SCMP_ACT_ALLOW);
        filter.set(kRefused, calls_of_no_driver());
        filter.set(kRefused, SCMP_SYS(socket), {{0, SCMP_CMP_NE, AF_UNIX, 0}});
        filter.load();
        return;
    }
    bool const with_files = rights == Rights::kFolder;
    Filter filter(kRefused);
    filter.set(SCMP_ACT_ALLOW, calls_of_computing());
    allow_memory(filter, with_files);
    allow_threads(filter);
    allow_descriptors(filter);
    if (with_files) {
        filter.set(SCMP_ACT_ALLOW, calls_of_files());
    }
    if (service == Service::kManyJobs) {
        filter.set(SCMP_ACT_ALLOW, SCMP_SYS(recvmsg), {is(0, STDIN_FILENO)});
    }
    filter.load();
}

} // namespace umbrixlib::toolkit
