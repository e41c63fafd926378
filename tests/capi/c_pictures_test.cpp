// SPDX-License-Identifier: MIT
#include "c_objects.h"
#include "temporary_folder.h"

#include <cstdint>
#include <filesystem>

using umbrixlib::test::TemporaryFolder;

namespace {

std::string const kCobbles = UMBRIX_EXAMPLES "/textures/cobbles_height.png";

TEST(CPictures, HaveTheTopRowFirst)
{
    Calls calls;
    std::vector<float> const rows{1.0f, 1.0f, 0.5f, 0.5f, 0.0f, 0.0f};
    TemporaryFolder const folder;
    std::string const file = (folder.path() / "rows.pfm").string();
    umbrix_picture* const picture = calls.wrap(rows.data(), Calls::floats(2, 3, 1));
    ASSERT_EQ(umbrix_picture_write(calls, picture, file.c_str(), nullptr), UMBRIX_OK) << calls.sentence();
    EXPECT_EQ(calls.samples(calls.read(file)), rows);
}

TEST(CPictures, OfAnyStridesAndSamplesAreTheSamePicture)
{
    Calls calls;
    // Of a frame of 4 x 3 texels of 3 channels the green ones, from right to left and from the bottom up.
    std::vector<std::uint16_t> frame(4 * 3 * 3);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i] = static_cast<std::uint16_t>(i * 1000);
    }
    umbrix_layout layout{sizeof(umbrix_layout), 4, 3, 1, UMBRIX_UINT16, UMBRIX_HEIGHTS, -24, -6, 0};
    std::uint16_t const* const last_green = &frame[2 * 12 + 3 * 3 + 1];
    std::vector<float> const seen = calls.samples(calls.wrap(last_green, layout));
    ASSERT_EQ(seen.size(), 12U);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        std::size_t const at = (11 - i) * 3 + 1;
        EXPECT_EQ(seen[i], static_cast<float>(static_cast<double>(frame[at]) / 65535.0));
    }
}

TEST(CPictures, TellWhatTheyAreAndKeepItInFiles)
{
    Calls calls;
    TemporaryFolder const folder;
    std::string const file = (folder.path() / "rock_N.png").string();
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, calls.read(kCobbles), calls.with({{"normal-y", "down"}}), normals),
              UMBRIX_OK);
    EXPECT_EQ(Calls::layout_of(normals).kind, UMBRIX_NORMALS);
    ASSERT_EQ(umbrix_picture_write(calls, normals, file.c_str(), nullptr), UMBRIX_OK) << calls.sentence();
    umbrix_picture* const back = calls.read(file);
    EXPECT_STREQ(umbrix_picture_format(back), "PNG");
    EXPECT_EQ(std::string(umbrix_picture_name(back)), file);
    std::string const told = umbrix_picture_attributes(back);
    EXPECT_NE(told.find("green: down"), std::string::npos) << told;
    EXPECT_NE(told.find("coding: 0..1"), std::string::npos) << told;
}

TEST(CPictures, AttributesGoFromPictureToPicture)
{
    Calls calls;
    std::vector<float> const flat(12, 0.5f);
    umbrix_picture* const picture = calls.wrap(flat.data(), Calls::floats(2, 2, 3));
    std::string const text = "umbrix: map\nmode: squared\n";
    ASSERT_EQ(umbrix_picture_set_attributes(calls, picture, text.c_str()), UMBRIX_OK);
    EXPECT_NE(std::string(umbrix_picture_attributes(picture)).find("mode: squared"), std::string::npos);
    ASSERT_EQ(umbrix_picture_set_attributes(calls, picture, "anything else"), UMBRIX_OK);
    EXPECT_STREQ(umbrix_picture_attributes(picture), "");
}

