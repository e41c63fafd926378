// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// When each kernel and each call of the image library ran inside a run of the pipeline. The functions are
/// taken over by name: this program defines them, notes the time, and calls those of the library.

#include <string>
#include <vector>

namespace umbrixlib::bench {

enum class Place {
    kDecoderOrEncoder,
    kKernel, ///< One of the operators that have a bar of their own.
    kOther,
};

struct Call {
    char const* name;
    Place place;
    double begin;
    double end;
};

void forget_calls();
/// In the order in which they began. Calls from several threads overlap.
std::vector<Call> calls();

} // namespace umbrixlib::bench
