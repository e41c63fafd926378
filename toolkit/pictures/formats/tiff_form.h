// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/tiff_file.h"
#include "toolkit/pictures/formats/tiff_samples.h"

#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What the tags of a picture say, and what is made of it.
struct TiffForm {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    int orientation = 1;
    unsigned samples_per_texel = 1;
    TiffSamples samples;
    bool planar = false;          ///< Each channel is in strips or tiles of its own.
    bool by_rgba = false;         ///< libtiff is to make RGB of it; all below is empty then.
    bool is_xyz = false;          ///< The colours are X, Y and Z of the CIE, and not red, green and blue.
    bool divide_by_alpha = false; ///< Once the channels are read.
    std::vector<unsigned> taken;  ///< The samples of a texel that become channels.
    std::vector<std::string> notes;
    Attributes attributes; ///< From the description.
};

/// Reads the tags of the first picture. Refuses pictures that are too large, and by name those of which no
/// picture is made.
TiffForm read_form(SourceFile& source, TiffFile& file);

} // namespace umbrixlib::toolkit
