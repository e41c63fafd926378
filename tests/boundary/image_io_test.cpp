// SPDX-License-Identifier: MIT
// The image border with the real DevIL.
#include "boundary/image_io.h"

#include "boundary/message_box.h"
#include "temporary_folder.h"
#include "test_picture.h"

#include <IL/il.h>
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <ostream>

namespace {

using namespace umbrixlib::detail;
using umbrixlib::test::Picture;
using umbrixlib::test::TemporaryFolder;

int messages_shown = 0;

void count_message(char const*, char const*)
{
    ++messages_shown;
}

class ImageIo : public testing::Test {
protected:
    ImageIo()
    {
        messages_shown = 0;
        set_message_handler(&count_message);
        prepare_devil(Overwrite::kAllow);
    }
    ~ImageIo() override
    {
        shut_down_devil();
        set_message_handler(nullptr);
    }

    TemporaryFolder folder_;
};

TEST_F(ImageIo, ABooleanResultNeverEqualsAnErrorCode)
{
    EXPECT_EQ(load_image((folder_ / "missing.png").c_str()), FileOutcome::kGoOn);
    EXPECT_EQ(save_image((folder_ / "no_folder" / "x.png").c_str()), FileOutcome::kGoOn);
    EXPECT_EQ(messages_shown, 0);
    EXPECT_EQ(load_message(0), nullptr);
    EXPECT_EQ(load_message(1), nullptr);
    EXPECT_EQ(save_message(0), nullptr);
    EXPECT_EQ(save_message(1), nullptr);
}

TEST_F(ImageIo, TheTextsOfTheErrorCodes)
{
    EXPECT_STREQ(load_message(0x0506),
                 "There is currently no image bound.\n Use ilGenImages and ilBindImage before "
                 "calling this function.");
    EXPECT_STREQ(load_message(0x0509), "FileName was not valid.");
    EXPECT_STREQ(load_message(0x050A),
                 "The file pointed to by FileName could not be opened.\n Either the file does not "
                 "exist or is in use by another process.");
    EXPECT_STREQ(load_message(0x050B), "The file could not be loaded based on extension or header.");
    EXPECT_EQ(load_message(0x0507), nullptr);
    EXPECT_EQ(load_message(0x0508), nullptr);
    EXPECT_STREQ(save_message(0x0501), "Could not open destination image for writing.");
    EXPECT_STREQ(save_message(0x050A), load_message(0x050A));
    EXPECT_EQ(save_message(0x0509), nullptr);
}

TEST_F(ImageIo, TheOriginCallTakesNoEffect)
{
    EXPECT_EQ(ilGetInteger(IL_ORIGIN_MODE), IL_ORIGIN_LOWER_LEFT);
    Picture picture(2, 3, 3, 10);
    picture.set(0, 0, {1, 2, 3});
    picture.save(folder_ / "a.tga");
    load_image((folder_ / "a.tga").c_str());
    ImageBytes const bytes = make_image_bytes(6, 3);
    copy_pixels(bound_image_size(), PixelFormat::kRgb, bytes.get());
    EXPECT_EQ(bytes[0], 1) << "the bottom row comes first";
    EXPECT_EQ(bytes[2], 3);
}

TEST_F(ImageIo, SizeAndChannelsAreThoseOfTheBoundImage)
{
    for (int channels : {1, 3, 4}) {
        Picture(5, 4, channels, 9).save(folder_ / "a.tga");
        load_image((folder_ / "a.tga").c_str());
        EXPECT_EQ(bound_image_size().width, 5);
        EXPECT_EQ(bound_image_size().height, 4);
        EXPECT_EQ(bound_image_channels(), channels);
    }
}

TEST_F(ImageIo, AOneByteImageReadsAsZeros)
{
    Picture(5, 4, 1, 200).save(folder_ / "grey.tga");
    load_image((folder_ / "grey.tga").c_str());
    ImageBytes const bytes = make_image_bytes(20, 1);
    copy_pixels(bound_image_size(), PixelFormat::kOneByte, bytes.get());
    EXPECT_TRUE(std::all_of(bytes.get(), bytes.get() + 80, [](unsigned char b) { return b == 0; }));
}

TEST_F(ImageIo, AlphaIsDroppedOrKeptAsAskedFor)
{
    Picture picture(2, 2, 4, 50);
    picture.at(1, 0)[3] = 77;
    picture.save(folder_ / "rgba.tga");
    load_image((folder_ / "rgba.tga").c_str());
    ImageBytes const rgba = make_image_bytes(4, 4);
    copy_pixels(bound_image_size(), PixelFormat::kRgba, rgba.get());
    EXPECT_EQ(rgba[7], 77);
    ImageBytes const rgb = make_image_bytes(4, 3);
    copy_pixels(bound_image_size(), PixelFormat::kRgb, rgb.get());
    EXPECT_EQ(rgb[11], 50);
    EXPECT_EQ(rgb[12], 0) << "three bytes a texel";
}

/// A kind of pixel that DevIL may have bound.
struct Depth {
    int channels;
    ILenum format, type;
    int bytes;
};

void PrintTo(Depth const& depth, std::ostream* out)
{
    *out << depth.channels << " channels, " << depth.bytes << " bytes a pixel";
}

class ImageIoDepths : public ImageIo, public testing::WithParamInterface<Depth> {
protected:
    /// Binds white pixels of the depth.
    static void bind_white(ImageSize size)
    {
        Depth const& depth = GetParam();
        std::vector<unsigned char> pixels(static_cast<std::size_t>(size.width * size.height * depth.bytes),
                                          0xff);
        if (depth.type == IL_FLOAT) {
            std::vector<float> const ones(pixels.size() / sizeof(float), 1.0f);
            std::memcpy(pixels.data(), ones.data(), pixels.size());
        }
        ilTexImage(static_cast<ILuint>(size.width), static_cast<ILuint>(size.height), 1,
                   static_cast<ILubyte>(depth.channels), depth.format, depth.type, pixels.data());
    }

