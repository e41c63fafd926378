// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/output_stream.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Colours, whatever the extension says; the format has no alpha.
class PpmEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        std::string const header = fmt::format("P6\n{} {}\n255\n", picture.width, picture.height);
        std::size_t const row = picture.bytes.size() / static_cast<std::size_t>(picture.height);
        OutputStream stream(file);
        bool good = stream.write({reinterpret_cast<std::uint8_t const*>(header.data()), header.size()});
        for (std::size_t at = picture.bytes.size(); good && at > 0; at -= row) {
            good = stream.write({&picture.bytes[at - row], row});
        }
        return stream.close();
    }
};

} // namespace

Encoder const& ppm_encoder()
{
    static PpmEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
