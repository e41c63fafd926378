// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/dds_file.h"
#include "toolkit/pictures/devil/devil.h"
#include "toolkit/pictures/devil/devil_formats.h"
#include "toolkit/pictures/devil/hdr_file.h"

#include <IL/il.h>
#include <algorithm>
#include <new>

namespace umbrixlib::toolkit {

namespace {

/// Whether a call of DevIL that failed was for want of memory.
bool ran_out_of_memory()
{
    for (ILenum error = 0; (error = ilGetError()) != IL_NO_ERROR;) {
        if (error == IL_OUT_OF_MEMORY) {
            return true;
        }
    }
    return false;
}

/// The bound image in another form. Copying as luminance can crash; as colours it is right for every source.
Picture converted(int width, int height, bool with_alpha, SampleType type)
{
    Picture picture = make_picture(width, height, with_alpha ? 4 : 3, type);
    ilCopyPixels(0, 0, 0, static_cast<ILuint>(width), static_cast<ILuint>(height), 1,
                 with_alpha ? IL_RGBA : IL_RGB, type == SampleType::kFloat ? IL_FLOAT : IL_UNSIGNED_BYTE,
                 picture.bytes.data());
    return picture;
}

void swap_red_and_blue(Picture& picture)
{
    std::size_t const sample = sample_size(picture.type);
    std::size_t const texel = sample * static_cast<std::size_t>(picture.channels);
    for (std::size_t i = 0; i < picture.bytes.size(); i += texel) {
        std::swap_ranges(&picture.bytes[i], &picture.bytes[i] + sample, &picture.bytes[i] + 2 * sample);
    }
}

/// The bound image as it is. DevIL's idea of the sample type can be wider than what it holds.
Picture taken(int width, int height, int channels, SampleType type)
{
    Picture picture = make_picture(width, height, channels, type);
    auto const held = static_cast<std::size_t>(ilGetInteger(IL_IMAGE_SIZE_OF_DATA));
    std::copy_n(ilGetData(), std::min(held, picture.bytes.size()), picture.bytes.data());
    ILint const format = ilGetInteger(IL_IMAGE_FORMAT);
    if (format == IL_BGR || format == IL_BGRA) {
        swap_red_and_blue(picture);
    }
    return picture;
}

DecodedFile bound_image(int width, int height)
{
    int const channels = ilGetInteger(IL_IMAGE_CHANNELS);
    if (ilGetInteger(IL_IMAGE_FORMAT) == IL_COLOUR_INDEX) {
        return {converted(width, height, false, SampleType::kUint8), true};
    }
    switch (ilGetInteger(IL_IMAGE_TYPE)) {
    case IL_UNSIGNED_BYTE:
        return {taken(width, height, channels, SampleType::kUint8)};
    case IL_UNSIGNED_SHORT:
        return {taken(width, height, channels, SampleType::kUint16)};
    case IL_FLOAT:
        return {taken(width, height, channels, SampleType::kFloat)};
    default:
        return {converted(width, height, channels % 2 == 0, SampleType::kFloat)};
    }
}

/// What nobody else takes. DevIL goes by the extension if it knows it, else by the content.
///
/// Hostile files can crash it, so it is called in a worker process only, and it serves one file at a time.
class DevilDecoder : public Decoder {
public:
    bool takes(SourceFile const&) const override { return true; }

    DecodedFile decode(SourceFile& source) const override
    {
        refuse_dds_with_too_little_data(source.path(), source.subject());
        refuse_hdr_with_damaged_rows(source.path(), source.subject());
        start_devil();
        if (ilLoadImage(source.path().c_str()) == 0) {
            if (ran_out_of_memory()) {
                throw std::bad_alloc();
            }
            source.refuse_as_damaged();
        }
        int const width = ilGetInteger(IL_IMAGE_WIDTH);
        int const height = ilGetInteger(IL_IMAGE_HEIGHT);
        source.check_size(width, height);
        DecodedFile file = bound_image(width, height);
        stop_devil();
        return file;
    }
};

} // namespace

Decoder const* devil_decoder()
{
    static DevilDecoder const decoder;
    return &decoder;
}

} // namespace umbrixlib::toolkit
