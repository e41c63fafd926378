// SPDX-License-Identifier: MIT
#include "c_objects.h"
#include "temporary_folder.h"

#include <filesystem>
#include <fstream>
#include <limits>

using umbrixlib::test::TemporaryFolder;

namespace {

umbrix_code code_of_reading(Calls& calls, std::filesystem::path const& file, double max_texels = 0)
{
    umbrix_picture* picture = nullptr;
    umbrix_code const code = umbrix_picture_read(calls, file.c_str(), max_texels, &picture);
    EXPECT_EQ(picture, nullptr);
    EXPECT_EQ(calls.error().code, code);
    EXPECT_NE(calls.sentence(), "");
    return code;
}

TEST(CErrors, OfFilesThatAreReadTellTheirKindInASentence)
{
    Calls calls;
    TemporaryFolder const folder;
    EXPECT_EQ(code_of_reading(calls, folder / "none.png"), UMBRIX_NO_FILE);
    EXPECT_EQ(code_of_reading(calls, folder.path()), UMBRIX_NO_FILE);
    std::ofstream(folder / "empty.png").close();
    EXPECT_EQ(code_of_reading(calls, folder / "empty.png"), UMBRIX_NOT_READABLE);
    std::ofstream(folder / "text.png") << "this is no picture, and long enough for a header of one";
    EXPECT_EQ(code_of_reading(calls, folder / "text.png"), UMBRIX_NOT_READABLE);
    EXPECT_EQ(calls.sentence().find((folder / "text.png").string()), 0U) << calls.sentence();
    EXPECT_EQ(code_of_reading(calls, UMBRIX_EXAMPLES "/textures/cobbles_height.png", 100),
              UMBRIX_NOT_READABLE);
}

TEST(CErrors, OfFilesThatAreWrittenLeaveNothingBehind)
{
    Calls calls;
    TemporaryFolder const folder;
    std::vector<float> const grey(4, 0.5f);
    umbrix_picture* const picture = calls.wrap(grey.data(), Calls::floats(2, 2, 1));
    auto const code = [&](char const* name) {
        return umbrix_picture_write(calls, picture, (folder / name).c_str(), nullptr);
    };
    EXPECT_EQ(code("a.xyz"), UMBRIX_NOT_WRITTEN);
    EXPECT_EQ(code("missing/a.png"), UMBRIX_NOT_WRITTEN);
    umbrix_saving const half{sizeof(umbrix_saving), UMBRIX_DEPTH_HALF, UMBRIX_TRUNCATE,
                             UMBRIX_COMPRESSION_DEFAULT, 0};
    EXPECT_EQ(umbrix_picture_write(calls, picture, (folder / "a.png").c_str(), &half), UMBRIX_NOT_WRITTEN);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(CErrors, OfPicturesNameWhatIsWrong)
{
    Calls calls;
    std::vector<float> heights(64, 0.5f);
    heights[3] = std::numeric_limits<float>::quiet_NaN();
    umbrix_picture* const picture = calls.wrap(heights.data(), Calls::floats(8, 8, 1));
    ASSERT_EQ(umbrix_picture_set_name(calls, picture, "wall"), UMBRIX_OK);
    EXPECT_EQ(umbrix_make_normals(calls, picture, nullptr, calls.empty()), UMBRIX_WRONG_PICTURE);
    EXPECT_EQ(calls.sentence(), "wall: 1 of its texels is NaN or infinite");
    heights[3] = 4.0f;
    EXPECT_EQ(umbrix_make_normals(calls, picture, nullptr, calls.empty()), UMBRIX_WRONG_PICTURE);
    EXPECT_EQ(calls.sentence(), "wall: its heights are 0.5 to 4, not 0 to 1");
    EXPECT_STREQ(calls.error().remedy, "read them with a height-range of 0.5,4, or save them as floats");
    EXPECT_EQ(umbrix_make_normals(calls, picture, calls.with({{"height-range", "auto"}}), calls.empty()),
              UMBRIX_OK);
    EXPECT_EQ(calls.error().code, UMBRIX_OK);
    EXPECT_EQ(calls.sentence(), "");
}

TEST(CErrors, OfHeightsOutsideTheirRangeKeepThemFromWholeNumbers)
{
    Calls calls;
    TemporaryFolder const folder;
    std::vector<float> const heights{0.0f, 2.0f, 1.0f, 0.5f};
    umbrix_picture* const picture = calls.wrap(heights.data(), Calls::floats(2, 2, 1, UMBRIX_HEIGHTS));
    EXPECT_EQ(umbrix_picture_write(calls, picture, (folder / "a.png").c_str(), nullptr),
              UMBRIX_WRONG_PICTURE);
    EXPECT_EQ(umbrix_picture_write(calls, picture, (folder / "a.pfm").c_str(), nullptr), UMBRIX_OK)
        << calls.sentence();
}

TEST(CErrors, OfStacksNameTheLayer)
{
    Calls calls;
    std::vector<float> const up{0.0f, 0.0f, 1.0f};
    umbrix_stack* stack = nullptr;
    ASSERT_EQ(umbrix_stack_new(calls, &stack), UMBRIX_OK);
    umbrix_layer layer{};
    layer.size = sizeof layer;
    umbrix_layer_default(&layer);
    EXPECT_EQ(umbrix_stack_make(calls, stack, nullptr, calls.empty(), nullptr, nullptr),
              UMBRIX_WRONG_PICTURE);
    layer.normals = 1;
    umbrix_picture* const normals = calls.wrap(up.data(), Calls::floats(1, 1, 3, UMBRIX_NORMALS));
    EXPECT_EQ(umbrix_stack_add(calls, stack, normals, &layer), UMBRIX_WRONG_PICTURE);
    layer.normals = 0;
    layer.gaussian = -1;
    EXPECT_EQ(umbrix_stack_add(calls, stack, normals, &layer), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(calls.sentence(), "layer: its gaussian is -1, not 0 to 1000");
    umbrix_stack_free(stack);
}

} // namespace
