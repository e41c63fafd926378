// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// The channels of an OpenEXR file that make a picture.
struct ExrChannels {
    std::vector<std::size_t> taken; ///< In the picture's order: grey, or red, green, blue; and alpha.
    std::string layer;              ///< "diffuse", if they are "diffuse.R" and the like; else empty.
};

/// Why there is no picture, and what helps.
struct ExrChannelsRefused {
    std::string what;
    std::string remedy;
};

/// Finds them by name: R G B, Y or X Y Z, each with A if there is one; those of the one layer that has such;
/// or the one channel that there is beside A.
///
/// @return Channels, or with none taken the reason in @p refused.
ExrChannels choose_channels(std::vector<std::string> const& names, ExrChannelsRefused& refused);

} // namespace umbrixlib::toolkit
