// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/limits_internal.h"

#include <algorithm>
#include <limits>
#include <sys/resource.h>

namespace umbrixlib::toolkit {

namespace {

constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;
constexpr double kProgram = kGibibyte;
constexpr double kThread =
    kGibibyte / 8;                     ///< A stack, and the room for a pool that the C library keeps for it.
constexpr double kBytesPerTexel = 256; ///< Of each picture, with all that is made of it; twice what was seen.
constexpr double kBytesInFile = 32;    ///< Four floats, and as much again.
constexpr double kBesideTexels = kGibibyte / 16;
constexpr double kFileOfWalk = 64 * kGibibyte; ///< Its pictures may be of any size.
constexpr double kFileOfDriver = kGibibyte;    ///< Of what it compiles.
constexpr double kSecondsPerProcessor = 86400;
constexpr double kNone = std::numeric_limits<double>::infinity();

void lower(rlim_t& limit, double most)
{
    if (most < static_cast<double>(limit)) {
        limit = static_cast<rlim_t>(most);
    }
}

/// Lowers a limit for good.
/// @param beyond How much more than @p most is refused without a signal that tells the reason.
template <typename Resource>
void lower(Resource resource, double most, double beyond = 0)
{
    rlimit limit{};
    getrlimit(resource, &limit);
    lower(limit.rlim_cur, most);
    lower(limit.rlim_max, most + beyond);
    setrlimit(resource, &limit);
}

} // namespace

Limits limits_of(Job const& job, Service service, std::size_t processors, double memory)
{
    bool const by_driver = rights_of(job) == Rights::kGraphics;
    auto const threads = static_cast<double>(processors);
    Pictures const pictures = pictures_of(job);
    double const of_pictures = std::min(kBytesPerTexel * pictures.texels * pictures.count, memory);
    double const of_output =
        files_of(job).outputs.empty() ? 0 : kBytesInFile * pictures.texels + kBesideTexels;

    Limits limits{};
    limits.memory = by_driver ? kNone : kProgram + kThread * threads + of_pictures;
    limits.file = std::holds_alternative<FolderJob>(job) ? kFileOfWalk : of_output;
    if (by_driver) {
        limits.file = std::max(limits.file, kFileOfDriver);
    }
    limits.cpu_seconds =
        kSecondsPerProcessor * threads + (service == Service::kManyJobs ? kCpuSecondsOfService : 0);
    return limits;
}

void set_limits(Limits const& limits)
{
    lower(RLIMIT_AS, limits.memory);
    lower(RLIMIT_FSIZE, limits.file);
    lower(RLIMIT_CPU, limits.cpu_seconds, 1);
    lower(RLIMIT_CORE, 0);
}

} // namespace umbrixlib::toolkit
