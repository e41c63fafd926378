// SPDX-License-Identifier: MIT
#include "counted_coding.h"

#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/encoder.h"

#include <cstdlib>
#include <dlfcn.h>

namespace umbrixlib::test {

CodingCount coding_count;

namespace {

/// The function of this name that the toolkit would call without us.
template <typename Coder>
Coder const& real(char const* name)
{
    void* const function = dlsym(RTLD_NEXT, name);
    if (function == nullptr) {
        std::abort();
    }
    return reinterpret_cast<Coder const& (*)()>(function)();
}

class CountedDecoder : public toolkit::Decoder {
public:
    explicit CountedDecoder(char const* name) : real_(real<Decoder>(name)) {}

    bool takes(toolkit::SourceFile const& source) const override { return real_.takes(source); }
    toolkit::DecodedFile decode(toolkit::SourceFile& source) const override
    {
        ++coding_count.decoded;
        return real_.decode(source);
    }

private:
    Decoder const& real_;
};

class CountedEncoder : public toolkit::Encoder {
public:
    explicit CountedEncoder(char const* name) : real_(real<Encoder>(name)) {}

    bool encode(std::filesystem::path const& file, toolkit::Picture const& picture) const override
    {
        ++coding_count.encoded;
        return real_.encode(file, picture);
    }
    bool encode_as(std::filesystem::path const& file, toolkit::Picture const& picture,
                   toolkit::Compression compression) const override
    {
        ++coding_count.encoded;
        return real_.encode_as(file, picture, compression);
    }
    std::optional<bool> holds(std::filesystem::path const& file,
                              toolkit::Picture const& picture) const override
    {
        std::optional<bool> const result = real_.holds(file, picture);
        coding_count.looked_at += result ? 1 : 0;
        return result;
    }

private:
    Encoder const& real_;
};

} // namespace

} // namespace umbrixlib::test

namespace umbrixlib::toolkit {

Decoder const& png_decoder()
{
    static test::CountedDecoder const counted("_ZN9umbrixlib7toolkit11png_decoderEv");
    return counted;
}

Decoder const& tga_decoder()
{
    static test::CountedDecoder const counted("_ZN9umbrixlib7toolkit11tga_decoderEv");
    return counted;
}

Encoder const& png_encoder()
{
    static test::CountedEncoder const counted("_ZN9umbrixlib7toolkit11png_encoderEv");
    return counted;
}

Encoder const& tga_encoder()
{
    static test::CountedEncoder const counted("_ZN9umbrixlib7toolkit11tga_encoderEv");
    return counted;
}

} // namespace umbrixlib::toolkit
