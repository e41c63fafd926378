// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/saving.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"

#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Throws a Failure unless a picture of this size has the relief that the settings ask for.
/// @param name What messages call the picture.
void check_relief_size(Settings const& settings, std::string const& name, int width, int height);

/// Notes that heights are narrowed, if samples of type @p read are saved as bytes.
void note_narrowed_heights(SampleType read, SavedAs const& as, std::string const& name, Observer& observer);

/// Has the library make the Umbrix map of @p source, of any sample type, which with `blend_height` needs no
/// samples. The map has an alpha if the source has one. If @p options keep the buffers, the alpha has the
/// heights as they were read.
/// @param name     What messages call the source.
/// @param as       The samples of the map.
/// @param layers   Descriptions of the layers that join the picture, or null; @p stack holds them.
/// @param graphics The device that it is made on, or the CPU.
Picture make_umbrix_map(Picture const& source, std::string const& name, umbrix_options options,
                        SavedAs const& as, Observer& observer, LinkedList<n_layer>* layers = nullptr,
                        NLayers* stack = nullptr, Graphics const& graphics = {});

} // namespace umbrixlib::toolkit
