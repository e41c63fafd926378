// SPDX-License-Identifier: MIT
#pragma once

#include "call_log.h"
#include "devil_fake.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "umbrix_test_options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <omp.h>

namespace umbrixlib::test {

/// Pictures for layers, stand-ins for DevIL and the kernels, and a list of descriptions.
class LayerRun : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        DevilFake& devil = DevilFake::instance();
        devil.serve(4, 4, 32);
        devil.files["in.png"] = {4, 4, 32, devil.served};
        provide("same.png", 4, 4, 11);
        provide("wide.png", 6, 2, 5);
        provide("large.png", 8, 8, 3);
        provide("flat.png", 4, 4, 0);
    }

    /// A grey picture whose texel i has the byte 10 + i * @p step, modulo 256.
    static void provide(char const* name, int width, int height, int step)
    {
        DevilFake::File file{width, height, 24, {}};
        for (int i = 0; i < width * height; ++i) {
            file.bytes.insert(file.bytes.end(), 3, static_cast<unsigned char>(10 + i * step));
        }
        DevilFake::instance().files[name] = file;
    }

    void describe(std::initializer_list<char const*> files)
    {
        for (char const* const file : files) {
            n_layer record;
            record.filename = file;
            record.n_scale = 1.0f;
            record.normal_scale = 1.0f;
            record.opacity = 100.0f;
            layers_.Add(record);
        }
    }

    static umbrix_options kept_options()
    {
        umbrix_options options = neutral_options();
        options.keep_buffers = true;
        options.preserve = true;
        return options;
    }

    static std::ptrdiff_t calls_starting_with(char const* start)
    {
        auto const& calls = CallLog::instance().calls();
        return std::count_if(calls.begin(), calls.end(),
                             [&](std::string const& call) { return call.rfind(start, 0) == 0; });
    }

    static float height_of(char const* file, std::size_t texel)
    {
        return static_cast<float>(DevilFake::instance().files[file].bytes[3 * texel] / 255.0);
    }

    /// From 0 to 1, as a run stretches the heights of layers.
    static void stretch(std::vector<float>& heights)
    {
        auto const [low, high] = std::minmax_element(heights.begin(), heights.end());
        double const lowest = double(*low);
        double const range = double(static_cast<float>(double(*high) - lowest));
        for (float& height : heights) {
            height = static_cast<float>((double(height) - lowest) / range);
        }
    }

    /// The first heights of @p file, stretched.
    static std::vector<float> stretched(char const* file, std::size_t texels)
    {
        std::vector<float> heights(texels);
        for (std::size_t i = 0; i < texels; ++i) {
            heights[i] = height_of(file, i);
        }
        stretch(heights);
        return heights;
    }

    LinkedList<n_layer> layers_;
    std::string status_;
    int progress_ = 0;
};

} // namespace umbrixlib::test
