// SPDX-License-Identifier: MIT
#include "png_file.h"

#include <png.h>
#include <stdexcept>

namespace umbrixlib::examples {
namespace {

/// libpng's record of one picture, let go at the end of its scope.
class PngImage {
public:
    PngImage() { record.version = PNG_IMAGE_VERSION; }
    PngImage(PngImage const&) = delete;
    PngImage& operator=(PngImage const&) = delete;
    ~PngImage() { png_image_free(&record); }

    void require(int success, std::filesystem::path const& file) const
    {
        if (success == 0) {
            throw std::runtime_error(file.string() + ": " + record.message);
        }
    }

    png_image record{};
};

/// libpng counts rows from the top; a negative stride tells it that ours start at the bottom.
png_int_32 upward_stride(Pixels const& pixels)
{
    return -static_cast<png_int_32>(pixels.width * pixels.channels);
}

} // namespace

void write_png(std::filesystem::path const& file, Pixels const& pixels)
{
    PngImage image;
    image.record.width = static_cast<png_uint_32>(pixels.width);
    image.record.height = static_cast<png_uint_32>(pixels.height);
    image.record.format = pixels.channels == 1 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGBA;
    image.record.flags = PNG_IMAGE_FLAG_COLORSPACE_NOT_sRGB;
    image.require(png_image_write_to_file(&image.record, file.string().c_str(), 0, pixels.bytes.data(),
                                          upward_stride(pixels), nullptr),
                  file);
}

Pixels read_png(std::filesystem::path const& file)
{
    PngImage image;
    image.require(png_image_begin_read_from_file(&image.record, file.string().c_str()), file);
    image.record.format =
        (image.record.format & PNG_FORMAT_FLAG_COLOR) == 0 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGBA;
    Pixels pixels;
    pixels.width = static_cast<int>(image.record.width);
    pixels.height = static_cast<int>(image.record.height);
    pixels.channels = static_cast<int>(PNG_IMAGE_PIXEL_CHANNELS(image.record.format));
    pixels.bytes.resize(PNG_IMAGE_SIZE(image.record));
    image.require(
        png_image_finish_read(&image.record, nullptr, pixels.bytes.data(), upward_stride(pixels), nullptr),
        file);
    return pixels;
}

} // namespace umbrixlib::examples
