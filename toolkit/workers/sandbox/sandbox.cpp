// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/sandbox_internal.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/pictures/address_space.h"
#include "toolkit/workers/sandbox/filter_internal.h"
#include "toolkit/workers/sandbox/landlock_internal.h"
#include "toolkit/workers/sandbox/limits_internal.h"
#include "toolkit/workers/worker_channel.h"

#include <cstdlib>
#include <fmt/format.h>
#include <linux/capability.h>
#include <omp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

// Sanitizers read files, start processes, trace their own to look for leaks, and take memory. Sandboxes are
// tested in builds without them.
#if defined(UMBRIX_INSTRUMENTED)
constexpr bool kIsInstrumented = true;
#else
constexpr bool kIsInstrumented = false;
#endif

/// What the first process was handed by others and did not know of. Kernels before 5.9 leave it open.
void close_strange_descriptors()
{
#if defined(SYS_close_range)
    syscall(SYS_close_range, kEventDescriptor + 1, ~0U, 0);
#endif
}

/// What root may do and others may not, such as raising limits again.
void give_up_capabilities()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct const none[_LINUX_CAPABILITY_U32S_3]{};
    syscall(SYS_capset, &header, none);
}

/// How many processors OpenMP counts. It reads files and makes some when it is first asked, and LLVM's
/// removes at the end of the process what it has in /dev/shm, which the worker then may not: it is done now.
std::size_t processors_of_openmp()
{
    auto const processors = static_cast<std::size_t>(omp_get_num_procs());
#if defined(__clang__)
    shm_unlink(fmt::format("/__KMP_REGISTERED_LIB_{}_{}", getpid(), getuid()).c_str());
#endif
    return processors;
}

void open_files(NamedFiles const& files)
{
    rlimit limit{}; // a stack may have more layers than a process usually has files
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    auto const open = [](std::vector<std::string> const& names, OpenFor purpose) {
        for (std::string const& name : names) {
            if (!open_ahead(name, purpose)) {
                throw Failure(Fault::kTooManyFiles, name,
                              "it is one file more than the system lets a process open");
            }
        }
    };
    open(files.inputs, OpenFor::kReading);
    open(files.outputs, OpenFor::kWriting);
}

std::string variable(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// Where drivers write: to their devices, to what the system tells of the process itself, to temporary files
/// and to what they keep from run to run.
std::vector<std::string> folders_of_drivers()
{
    std::vector<std::string> folders{"/dev", "/proc", "/tmp"};
    for (char const* const name : {"TMPDIR", "XDG_CACHE_HOME", "POCL_CACHE_DIR", "CUDA_CACHE_PATH"}) {
        folders.push_back(variable(name));
    }
    if (std::string const home = variable("HOME"); !home.empty()) {
        folders.push_back(home + "/.cache");
        folders.push_back(home + "/.nv");
    }
    return folders;
}

OpenFolders open_folders(Job const& job, Rights rights)
{
    OpenFolders folders;
    if (rights == Rights::kGraphics) {
        folders.all_read = true;
        folders.written = folders_of_drivers();
    }
    if (auto const* const walk = std::get_if<FolderJob>(&job)) {
        folders.written.push_back(walk->folder);
    }
    return folders;
}

} // namespace

void enter_sandbox(Job const& job, Rights rights, Service service)
{
    if (rights == Rights::kAll) {
        return;
    }
    if (!kIsInstrumented) {
        close_strange_descriptors();
    }
    open_files(files_of(job));
    std::size_t const processors = processors_of_openmp();
    if (kIsInstrumented) {
        return;
    }
    set_limits(limits_of(job, service, processors, machine_memory()));
    if (rights == Rights::kDecoding) { // others open files of the user's by name
        give_up_capabilities();
    }
    if (can_take_rights()) {
        // `ps` tells the rights of a worker so.
        prctl(PR_SET_NAME, (std::string("umbrix-") + name_of(rights)).c_str());
        close_folders(open_folders(job, rights));
        filter_system_calls(rights, service);
    }
}

} // namespace umbrixlib::toolkit
