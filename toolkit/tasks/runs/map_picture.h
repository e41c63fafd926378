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

/// An order for an Umbrix map.
struct MapOrder {
    Picture const& source; ///< Of any sample type; with `blend_height` it needs no samples.
    std::string name;      ///< What messages call it.
    umbrix_options options;
    SavedAs as;        ///< The samples of the map.
    Borders borders{}; ///< Of heights that normals are made of.
    /// Descriptions of the layers that join the picture, or null, and the stack that holds them.
    LinkedList<n_layer>* layers = nullptr;
    NLayers* stack = nullptr;
    Graphics graphics{}; ///< The device that it is made on, or the CPU.
};

/// Has the library make an Umbrix map. It has an alpha if the source has one. If the options keep the
/// buffers, the alpha has the heights as they were read.
Picture make_umbrix_map(MapOrder order, Observer& observer);

} // namespace umbrixlib::toolkit