    /// The first @p count bytes that a copy writes; it must write no others.
    static std::vector<unsigned char> copied(ImageSize size, PixelFormat format, std::size_t count)
    {
        constexpr unsigned char kUntouched = 0xa5;
        std::vector<unsigned char> bytes(count + 64, kUntouched);
        copy_pixels(size, format, bytes.data());
        EXPECT_TRUE(std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end(),
                                [](unsigned char b) { return b == kUntouched; }));
        bytes.resize(count);
        return bytes;
    }
};

INSTANTIATE_TEST_SUITE_P(
    OfEveryKind, ImageIoDepths,
    testing::Values(Depth{1, IL_LUMINANCE, IL_UNSIGNED_BYTE, 1},
                    Depth{2, IL_LUMINANCE_ALPHA, IL_UNSIGNED_BYTE, 2}, Depth{3, IL_RGB, IL_UNSIGNED_BYTE, 3},
                    Depth{4, IL_RGBA, IL_UNSIGNED_BYTE, 4}, Depth{1, IL_LUMINANCE, IL_UNSIGNED_SHORT, 2},
                    Depth{2, IL_LUMINANCE_ALPHA, IL_UNSIGNED_SHORT, 4},
                    Depth{3, IL_RGB, IL_UNSIGNED_SHORT, 6}, Depth{4, IL_RGBA, IL_UNSIGNED_SHORT, 8},
                    Depth{1, IL_LUMINANCE, IL_FLOAT, 4}, Depth{2, IL_LUMINANCE_ALPHA, IL_FLOAT, 8},
                    Depth{3, IL_RGB, IL_FLOAT, 12}, Depth{4, IL_RGBA, IL_FLOAT, 16}));

TEST_P(ImageIoDepths, ColoursComeAsBytesInTheFormatAskedFor)
{
    for (ImageSize const size : {ImageSize{5, 3}, {1, 7}, {7, 1}, {1, 1}}) {
        bind_white(size);
        EXPECT_EQ(bound_image_size().width, size.width);
        EXPECT_EQ(bound_image_size().height, size.height);
        EXPECT_EQ(bound_image_channels(), GetParam().bytes);
        auto const texels = static_cast<std::size_t>(size.width * size.height);
        EXPECT_EQ(copied(size, PixelFormat::kRgb, 3 * texels), std::vector<unsigned char>(3 * texels, 255));
        EXPECT_EQ(copied(size, PixelFormat::kRgba, 4 * texels), std::vector<unsigned char>(4 * texels, 255));
        copied(size, PixelFormat::kOneByte, 0);
    }
}

