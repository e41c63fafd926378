// SPDX-License-Identifier: MIT
/// The stages of the graphics library, on every device and on the host, against the library for the
/// processor. Prints a table: milliseconds of a stage as a caller sees it, the share of it that goes to
/// transfers, and the ratio to the processor's own form. `coralith_bench [side] [rays]`, by default 1024
/// and 64.
#include "boundary/texture_kernels.h"
#include "host/backend.h"
#include "normals/height_to_normal.h"
#include "session/discovery.h"
#include "stages/grading.h"
#include "stages/light.h"
#include "stages/normals.h"
#include "stages/occlusion.h"
#include "umbrix/grading.h"

#include "random_image.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using coralith::Backend;
using coralith::Shape;
using umbrixlib::test::random_image;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// Passes everything on and adds up the time of transfers, each of which waits for what went before.
class Stopwatch final : public Backend {
public:
    explicit Stopwatch(Backend& inner) : inner_(inner) {}

    double transfers = 0; ///< Milliseconds.

    char const* kind() const override { return inner_.kind(); }
    coralith::Limits limits() const override { return inner_.limits(); }
    bool allocate(std::size_t bytes, coralith::Memory& memory) override
    {
        return inner_.allocate(bytes, memory);
    }
    void release(coralith::Memory& memory) override { inner_.release(memory); }
    bool upload(coralith::Memory const& memory, void const* from, std::size_t bytes) override
    {
        return timed([&] { return inner_.upload(memory, from, bytes); });
    }
    bool download(coralith::Memory const& memory, void* to, std::size_t bytes) override
    {
        return timed([&] { return inner_.download(memory, to, bytes); });
    }
    bool launch(coralith::Kernel kernel, coralith::Index items, coralith::Arguments arguments) override
    {
        return inner_.launch(kernel, items, arguments);
    }
    bool finish() override { return inner_.finish(); }

private:
    template <typename Operation>
    bool timed(Operation operation)
    {
        bool done = inner_.finish();
        auto const start = Clock::now();
        done = operation() && inner_.finish() && done;
        transfers += milliseconds(Clock::now() - start);
        return done;
    }

    Backend& inner_;
};

/// The least of what several runs took, in milliseconds.
struct Times {
    double wall = std::numeric_limits<double>::infinity();
    double without_transfers = wall;
    double cpu = wall; ///< Of all threads.

    /// @p run returns the time of its transfers.
    void take(std::function<double()> const& run)
    {
        auto const start = Clock::now();
        std::clock_t const cpu_start = std::clock();
        double const transfers = run();
        double const taken = milliseconds(Clock::now() - start);
        wall = std::min(wall, taken);
        without_transfers = std::min(without_transfers, taken - transfers);
        cpu = std::min(cpu, 1000.0 * static_cast<double>(std::clock() - cpu_start) / CLOCKS_PER_SEC);
    }
};

struct Stage {
    std::string name;
    std::function<void()> on_processor;
    std::function<bool(Backend&)> on_backend;
};

constexpr int kRuns = 6; ///< The first one warms up, and builds the kernels.

Times time_on_processor(Stage const& stage)
{
    Times times;
    for (int i = 0; i < kRuns; ++i) {
        times.take([&] {
            stage.on_processor();
            return 0.0;
        });
    }
    return times;
}

void measure(Stage const& stage, std::string const& name, Backend& backend, Times const& on_processor)
{
    Times times;
    bool done = true;
    for (int i = 0; i < kRuns && done; ++i) {
        times.take([&] {
            Stopwatch watch(backend);
            done = stage.on_backend(watch);
            return watch.transfers;
        });
    }
    if (!done) {
        std::printf("| %s | %s | failed: %s | | | | |\n", stage.name.c_str(), name.c_str(),
                    backend.cause().c_str());
        return;
    }
    std::printf("| %s | %s | %.1f | %.1f | %.1f | %.2f | %.2f |\n", stage.name.c_str(), name.c_str(),
                times.wall, times.without_transfers, times.cpu, times.wall / on_processor.wall,
                times.cpu / on_processor.cpu);
    std::fflush(stdout);
}

/// Rolling hills with some grain, in image widths: the relief of a height map.
std::vector<float> hills(int side)
{
    auto heights = random_image<float>(static_cast<std::size_t>(side) * static_cast<std::size_t>(side), 1);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            double const u = 6.2831853 * x / side;
            double const v = 6.2831853 * y / side;
            double const wave = 0.5 + 0.2 * std::sin(7 * u + 3 * v) + 0.2 * std::cos(11 * v - 5 * u);
            float& height = heights[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) +
                                    static_cast<std::size_t>(x)];
            height = static_cast<float>(0.1 * wave + 0.01 * static_cast<double>(height));
        }
    }
    return heights;
}

} // namespace

