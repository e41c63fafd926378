// SPDX-License-Identifier: MIT
#include "toolkit/tasks/intermediate.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/tga_file.h"

namespace umbrixlib::toolkit {

namespace {

Failure no_room_for(std::filesystem::path const& file)
{
    return {Fault::kNoRoomForScratch, file.parent_path().string(),
            "the intermediate picture does not fit there"};
}

} // namespace

void write_source(std::filesystem::path const& file, Picture const& picture)
{
    if (!write_tga(file, picture)) {
        throw no_room_for(file);
    }
}

Picture read_result(std::filesystem::path const& file, int width, int height, int channels)
{
    std::error_code error;
    std::uintmax_t const size = std::filesystem::file_size(file, error);
    // DevIL reads a TGA that was cut off as if it were whole.
    if (error || size < tga_size(width, height, channels)) {
        throw no_room_for(file);
    }
    DecodedImage const image(file, "input", static_cast<double>(width) * height);
    return image.to_picture(channels == 4);
}

bool is_tiff(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    return extension == ".tif" || extension == ".tiff";
}

} // namespace umbrixlib::toolkit
