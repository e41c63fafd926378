// SPDX-License-Identifier: MIT
#include "toolkit/tasks/intermediate.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::toolkit {

namespace {

/// Smallest size in bytes that an uncompressed TGA of this shape has.
std::uintmax_t tga_size(int width, int height, int channels)
{
    return 18 + static_cast<std::uintmax_t>(width) * static_cast<std::uintmax_t>(height) *
                    static_cast<std::uintmax_t>(channels);
}

Failure no_room_for(std::filesystem::path const& file)
{
    return {Fault::kNoRoomForScratch, file.parent_path().string(),
            "the intermediate picture does not fit there"};
}

} // namespace

void write_source(std::filesystem::path const& file, Picture const& picture)
{
    if (!tga_encoder().encode(file, picture)) {
        throw no_room_for(file);
    }
}

Picture read_result(std::filesystem::path const& file, int width, int height, int channels)
{
    std::error_code error;
    std::uintmax_t const size = std::filesystem::file_size(file, error);
    if (error || size < tga_size(width, height, channels)) {
        throw no_room_for(file);
    }
    DecodedImage const image(file, "", static_cast<double>(width) * height);
    return image.to_picture(channels == 4);
}

bool is_tiff(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    return extension == ".tif" || extension == ".tiff";
}

} // namespace umbrixlib::toolkit
