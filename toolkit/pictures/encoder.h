// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>

namespace umbrixlib::toolkit {

/// Writes one format, or several. Has no state.
class Encoder {
public:
    virtual ~Encoder() = default;

    /// Writes @p picture, of 8 bits and 3 or 4 channels, to @p file, whose extension is that of the format.
    /// The same picture gives the same bytes. False if the file could not be written to its end.
    virtual bool encode(std::filesystem::path const& file, Picture const& picture) const = 0;
};

Encoder const& png_encoder();
Encoder const& ppm_encoder();
Encoder const& tga_encoder();

} // namespace umbrixlib::toolkit
