// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/umbrix_options.h"

#include <utility>

namespace umbrixlib::test {

/// A record with every stage at its neutral point, on the usual basis set.
inline umbrix_options neutral_options()
{
    umbrix_options options = {};
    options.rays = 1;
    options.radius = 0.25f;
    options.h_scale = 1.0f;
    options.alpha_limit = 120.0f;
    options.theta_limit = 120.0f;
    options.max = 255;
    options.h_max = 255;
    options.n_scale = 1.0f;
    options.basis_a = {-0.408248290f, 0.707106781f, 0.577350269f};
    options.basis_b = {-0.408248290f, -0.707106781f, 0.577350269f};
    options.basis_c = {1.224744871f, 0.0f, 0.577350269f};
    return options;
}

/// Releases the arrays that a run with `keep_buffers` left.
inline void release_kept(umbrix_options& options)
{
    delete[] std::exchange(options.ao_map, nullptr);
    delete[] std::exchange(options.normal_map, nullptr);
    delete[] std::exchange(options.height_copy, nullptr);
}

} // namespace umbrixlib::test
