// SPDX-License-Identifier: MIT
// `UmbrixFile`, 2048 x 2048, occlusion set (ii), TGA to TGA, on two processors: which share of its wall time
// outside the decoder and the encoder is spent inside the kernels that have bars of their own, and what the
// rest is. What is not inside a timed function is named for the functions that it lies between.
#include <umbrixlib.h>

#include "measure/clocks.h"
#include "measure/file_options.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "temporary_folder.h"
#include "timeline.h"

#include <algorithm>
#include <string_view>

namespace {

using namespace umbrixlib::bench;

constexpr int kSide = 2048;

struct Gap {
    std::string_view after;
    char const* what;
};

/// What the pipeline does when the function before has returned.
constexpr Gap kGaps[] = {
    {"start", "start"},
    {"ilInit", "start"},
    {"ilLoadImage", "allocate buffers"},
    {"ilCopyPixels", "bytes to heights"},
    {"PreProcess", "scale heights for the normals"},
    {"Height2Normal", "from the normals to their light"},
    {"Normal2Umbrix", "scale heights for the occlusion"},
    {"GenerateRays", "between GenerateRays and the occlusion"},
    {"Height2DirectionalAO", "light times occlusion, to bytes"},
    {"PostProcess", "graded colours to bytes"},
    {"ilTexImage", "release bytes"},
    {"ilSaveImage", "end"},
    {"ilShutDown", "end"},
};

std::string gap_after(std::string_view name)
{
    auto const* const found =
        std::find_if(std::begin(kGaps), std::end(kGaps), [&](Gap const& gap) { return gap.after == name; });
    return found != std::end(kGaps) ? found->what : "after " + std::string(name);
}

/// One run, its wall time divided.
struct Division {
    double wall = 0.0;
    double decoder_and_encoder = 0.0;
    double kernels = 0.0;
    Seconds parts; ///< All that is not decoder or encoder, by name.

    double share() const { return kernels / (wall - decoder_and_encoder); }
};

Division divide(double begin, double end)
{
    Division division;
    division.wall = end - begin;
    double reached = begin;
    std::string_view last = "start";
    for (Call const& call : calls()) {
        if (call.begin > reached) {
            division.parts[gap_after(last)] += call.begin - reached;
            reached = call.begin;
        }
        double const inside = std::max(0.0, call.end - reached);
        if (call.place == Place::kDecoderOrEncoder) {
            division.decoder_and_encoder += inside;
        } else {
            division.parts[call.name] += inside;
            division.kernels += call.place == Place::kKernel ? inside : 0.0;
        }
        if (call.end > reached) { // not a call inside another
            reached = call.end;
            last = call.name;
        }
    }
    division.parts[gap_after(last)] += end - reached;
    return division;
}

} // namespace

int main(int count, char** words)
{
    int const processors = keep_to_processors(2, words);
    umbrixlib::test::TemporaryFolder const folder;
    std::string const input = (folder / "in.tga").string();
    std::string const output = (folder / "out.tga").string();
    for (char const* const map : maps_of(count, words, 2)) {
        write_picture(input, map, kSide, kSide);
        std::vector<Division> runs;
        OthersWatch const others;
        for (int i = 0; i < (is_quick(count, words) ? 3 : 7); ++i) {
            umbrix_options options = file_options(kOcclusionSets[1], kSide);
            LinkedList<n_layer> layers;
            std::string status;
            int progress = 0;
            forget_calls();
            double const begin = wall_seconds();
            UmbrixFile(input, output, options, &layers, nullptr, &status, &progress);
            runs.push_back(divide(begin, wall_seconds()));
        }
        std::sort(runs.begin(), runs.end(),
                  [](Division const& a, Division const& b) { return a.share() < b.share(); });
        Division const& middle = runs[runs.size() / 2];
        print({{"what", "whole_file"},
               {"map", map},
               {"side", kSide},
               {"processors", processors},
               {"wall", middle.wall},
               {"decoder_and_encoder", middle.decoder_and_encoder},
               {"kernels", middle.kernels},
               {"share", middle.share()},
               {"parts", middle.parts},
               {"others", others.share()}});
    }
}
