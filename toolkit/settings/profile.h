// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/picture_view.h"
#include "toolkit/base/kind.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// The kinds of pictures that a profile tells how to name and save. kMap is the Umbrix map.
enum class ProfileMap { kMap, kNormals, kHeights, kBent, kOcclusion, kPacked };

inline constexpr std::size_t kProfileMaps = 6;

/// How pictures of a kind are named and saved.
struct ProfileFile {
    std::string suffix;              ///< Put after the name: "_N".
    std::optional<SampleType> depth; ///< Empty: as without a profile.

    bool operator==(ProfileFile const&) const = default;
};

/// How an engine wants its pictures. What a profile does not mention is as without one.
struct Profile {
    std::string description;         ///< One line; may be empty.
    NormalY normal_y = NormalY::kUp; ///< Of all normal maps.
    std::string format = ".png";     ///< Extension of all files.
    std::array<ProfileFile, kProfileMaps> files{
        {{"_Umbrix", {}}, {"_Normal", {}}, {"_Height", {}}, {"_Bent", {}}, {"_AO", {}}, {"_Packed", {}}}};
    /// Maps of the material that a packed picture has in red, green, blue and alpha: "occlusion". Empty:
    /// none.
    std::array<std::string, 4> channels;

    ProfileFile const& file(ProfileMap map) const { return files[static_cast<std::size_t>(map)]; }

    bool operator==(Profile const&) const = default;
};

/// What profiles and the command line call the kinds, in their order.
inline constexpr char const* kProfileMapNames[] = {"map", "normal", "height", "bent", "occlusion", "packed"};

/// The value of a channel for which @p map is not given, which leaves the material as it is; of a map that no
/// shipped profile knows 0.
double neutral_value(std::string_view map);

/// Where a profile puts a map.
struct ChannelPlace {
    std::size_t channel; ///< 0 to 3: red, green, blue, alpha.
    bool invert;         ///< 1 becomes 0: roughness where smoothness is wanted, and the other way round.
};

/// Where @p profile puts the map called @p map; empty if it has no place for it.
std::optional<ChannelPlace> place_of(Profile const& profile, std::string_view map);

/// Names of the shipped profiles.
std::vector<std::string_view> shipped_profiles();

/// Reads a profile, by a name that is understood as that of a preset is. A Failure names the file, the line
/// and the key at fault.
Profile read_profile(std::string const& name);

/// The profile in TOML with every key.
std::string profile_text(Profile const& profile);

} // namespace umbrixlib::toolkit
