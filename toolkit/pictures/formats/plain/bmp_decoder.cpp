// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/formats/plain/dib.h"

namespace umbrixlib::toolkit {

namespace {

class BmpDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return source.begins_with("BM") || is_array(source) || is_bare(source);
    }

    DecodedFile decode(SourceFile& source) const override
    {
        if (is_array(source)) {
            source.refuse("it is an OS/2 array of BMP pictures", "save one of them");
        }
        ByteReader reader(source);
        std::size_t texels_at = 0;
        if (!is_bare(source)) {
            reader.skip(10);
            texels_at = reader.u32();
        }
        DibHeader const header = read_dib_header(reader, false);
        return read_dib(reader, header, texels_at);
    }

private:
    /// "BA", its size, and the first picture behind 14 bytes.
    static bool is_array(SourceFile const& source)
    {
        return source.begins_with("BA") && source.begins_with("BM", 14);
    }

    /// As it lies in memory: without the header of a file, which a name has to tell.
    static bool is_bare(SourceFile const& source)
    {
        using namespace std::string_view_literals;
        return source.begins_with("\x28\0\0\0"sv) && lower_case(source.path().extension().string()) == ".dib";
    }
};

} // namespace

Decoder const& bmp_decoder()
{
    static BmpDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
