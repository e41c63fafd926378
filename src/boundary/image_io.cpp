// SPDX-License-Identifier: MIT
#include "boundary/image_io.h"

#include "boundary/message_box.h"

#include <IL/il.h>
#include <algorithm>

namespace umbrixlib::detail {

namespace {

constexpr char const* kCouldNotOpen = "The file pointed to by FileName could not be opened.\n Either the "
                                      "file does not exist or is in use by another "
                                      "process.";

FileOutcome report(char const* message)
{
    if (message == nullptr) {
        return FileOutcome::kGoOn;
    }
    show_error_box(message);
    return FileOutcome::kMessageShown;
}

ILuint dimension(int value)
{
    return static_cast<ILuint>(value);
}

} // namespace

void prepare_devil(Overwrite overwrite)
{
    ilInit();
    if (overwrite == Overwrite::kAllow) {
        ilEnable(IL_FILE_OVERWRITE);
    }
    ilEnable(IL_ORIGIN_SET);
    // Contract: the mode is IL_ORIGIN_SET, which ilSetInteger does not know. IL_ORIGIN_MODE is expected, and
    // would put the origin into the upper left corner; as it is the origin stays in the lower left one, and
    // the orientation of every image rests on that. Test: ImageIo.TheOriginCallTakesNoEffect
    ilSetInteger(IL_ORIGIN_SET, IL_ORIGIN_UPPER_LEFT);
}

char const* load_message(unsigned code)
{
    switch (code) {
    case IL_ILLEGAL_OPERATION:
        return "There is currently no image bound.\n Use ilGenImages and ilBindImage before calling this "
               "function.";
    case IL_INVALID_PARAM:
        return "FileName was not valid.";
    case IL_COULD_NOT_OPEN_FILE:
        return kCouldNotOpen;
    case IL_INVALID_EXTENSION:
        return "The file could not be loaded based on extension or header.";
    default:
        return nullptr;
    }
}

char const* save_message(unsigned code)
{
    switch (code) {
    case IL_INVALID_ENUM:
        return "Could not open destination image for writing.";
    case IL_COULD_NOT_OPEN_FILE:
        return kCouldNotOpen;
    default:
        return nullptr;
    }
}

FileOutcome load_image(char const* file)
{
    return report(load_message(ilLoadImage(file)));
}

FileOutcome save_image(char const* file)
{
    return report(save_message(ilSaveImage(file)));
}

void load_image_unseen(char const* file)
{
    ilLoadImage(file);
}

void save_image_unseen(char const* file)
{
    ilSaveImage(file);
}

void bind_fresh_image()
{
    ilBindImage(ilGenImage());
}

ImageSize bound_image_size()
{
    int const width = ilGetInteger(IL_IMAGE_WIDTH);
    return {width, ilGetInteger(IL_IMAGE_HEIGHT)};
}

int bound_image_channels()
{
    return ilGetInteger(IL_IMAGE_BITS_PER_PIXEL) / 8;
}

ImageBytes make_image_bytes(std::size_t texels, int channels)
{
    constexpr int kTouchedAtMost = 4;
    return make_texel_array<unsigned char>(std::max<std::size_t>(texels, 1) *
                                           static_cast<std::size_t>(std::max(channels, kTouchedAtMost)));
}

void copy_pixels(ImageSize size, PixelFormat format, unsigned char* bytes)
{
    // Contract: an image of one byte a pixel is asked for with IL_BYTE. IL_LUMINANCE is expected; DevIL
    // refuses the call, and such an image reads as zeros. Test: ImageIo.AOneByteImageReadsAsZeros
    ILenum const il_format = format == PixelFormat::kRgb    ? IL_RGB
                             : format == PixelFormat::kRgba ? IL_RGBA
                                                            : IL_BYTE;
    ilCopyPixels(0, 0, 0, dimension(size.width), dimension(size.height), 1, il_format, IL_UNSIGNED_BYTE,
                 bytes);
}

void refill_image(ImageSize size, unsigned char* bytes)
{
    ilSetPixels(0, 0, 0, dimension(size.width), dimension(size.height), 1, IL_RGB, IL_UNSIGNED_BYTE, bytes);
}

void replace_image(ImageSize size, int channels, unsigned char* bytes)
{
    ilTexImage(dimension(size.width), dimension(size.height), 0, static_cast<ILubyte>(channels),
               channels == 4 ? IL_RGBA : IL_RGB, IL_UNSIGNED_BYTE, bytes);
}

void shut_down_devil()
{
    ilShutDown();
}

} // namespace umbrixlib::detail
