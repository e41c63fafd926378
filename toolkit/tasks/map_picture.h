// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"

#include <filesystem>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Throws a Failure unless a picture of this size has the relief that the settings ask for.
void check_relief_size(Settings const& settings, int width, int height);

/// Has the library make the Umbrix map of @p source. If @p options keep the buffers, the map has the heights
/// as they were read in its alpha.
/// @param folder For the intermediate files.
/// @param layers Descriptions of the layers that join the picture, or null; @p stack holds them.
/// @param graphics The device that it is made on, or the processor.
Picture make_umbrix_map(Picture source, umbrix_options options, std::filesystem::path const& folder,
                        LinkedList<n_layer>* layers = nullptr, NLayers* stack = nullptr,
                        Graphics const& graphics = {});

} // namespace umbrixlib::toolkit
