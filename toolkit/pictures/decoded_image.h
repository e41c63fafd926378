// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoder.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

/// "8-bit grey with alpha", "half-float colour" and the like.
std::string description_of(Picture const& picture);

/// A file as its decoder read it. Hostile files can crash some decoders, so front ends leave decoding to a
/// worker process. Several at once are all right.
class DecodedImage {
public:
    /// What was decoded before, or never was in a file.
    explicit DecodedImage(DecodedFile file) : file_(std::move(file)) {}

    /// Reads @p file; @p subject names it in the Failure thrown if it cannot be read, or has more than
    /// @p max_texels texels or a side above 65535.
    DecodedImage(std::filesystem::path const& file, std::string const& subject, double max_texels);

    int width() const { return file_.picture.width; }
    int height() const { return file_.picture.height; }
    bool has_alpha() const { return file_.picture.has_alpha(); }
    int bits_per_channel() const { return 8 * static_cast<int>(sample_size(file_.picture.type)); }

    /// It becomes a picture without a conversion: 24 or 32 bits a texel.
    bool is_plain() const
    {
        return !file_.palette && file_.picture.type == SampleType::kUint8 && file_.picture.channels >= 3;
    }

    /// The file has numbers of colours; the picture has these.
    bool is_palette() const { return file_.palette; }

    /// "PNG", "TIFF": what the file is, whatever its name.
    std::string const& format() const { return file_.format; }

    /// What a user has to know of how it was taken.
    std::vector<std::string> const& notes() const { return file_.notes; }

    /// "8-bit grey with alpha", "palette", "16-bit colour" and the like.
    std::string description() const;

    /// The picture in the file's sample type, grey as three equal channels.
    Picture to_picture(bool with_alpha) const { return in_colour(file_.picture, with_alpha); }

    /// The picture in the file's own channels and sample type.
    Picture const& picture() const { return file_.picture; }

    /// The same, moved out of here.
    Picture release_picture() { return std::move(file_.picture); }

private:
    DecodedFile file_;
};

} // namespace umbrixlib::toolkit
