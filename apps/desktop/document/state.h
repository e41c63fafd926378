// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/defaults.h"
#include "toolkit/settings/stack_description.h"
#include "toolkit/tasks/light/channel_weights.h"

#include <string>
#include <vector>

/// @file
/// All that a user can change, as values. No picture is in here: pictures are made of it.

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

/// What of a document a picture area shows.
enum class Show { kSource, kNormals, kOcclusion, kMap, kRelit };

inline constexpr std::size_t kShows = 5;

/// How the picture area is divided.
enum class Arrangement {
    kOne,       ///< `left` alone.
    kSplit,     ///< `left` on the left of the split, `right` on the right of it, over one another.
    kSide,      ///< One beside the other.
    kDifference ///< How far `right` is from `left`.
};

enum class Channel { kAll, kRed, kGreen, kBlue, kAlpha };

/// What is looked at, and how.
struct View {
    Show left = Show::kSource;
    Show right = Show::kMap;
    Arrangement arrangement = Arrangement::kSide;
    double split = 0.5; ///< Where the split is, as a share of the area's width.
    Channel channel = Channel::kAll;
    double zoom = 0;       ///< Pixels of the screen a texel; 0: as large as the area.
    double centre_x = 0.5; ///< Place of the picture in the middle of the area, as a share of its width.
    double centre_y = 0.5; ///< The same from the top row on, as a share of its height.
    int tiles = 1;         ///< Times that the picture is repeated each way.

    bool operator==(View const&) const = default;
};

/// The light that a map is shown in, and the colours of the surface.
struct Lighting {
    toolkit::Light light{135, 45};
    double exposure = 0.8; ///< Brightness of flat ground that nothing hides.
    double ambient = 0;
    toolkit::WeightRule weights = toolkit::WeightRule::kFitted;
    std::string albedo; ///< File of the colours; "": none.

    bool operator==(Lighting const&) const = default;
};

/// A stack in the making.
struct Layers {
    toolkit::StackDescription description;
    std::vector<bool> shown; ///< One a layer: whether it takes part.

    bool operator==(Layers const&) const = default;
};

/// What a document is at one moment.
struct State {
    std::string source; ///< File of the height map or the normal map; "": none yet.
    toolkit::Settings settings = toolkit::kDefaults;
    std::string profile; ///< Of the engine that results are saved for; "": none.
    Lighting lighting;
    Layers layers;
    View view;

    bool operator==(State const&) const = default;
};

} // namespace umbrix_desktop
