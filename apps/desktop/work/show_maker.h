// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"
#include "toolkit/base/observer.h"
#include "toolkit/pictures/decoded_image.h"

#include <optional>
#include <string>

/// @file
/// The pictures of a document, made in this process as the command line makes them. Errors: a Failure, or
/// Stopped as soon as the observer is stopping.

namespace umbrix_desktop {

/// What pictures are made of.
struct Origin {
    toolkit::DecodedImage const& image;
    std::string name; ///< Of its file, for messages; its ending may tell what the picture is.
    toolkit::Settings settings;
    std::optional<toolkit::Kind> kind;        ///< Empty: guess.
    std::optional<toolkit::NormalY> normal_y; ///< Of a normal map; empty: as it tells itself.
};

/// The origin for a whole picture: what `umbrix map` takes when only options are given that differ from the
/// defaults.
Origin origin_of(toolkit::DecodedImage const& image, std::string const& name,
                 toolkit::Settings const& settings);

/// A Failure unless a map can be made with @p settings, as a user gives them.
void check_map_settings(toolkit::Settings const& settings);

/// What the source is taken for.
toolkit::Kind kind_of(Origin const& origin);

/// Normals of heights.
toolkit::Picture make_normals(Origin const& origin, toolkit::Observer& observer);

/// The Umbrix map, or the occlusion in it.
toolkit::Picture make_map(Origin const& origin, toolkit::Observer& observer);
toolkit::Picture make_occlusion(Origin const& origin, toolkit::Observer& observer);

/// A map in a light. @param albedo Of the map's size; null: none.
toolkit::Picture make_relit(toolkit::Picture const& map, std::string const& name, Modes mode,
                            Lighting const& lighting, toolkit::DecodedImage const* albedo,
                            toolkit::Observer& observer);

/// The settings for the occlusion in a map.
toolkit::Settings occlusion_alone(toolkit::Settings settings);

/// The settings that count for @p show; all others have their defaults.
toolkit::Settings settings_for(Show show, toolkit::Settings const& settings);

} // namespace umbrix_desktop
