// SPDX-License-Identifier: MIT
// The whole run, TGA to TGA, on a relief of bumps: 64 rays of a quarter of the width, two sides.
#include <umbrixlib.h>

#include "temporary_folder.h"
#include "test_picture.h"
#include "umbrix_test_options.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>

namespace {

using umbrixlib::test::Picture;

Picture bumps(int side)
{
    Picture picture(side, side, 3, 0);
    double const turn = 2.0 * std::numbers::pi / side;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            double const height =
                0.5 + 0.25 * std::sin(9.0 * turn * x) * std::cos(7.0 * turn * y) +
                0.25 * std::sin(31.0 * turn * (x + y)) * std::sin(23.0 * turn * (x - 2 * y));
            auto const grey = static_cast<unsigned char>(height * 255.0);
            picture.set(x, y, {grey, grey, grey});
        }
    }
    return picture;
}

void whole_run(benchmark::State& state)
{
    auto const side = static_cast<int>(state.range(0));
    umbrixlib::test::TemporaryFolder const folder;
    std::string const input = (folder / "in.tga").string();
    std::string const output = (folder / "out.tga").string();
    bumps(side).save(input);
    umbrix_options options = umbrixlib::test::neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.height_map = options.generate_normal = true;
    options.rays = 64;
    options.radius = 0.25f;
    options.h_scale = 0.1f;
    options.n_scale = 0.05f * static_cast<float>(side);
    options.tile = options.h_tile = options.v_tile = true;
    LinkedList<n_layer> layers;
    std::string status;
    int progress = 0;
    for (auto _ : state) {
        UmbrixFile(input, output, options, &layers, nullptr, &status, &progress);
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}

BENCHMARK(whole_run)
    ->Arg(1024)
    ->Arg(2048)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

} // namespace
