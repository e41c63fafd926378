// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"

#include <filesystem>
#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Throws a Failure unless a picture of this size has the relief that the settings ask for.
/// @param name What messages call the picture.
void check_relief_size(Settings const& settings, std::string const& name, int width, int height);

/// Has the library make the Umbrix map of @p source. If @p options keep the buffers, the map has the heights
/// as they were read in its alpha.
/// @param name   What messages call the source.
/// @param folder For the intermediate files.
/// @param layers Descriptions of the layers that join the picture, or null; @p stack holds them.
/// @param graphics The device that it is made on, or the CPU.
Picture make_umbrix_map(Picture source, std::string const& name, umbrix_options options,
                        std::filesystem::path const& folder, Observer& observer,
                        LinkedList<n_layer>* layers = nullptr, NLayers* stack = nullptr,
                        Graphics const& graphics = {});

} // namespace umbrixlib::toolkit
