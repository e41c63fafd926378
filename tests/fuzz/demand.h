// SPDX-License-Identifier: MIT
#pragma once

#include "float_bits.h"

#include <cstddef>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace umbrixlib::fuzz {

/// What libFuzzer takes for a finding.
[[noreturn]] inline void report(std::string const& what)
{
    std::fprintf(stderr, "broken: %s\n", what.c_str());
    __builtin_trap();
}

inline void demand(bool holds, std::string const& what)
{
    if (!holds) {
        report(what);
    }
}

/// The parts one after the other: the words for a case.
template <typename... Parts>
std::string words(Parts const&... parts)
{
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

/// Demands the same bits in images of float, float3 or float4.
template <typename Pixel>
void demand_same(std::vector<Pixel> const& expected, std::vector<Pixel> const& actual,
                 std::string const& what)
{
    demand(expected.size() == actual.size(), what + ": the sizes differ");
    auto const* const a = reinterpret_cast<float const*>(expected.data());
    auto const* const b = reinterpret_cast<float const*>(actual.data());
    for (std::size_t i = 0; i < expected.size() * (sizeof(Pixel) / sizeof(float)); ++i) {
        if (test::bits_of(a[i]) != test::bits_of(b[i])) {
            report(words(what, ": float ", i, " is ", std::hexfloat, b[i], ", and not ", a[i]));
        }
    }
}

} // namespace umbrixlib::fuzz
