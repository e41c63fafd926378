// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/devil.h"
#include "toolkit/pictures/devil/devil_formats.h"
#include "toolkit/pictures/devil/devil_writing.h"
#include "toolkit/pictures/devil/tiff_date.h"

#include <IL/il.h>

namespace umbrixlib::toolkit {

namespace {

class DevilEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        start_devil();
        WatchedWriting const writing;
        // DevIL takes the pixels without a const, and copies them.
        auto* const bytes = const_cast<std::uint8_t*>(picture.bytes.data());
        ILenum const format = picture.channels == 4 ? IL_RGBA : IL_RGB;
        bool const saved =
            ilTexImage(static_cast<ILuint>(picture.width), static_cast<ILuint>(picture.height), 1,
                       static_cast<ILubyte>(picture.channels), format, IL_UNSIGNED_BYTE, bytes) != 0 &&
            ilSaveImage(file.c_str()) != 0 && writing.went_well();
        stop_devil();
        bool const dated = file.extension() == ".tif" || file.extension() == ".tiff";
        return saved && (!dated || fix_tiff_date(file));
    }
};

} // namespace

Encoder const* devil_encoder()
{
    static DevilEncoder const encoder;
    return &encoder;
}

} // namespace umbrixlib::toolkit
