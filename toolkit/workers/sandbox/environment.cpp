// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/environment_internal.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

/// A star stands for any letters, at one end of a name.
constexpr std::string_view kOfAllWorkers[] = {
    "LANG",       "LC_*",           "TZ",           "TMPDIR",          "OMP_*",
    "MALLOC_*",   "GLIBC_TUNABLES", "*SAN_OPTIONS", "LD_LIBRARY_PATH",
    "LD_PRELOAD", // which is in the first process already
};

/// Besides: where drivers find devices, and keep what they compile.
constexpr std::string_view kOfDrivers[] = {
    "OCL_*", "POCL_*", "CUDA_*", "NVIDIA_*", "CORALITH_*", "XDG_CACHE_HOME", "HOME", "PATH",
};

constexpr std::string_view kTooFewThreads[] = {
    "OMP_THREAD_LIMIT", "OMP_DYNAMIC", "OMP_PROC_BIND", "OMP_PLACES", "OMP_MAX_ACTIVE_LEVELS", "OMP_NESTED",
};

/// Set unless the user sets them. Large pages for what malloc() gives: a picture of 4096 x 4096 is 12,000
/// pages of the usual size, and the system takes as long to find them as a kernel to fill them.
constexpr std::string_view kUnlessGiven[] = {
    "OMP_WAIT_POLICY=passive",
    "GLIBC_TUNABLES=glibc.malloc.hugetlb=1",
};

bool is_among(std::span<std::string_view const> patterns, std::string_view name)
{
    return std::ranges::any_of(patterns, [=](std::string_view pattern) {
        if (pattern.ends_with('*')) {
            return name.starts_with(pattern.substr(0, pattern.size() - 1));
        }
        return pattern.starts_with('*') ? name.ends_with(pattern.substr(1)) : name == pattern;
    });
}

bool is_wanted(std::string_view name, std::string_view value, Rights rights, std::size_t processors)
{
    if (name == "OMP_NUM_THREADS") {
        char* end = nullptr;
        unsigned long const threads = std::strtoul(value.data(), &end, 10);
        return threads == processors && *end == '\0';
    }
    if (is_among(kTooFewThreads, name)) {
        return false;
    }
    return rights == Rights::kAll || is_among(kOfAllWorkers, name) ||
           (rights == Rights::kGraphics && is_among(kOfDrivers, name));
}

} // namespace

std::vector<std::string> worker_environment(char const* const* all, Rights rights, std::size_t processors)
{
    std::vector<std::string> kept{"OMP_DYNAMIC=false"};
    for (; *all != nullptr; ++all) {
        std::string_view const variable = *all;
        std::size_t const name_size = variable.find('=');
        if (name_size != std::string_view::npos &&
            is_wanted(variable.substr(0, name_size), variable.substr(name_size + 1), rights, processors)) {
            kept.emplace_back(variable);
        }
    }
    for (std::string_view const variable : kUnlessGiven) {
        std::string_view const start = variable.substr(0, variable.find('=') + 1);
        if (std::ranges::none_of(kept, [=](std::string const& each) { return each.starts_with(start); })) {
            kept.emplace_back(variable);
        }
    }
    return kept;
}

} // namespace umbrixlib::toolkit
