// SPDX-License-Identifier: MIT
// Memory for a map of 8192 x 8192 texels, each case in a process of its own: the peak of a whole
// `UmbrixFile`, and what the occlusion kernel takes beyond the caller's buffers. The map is a smaller one,
// repeated.
#include <umbrixlib.h>

#include "measure/clocks.h"
#include "measure/file_options.h"
#include "measure/maps.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "temporary_folder.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace umbrixlib::bench;

constexpr int kSide = 8192;
constexpr int kMapSide = 2048;
constexpr char const* kMap = "terrain";

/// A line of /proc/self/status in bytes: "VmRSS" for what is resident, "VmHWM" for its peak.
double resident(std::string const& name)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(name + ":", 0) == 0) {
            std::istringstream words(line.substr(name.size() + 1));
            double kibibytes = 0.0;
            words >> kibibytes;
            return kibibytes * 1024.0;
        }
    }
    return 0.0;
}

void forget_peak()
{
    std::ofstream("/proc/self/clear_refs") << "5\n";
}

/// Runs @p body in a process of its own, so that nothing of it is left for the next.
void in_child(std::function<void()> const& body)
{
    std::fflush(stdout);
    pid_t const child = fork();
    if (child == 0) {
        body();
        std::_Exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) {
        std::fputs("a case failed\n", stderr);
        std::exit(1);
    }
}

std::vector<float> large_map(float scale)
{
    std::vector<float> const small = heights_of(kMap, kMapSide, scale);
    std::vector<float> heights;
    heights.reserve(std::size_t{kSide} * kSide);
    for (int y = 0; y < kSide; ++y) {
        auto const row = small.begin() + static_cast<std::ptrdiff_t>(y % kMapSide) * kMapSide;
        for (int x = 0; x < kSide; x += kMapSide) {
            heights.insert(heights.end(), row, row + kMapSide);
        }
    }
    return heights;
}

void occlusion(OcclusionSet const& set)
{
    std::vector<float> heights = large_map(set.h_scale);
    std::vector<float3> result(heights.size());
    Bundles bundles(kSide, set.rays);
    forget_peak();
    double const before = resident("VmRSS");
    double const begin = wall_seconds();
    Height2DirectionalAO(result.data(), heights.data(), kSide, kSide, bundles.a.data(), bundles.b.data(),
                         bundles.c.data(), set.rays, set.h_scale, set.radius, true, true, true, nullptr);
    print({{"what", "kernel_memory"},
           {"side", kSide},
           {"set", set.name},
           {"bytes", resident("VmHWM") - before},
           {"wall", wall_seconds() - begin}});
}

void whole_file(std::string const& input, std::string const& output)
{
    umbrix_options options = file_options(kOcclusionSets[1], kSide);
    LinkedList<n_layer> layers;
    std::string status;
    int progress = 0;
    forget_peak();
    double const begin = wall_seconds();
    UmbrixFile(input, output, options, &layers, nullptr, &status, &progress);
    print({{"what", "file_memory"},
           {"side", kSide},
           {"set", kOcclusionSets[1].name},
           {"bytes", resident("VmHWM")},
           {"wall", wall_seconds() - begin}});
}

} // namespace

int main(int count, char** words)
{
    umbrixlib::test::TemporaryFolder const folder;
    std::string const input = (folder / "in.tga").string();
    std::string const output = (folder / "out.tga").string();
    in_child([&] { write_picture(input, kMap, kMapSide, kSide); });
    in_child([&] { whole_file(input, output); });
    for (OcclusionSet const& set : kOcclusionSets) {
        // The others take up to minutes.
        if (!is_quick(count, words) || set.rays == 64) {
            in_child([&] { occlusion(set); });
        }
    }
}
