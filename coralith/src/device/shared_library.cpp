// SPDX-License-Identifier: MIT
#include "device/shared_library.h"

#include <fstream>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>
#endif

namespace coralith {

#if defined(_WIN32)

SharedLibrary::SharedLibrary(std::string const& name) : handle_(LoadLibraryA(name.c_str()))
{
    if (handle_ == nullptr) {
        fault_ = name + ": error " + std::to_string(GetLastError());
    }
}

void* SharedLibrary::symbol(char const* name) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::string own_folder()
{
    HMODULE module = nullptr;
    char path[MAX_PATH] = {};
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<char const*>(&own_folder), &module);
    std::string const file(path, GetModuleFileNameA(module, path, sizeof path));
    return file.substr(0, file.find_last_of("\\/") + 1);
}

long process_number()
{
    return static_cast<long>(GetCurrentProcessId());
}

#else

SharedLibrary::SharedLibrary(std::string const& name) : handle_(dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (handle_ == nullptr) {
        char const* const message = dlerror();
        fault_ = message != nullptr ? message : name;
    }
}

void* SharedLibrary::symbol(char const* name) const
{
    return dlsym(handle_, name);
}

std::string own_folder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void const*>(&own_folder), &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    std::string const file = info.dli_fname;
    return file.substr(0, file.find_last_of('/') + 1);
}

long process_number()
{
    return static_cast<long>(getpid());
}

#endif

bool file_exists(std::string const& path)
{
    return std::ifstream(path).good();
}

} // namespace coralith
