// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "picture_depths.h"
#include "random_image.h"
#include "temporary_folder.h"
#include "test_picture.h"
#include "umbrix_test_options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <omp.h>

namespace umbrixlib::test {

/// A picture of noise.
inline Picture noise_picture(int width, int height, int channels, std::uint32_t seed = 11)
{
    Picture picture(width, height, channels, 0);
    auto const noise = random_image<float>(picture.bytes.size(), seed);
    std::transform(noise.begin(), noise.end(), picture.bytes.begin(),
                   [](float v) { return static_cast<unsigned char>(v * 255.0f); });
    return picture;
}

/// Options under which every stage but the filters of normals has something to do.
inline umbrix_options busy_options()
{
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.rays = 9;
    options.radius = 0.5f;
    options.h_scale = 0.2f;
    options.tile = options.h_tile = options.v_tile = true;
    options.contrast = 0.125f;
    options.brightness = 0.0625f;
    options.h_contrast = -0.25f;
    options.smooth = 0.75f;
    options.h_smooth = 1.25f;
    options.n_scale = 4.0f;
    options.UmbrixMode = Modes_FlatIsFull;
    return options;
}

/// Runs from file to file in a folder of their own, without layers.
class FileRun : public testing::Test {
protected:
    FileRun()
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
    }

    std::string file(char const* name) const { return (folder_ / name).string(); }
    Picture load(char const* name) const { return Picture::load(folder_ / name); }

    TemporaryFolder folder_;
    LinkedList<n_layer> layers_;
    std::string status_;
    int progress_ = 0;
};

} // namespace umbrixlib::test
