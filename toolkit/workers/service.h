// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// How long a worker is of service.
enum class Service {
    kOneJob,
    /// Jobs one after the other, all of the same rights and limits, until one fails.
    kManyJobs
};

/// As a worker is told, in their order.
inline constexpr char const* kServiceNames[] = {"one", "many"};

constexpr char const* name_of(Service service)
{
    return kServiceNames[static_cast<int>(service)];
}

} // namespace umbrixlib::toolkit
