// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <string>

namespace umbrixlib::test {

/// The two forms of a pipeline, as the parameter of a suite for both.
struct Form {
    char const* name;
    bool graphics; ///< The stages are those of the graphics library.
};
inline constexpr Form kCpu = {"Cpu", false};
inline constexpr Form kGpu = {"Gpu", true};

inline std::string name_of(testing::TestParamInfo<Form> const& info)
{
    return info.param.name;
}

} // namespace umbrixlib::test