int main(int argc, char** argv)
{
    int const side = argc > 1 ? std::atoi(argv[1]) : 1024;
    int const rays = argc > 2 ? std::atoi(argv[2]) : 64;
    if (side < 2 || rays < 1) {
        std::fprintf(stderr, "usage: coralith_bench [side] [rays]\n");
        return 2;
    }
    Shape const shape = {side, side};
    auto const texels = static_cast<std::size_t>(shape.texels());
    auto heights = hills(side);
    auto normals = random_image<float3>(texels, 2);
    auto map = random_image<float4>(texels, 3);
    std::vector<float> out(texels * 4);
    auto* const out_1 = out.data();
    auto* const out_3 = reinterpret_cast<float3*>(out.data());
    auto* const out_4 = reinterpret_cast<float4*>(out.data());

    umbrix_options options{};
    options.contrast = options.h_contrast = 0.1f;
    options.min = options.h_min = 5;
    options.max = options.h_max = 250;
    options.brightness = options.h_brightness = 0.01f;
    options.smooth = options.h_smooth = 2.0f;
    std::string status;
    int progress = 0;
    coralith::OcclusionSettings const occlusion = {rays, 90.0f, 120.0f, 0.25f, true, true};
    auto const count = static_cast<std::size_t>(rays) * 2;
    std::vector<ray> a(count);
    std::vector<ray> b(count);
    std::vector<ray> c(count);

    std::vector<Stage> const stages = {
        {"pre-processing",
         [&] {
             std::copy(heights.begin(), heights.end(), out_1);
             PreProcess(out_1, side, side, options);
         },
         [&](Backend& backend) {
             return grade(backend, shape, 1, coralith::Grading::of_heights(options), heights.data(), out_1);
         }},
        {"normals, sigma 2",
         [&] {
             HeightToNormal(heights.data(), out_3, side, side, 20.0f, 2.0f, 0.0f, false, 0, 0.0f, false, 0.0f,
                            0.0f, false, &status, &progress);
         },
         [&](Backend& backend) {
             return height_to_normal(backend, shape, {20.0f, 2.0f, 0.0f}, heights.data(), &out_3->x);
         }},
        {"normals, detail 3",
         [&] {
             HeightToNormal(heights.data(), out_3, side, side, 20.0f, 0.0f, 0.0f, false, 0, 3.0f, false, 0.0f,
                            0.0f, false, &status, &progress);
         },
         [&](Backend& backend) {
             return height_to_normal(backend, shape, {20.0f, 0.0f, 3.0f}, heights.data(), &out_3->x);
         }},
        {"light term",
         [&] {
             std::copy(normals.begin(), normals.end(), out_3);
#pragma omp parallel for schedule(static)
             for (int part = 0; part < 2; ++part) {
                 Normal2Umbrix(out_3, side, side, Modes_FlatIsFull, part, 2);
             }
         },
         [&](Backend& backend) {
             return light_normals(backend, shape, Modes_FlatIsFull, &normals.data()->x, &out_3->x);
         }},
        {"occlusion",
         [&] {
             ray* bands[] = {a.data(), b.data(), c.data()};
             GenerateRays(side, side, bands[0], bands[1], bands[2], rays, occlusion.theta_limit,
                          occlusion.alpha_limit);
             Height2DirectionalAO(out_3, heights.data(), side, side, bands[0], bands[1], bands[2], rays, 1.0f,
                                  occlusion.radius, true, true, true, nullptr);
         },
         [&](Backend& backend) {
             coralith::Progress unseen(nullptr);
             return directional_occlusion(backend, shape, occlusion, coralith::PortionRule::of(true, 0),
                                          heights.data(), &out_3->x, unseen);
         }},
        {"post-processing",
         [&] {
             std::copy(map.begin(), map.end(), out_4);
             PostProcess(out_4, side, side, options);
         },
         [&](Backend& backend) {
             return grade(backend, shape, 4, coralith::Grading::of_map(options), &map.data()->x, out.data());
         }}};

    std::vector<std::string> names;
    std::vector<std::unique_ptr<Backend>> backends;
    for (coralith::Device const& device : coralith::discover_devices().devices) {
        std::string why;
        auto backend = device.open(why);
        if (backend == nullptr) {
            std::fprintf(stderr, "%s: %s\n", device.name.c_str(), why.c_str());
            continue;
        }
        names.push_back(device.name);
        backends.push_back(std::move(backend));
    }
    names.emplace_back("host backend");
    backends.push_back(std::make_unique<coralith::HostBackend>());

    std::printf("%d x %d texels, %d rays a band\n\n", side, side, rays);
    std::printf("| Stage | Device | ms | ms without transfers | ms of all threads | Ratio | Ratio of all "
                "threads |\n");
    std::printf("| --- | --- | --- | --- | --- | --- | --- |\n");
    for (Stage const& stage : stages) {
        Times const on_processor = time_on_processor(stage);
        std::printf("| %s | processor's own form | %.1f | | %.1f | 1 | 1 |\n", stage.name.c_str(),
                    on_processor.wall, on_processor.cpu);
        for (std::size_t i = 0; i < backends.size(); ++i) {
            measure(stage, names[i], *backends[i], on_processor);
        }
    }
    return 0;
}