TEST_P(ImageIoDepths, NewPixelsTakeThePlaceOfThoseOfAnyDepth)
{
    bind_white({5, 3});
    ImageBytes const bytes = make_image_bytes(6, 4);
    std::fill_n(bytes.get(), 24, static_cast<unsigned char>(40));
    replace_image({3, 2}, 4, bytes.get());
    save_image((folder_ / "replaced.tga").c_str());
    Picture const replaced = Picture::load(folder_ / "replaced.tga");
    EXPECT_EQ(replaced.channels, 4);
    EXPECT_EQ(replaced.bytes, std::vector<unsigned char>(24, 40));
}

TEST_F(ImageIo, AMissingFileLeavesTheImageThatIsBound)
{
    Picture(7, 6, 3, 9).save(folder_ / "a.tga");
    load_image((folder_ / "a.tga").c_str());
    load_image((folder_ / "missing.tga").c_str());
    EXPECT_EQ(bound_image_size().width, 7);
}

TEST_F(ImageIo, ReplacedAndRefilledImagesAreSavedOverExistingFiles)
{
    Picture(4, 4, 3, 9).save(folder_ / "in.tga");
    Picture(1, 1, 3, 0).save(folder_ / "out.tga");
    load_image((folder_ / "in.tga").c_str());
    ImageBytes const bytes = make_image_bytes(16, 4);
    bytes[0] = 200;
    refill_image({4, 4}, bytes.get());
    save_image((folder_ / "out.tga").c_str());
    EXPECT_EQ(Picture::load(folder_ / "out.tga").at(0, 0)[0], 200);
    bytes[4 * 15 + 3] = 99;
    replace_image({4, 4}, 4, bytes.get());
    save_image((folder_ / "out.tga").c_str());
    Picture const out = Picture::load(folder_ / "out.tga");
    EXPECT_EQ(out.channels, 4);
    EXPECT_EQ(out.at(3, 3)[3], 99);
}

TEST_F(ImageIo, OverwritingIsLeftAsItIsForCallersThatOnlyRead)
{
    shut_down_devil();
    prepare_devil(Overwrite::kLeaveAsIs);
    Picture(4, 4, 3, 9).save(folder_ / "a.tga");
    load_image((folder_ / "a.tga").c_str());
    auto const before = std::filesystem::file_size(folder_ / "a.tga");
    ImageBytes const bytes = make_image_bytes(1, 3);
    replace_image({1, 1}, 3, bytes.get());
    save_image((folder_ / "a.tga").c_str());
    EXPECT_EQ(std::filesystem::file_size(folder_ / "a.tga"), before);
    prepare_devil(Overwrite::kAllow);
    save_image((folder_ / "a.tga").c_str());
    EXPECT_NE(std::filesystem::file_size(folder_ / "a.tga"), before);
}

TEST_F(ImageIo, ASettingOfOverwritingOutlivesCallersThatOnlyRead)
{
    Picture(4, 4, 3, 9).save(folder_ / "a.tga");
    Picture(1, 1, 3, 9).save(folder_ / "out.tga");
    prepare_devil(Overwrite::kLeaveAsIs);
    load_image((folder_ / "a.tga").c_str());
    save_image((folder_ / "out.tga").c_str());
    EXPECT_EQ(Picture::load(folder_ / "out.tga").width, 4);
}

TEST_F(ImageIo, BytesHaveRoomForFourATexel)
{
    // Under address sanitizer a write past the end would end the test.
    for (int channels : {0, 1, 2, 3, 4, 6, 8, 12}) {
        ImageBytes const bytes = make_image_bytes(10, channels);
        std::fill_n(bytes.get(), 10 * std::max(channels, 4), static_cast<unsigned char>(1));
        EXPECT_EQ(bytes[39], 1);
    }
}

} // namespace