TEST(CPictures, AreNotWrittenOverUnlessThatIsAsked)
{
    Calls calls;
    TemporaryFolder const folder;
    std::string const file = (folder.path() / "a.png").string();
    std::vector<float> const grey{0.25f, 0.5f};
    umbrix_picture* const picture = calls.wrap(grey.data(), Calls::floats(2, 1, 1));
    ASSERT_EQ(umbrix_picture_write(calls, picture, file.c_str(), nullptr), UMBRIX_OK);
    EXPECT_EQ(umbrix_picture_write(calls, picture, file.c_str(), nullptr), UMBRIX_FILE_EXISTS);
    umbrix_saving saving{sizeof(umbrix_saving), UMBRIX_DEPTH_16, UMBRIX_TRUNCATE, UMBRIX_COMPRESSION_DEFAULT,
                         1};
    ASSERT_EQ(umbrix_picture_write(calls, picture, file.c_str(), &saving), UMBRIX_OK);
    EXPECT_EQ(Calls::layout_of(calls.read(file)).samples, UMBRIX_UINT16);
    std::size_t files = 0;
    for ([[maybe_unused]] auto const& each : std::filesystem::directory_iterator(folder.path())) {
        ++files;
    }
    EXPECT_EQ(files, 1U);
}

TEST(CPictures, OfBytesComeBackAsTheyWere)
{
    Calls calls;
    TemporaryFolder const folder;
    std::string const file = (folder.path() / "a.png").string();
    std::vector<std::uint8_t> bytes(5 * 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 4);
    }
    umbrix_layout layout{sizeof(umbrix_layout), 5, 3, 4, UMBRIX_UINT8, UMBRIX_UNKNOWN, 0, 0, 0};
    ASSERT_EQ(umbrix_picture_write(calls, calls.wrap(bytes.data(), layout), file.c_str(), nullptr), UMBRIX_OK)
        << calls.sentence();
    umbrix_picture* const back = calls.read(file);
    std::vector<std::uint8_t> seen(bytes.size());
    ASSERT_EQ(umbrix_picture_copy(calls, back, seen.data(), &layout), UMBRIX_OK) << calls.sentence();
    EXPECT_EQ(seen, bytes);
}

TEST(CPictures, OfOtherSizesAreRefusedForACopy)
{
    Calls calls;
    umbrix_picture* const cobbles = calls.read(kCobbles);
    std::vector<float> memory(4);
    umbrix_layout const layout = Calls::floats(2, 2, 1);
    EXPECT_EQ(umbrix_picture_copy(calls, cobbles, memory.data(), &layout), UMBRIX_WRONG_ARGUMENT);
    EXPECT_NE(calls.sentence().find("2 x 2 of 1 channels"), std::string::npos) << calls.sentence();
}

TEST(CPictures, NamesOfResultsAreThoseOfTheTool)
{
    Calls calls;
    char const* name = nullptr;
    ASSERT_EQ(umbrix_result_name(calls, "a/brick_H.tga", "_Umbrix", nullptr, &name), UMBRIX_OK);
    EXPECT_STREQ(name, "a/brick_Umbrix.tga");
    ASSERT_EQ(umbrix_result_name(calls, "a/brick_H.tga", "_Umbrix", ".exr", &name), UMBRIX_OK);
    EXPECT_STREQ(name, "a/brick_Umbrix.exr");
    EXPECT_EQ(umbrix_is_picture_name("a.PNG"), 1);
    EXPECT_EQ(umbrix_is_picture_name("a.txt"), 0);
    EXPECT_EQ(umbrix_is_picture_name(nullptr), 0);
    EXPECT_EQ(umbrix_kind_of_name("rock_height_2k.png"), UMBRIX_HEIGHTS);
    EXPECT_EQ(umbrix_kind_of_name("rock_nor_dx.png"), UMBRIX_NORMALS);
    EXPECT_EQ(umbrix_kind_of_name("rock.png"), UMBRIX_UNKNOWN);
    EXPECT_EQ(umbrix_kind_of_name("rock_albedo.png"), -1);
    EXPECT_EQ(umbrix_kind_of_name(nullptr), UMBRIX_UNKNOWN);
}

} // namespace
