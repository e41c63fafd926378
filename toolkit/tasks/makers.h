// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/saving.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/reports.h"

#include <optional>
#include <vector>

/// @file
/// The work of a job between its files, from pictures to pictures. No file of the job is opened; the names of
/// its inputs are what messages call these pictures, and may tell what they are. Results have the samples
/// that are asked for, and tell how they were made.
///
/// Errors: a Failure, or Stopped as soon as the observer is stopping. Threads: several calls at once are all
/// right, but for jobs with a graphics device; each tells its observer on the calling thread.

namespace umbrixlib::toolkit {

/// An Umbrix map.
struct MapMade {
    Picture map;
    MapReport report;
};
MapMade make(MapJob const& job, PreparedInput input, SavedAs const& as, Observer& observer);

/// A normal map of heights.
struct NormalsMade {
    Picture normals;
    NormalReport report;
};
NormalsMade make(NormalJob const& job, PreparedInput input, SavedAs const& as, Observer& observer);

/// Heights of a normal map, in one channel.
struct HeightsMade {
    Picture heights;
    HeightReport report;
};
HeightsMade make(HeightJob const& job, PreparedInput input, SavedAs const& as, Observer& observer);

/// What is made of the sky over heights. A picture that is not asked for has no texels.
struct BentMade {
    Picture bent;
    Picture occlusion; ///< In one channel.
    BentReport report;
};
BentMade make(BentJob const& job, PreparedInput input, std::optional<SavedAs> const& bent,
              std::optional<SavedAs> const& occlusion, Observer& observer);

/// A lit picture, or those of a turn.
/// @param albedo Of the map's size, or of no texels for none.
std::vector<Picture> make(RelightJob const& job, PreparedInput input, Picture albedo, SavedAs const& as,
                          Observer& observer);

/// Heights that normals are fitted to, row by row.
struct FitHeights {
    int width;
    int height;
    std::vector<float> samples;
};
FitHeights take_heights_to_fit(FitJob const& job, PreparedInput input, Observer& observer);
FitReport make(FitJob const& job, FitHeights heights, PreparedInput normals, Observer& observer);

/// What is not sound about a map. @param mend A copy of normals is wanted without what can be mended exactly.
struct CheckMade {
    CheckReport report;
    Picture mended; ///< Of no texels if there is nothing to mend.
};
CheckMade make(CheckJob const& job, DecodedImage image, bool mend, Observer& observer);

/// A layer of a stack with its picture.
struct LayerPicture {
    StackLayer const* description; ///< One of the job's.
    Picture picture;
    SampleType type; ///< Of its file's samples.
};

/// The layers that take part, from the lowest to the uppermost.
struct LayerPictures {
    int width = 0; ///< Of the first layer, and so of all results.
    int height = 0;
    std::vector<LayerPicture> layers;

    /// Whether all have 8 bits.
    bool are_bytes() const;
};

/// Adds the picture of @p layer, one of the job's, in their order. All checks that need its size are made.
void add_layer(StackJob const& job, StackLayer const& layer, PreparedInput picture, LayerPictures& stack,
               Observer& observer);

/// What is wanted of a stack.
struct StackOutputs {
    std::optional<SavedAs> normals;
    std::optional<SavedAs> heights; ///< Stretched to 0 to 1.
    std::optional<SavedAs> map;
    /// The map is made of normals and heights in bytes, as its own bytes are. Maps of layers of bytes are
    /// what they always were so; what more the layers or the map hold is kept.
    bool map_of_bytes = false;
};

/// The pictures that are wanted; the others have no texels.
struct StackMade {
    Picture normals;
    Picture heights;
    Picture map;
};
StackMade make(StackJob const& job, LayerPictures const& stack, StackOutputs const& outputs,
               Observer& observer);

} // namespace umbrixlib::toolkit
