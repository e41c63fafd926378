// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_program.h"

#include "toolkit/base/failure.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

/// The folder of this library, links resolved. Empty if the system does not tell it.
fs::path library_folder()
{
    Dl_info library = {};
    if (dladdr(reinterpret_cast<void*>(&library_folder), &library) == 0) {
        return {};
    }
    std::error_code error;
    return fs::canonical(library.dli_fname, error).parent_path();
}

/// As the library was loaded: its name may be relative to the working directory, which can change later.
fs::path const library_folder_at_start = library_folder();

} // namespace

fs::path worker_program()
{
    fs::path const installed = (library_folder_at_start / UMBRIX_INSTALLED_WORKER).lexically_normal();
    fs::path const built = (library_folder_at_start / UMBRIX_BUILT_WORKER).lexically_normal();
    for (fs::path const& each : {installed, built}) {
        if (each.is_absolute() && access(each.c_str(), X_OK) == 0) {
            return each;
        }
    }
    throw Failure(Fault::kMissingWorker, installed.string(),
                  "the program that works on pictures is not there, or cannot be run");
}

} // namespace umbrixlib::toolkit
