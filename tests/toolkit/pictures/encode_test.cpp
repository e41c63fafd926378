// SPDX-License-Identifier: MIT
/// Pictures are written and read back before anybody trusts them.
#include "decoding.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/encoder.h"

#include <functional>
#include <random>
#include <unistd.h>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// Writes what a true encoder writes, and then something happens to the file.
class Unlucky : public Encoder {
public:
    Unlucky(Encoder const& real, bool quick_look, std::function<void(std::filesystem::path const&)> fate)
        : real_(real), quick_look_(quick_look), fate_(std::move(fate))
    {
    }

    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        bool const written = real_.encode(file, picture);
        fate_(file);
        return written;
    }
    std::optional<bool> holds(std::filesystem::path const& file, Picture const& picture) const override
    {
        return quick_look_ ? real_.holds(file, picture) : std::nullopt;
    }

private:
    Encoder const& real_;
    bool quick_look_;
    std::function<void(std::filesystem::path const&)> fate_;
};

class WritePicture : public Decoding {
protected:
    WritePicture()
    {
        for (std::size_t i = 0; i < picture_.bytes.size(); ++i) {
            picture_.bytes[i] = static_cast<std::uint8_t>(i * i);
        }
    }

    std::optional<Fault> fault_of(char const* name, bool quick_look,
                                  std::function<void(std::filesystem::path const&)> const& fate)
    {
        std::filesystem::path const file = folder_ / name;
        OutputFormat format = *output_format(file);
        Unlucky const encoder(*format.encoder, quick_look, fate);
        format.encoder = &encoder;
        Observer nobody;
        try {
            write_picture(file, format, "output", picture_, Compression::kDefault, nobody);
            return std::nullopt;
        } catch (Failure const& failure) {
            EXPECT_EQ(failure.subject, "output");
            return failure.fault;
        }
    }

    Picture picture_ = make_picture(40, 30, 3);
};

TEST_F(WritePicture, TakesOnlyWhatReadsBack)
{
    for (char const* const name : {"a.png", "a.tga"}) {
        for (bool const quick_look : {true, false}) {
            EXPECT_EQ(fault_of(name, quick_look, [](auto const&) {}), std::nullopt);
            EXPECT_EQ(fault_of(name, quick_look,
                               [](auto const& file) { ASSERT_EQ(truncate(file.c_str(), 70), 0); }),
                      Fault::kNotReadBack);
            EXPECT_EQ(fault_of(name, quick_look,
                               [&](auto const& file) {
                                   Picture other = picture_;
                                   other.bytes[777] ^= 1;
                                   output_format(file)->encoder->encode(file, other);
                               }),
                      Fault::kNotReadBack);
            EXPECT_EQ(fault_of(name, quick_look,
                               [&](auto const& file) {
                                   output_format(file)->encoder->encode(file, make_picture(30, 40, 3));
                               }),
                      Fault::kNotReadBack);
        }
    }
}

TEST_F(WritePicture, ComparesGreysWithTheColoursThatSomeFormatsMakeOfThem)
{
    picture_ = make_picture(8, 8, 2);
    picture_.bytes[5] = 77;
    for (char const* const name : {"a.tga", "a.bmp", "a.psd", "a.png"}) {
        EXPECT_EQ(fault_of(name, false, [](auto const&) {}), std::nullopt) << name;
    }
}

/// Bytes of which some chunks of OpenEXR save nothing when they are compressed, and lose nothing, either.
TEST_F(WritePicture, TakesOpenExrOfAnyContent)
{
    OutputFormat const& format = *output_format("a.exr");
    Observer nobody;
    std::mt19937 random; // its numbers are the same everywhere
    for (unsigned zeros = 0; zeros < 48; ++zeros) {
        Picture noise = make_picture(4, 16 * 8, 1, SampleType::kHalf);
        for (Half& each : noise.samples<Half>()) {
            each.bits = random() % 64 < zeros ? 0 : static_cast<std::uint16_t>(random());
        }
        EXPECT_NO_THROW(
            write_picture(folder_ / "a.exr", format, "a.exr", noise, Compression::kDefault, nobody))
            << zeros;
    }
}

} // namespace
} // namespace umbrixlib::test
