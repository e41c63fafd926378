// SPDX-License-Identifier: MIT
#include "boundary/platform.h"
#include "files/output_name_internal.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>
#include <string>

namespace {

using umbrixlib::detail::output_name;
using umbrixlib::detail::TagSearch;

/// A source, and what the two kinds of search make of it.
struct Row {
    char const* folder;
    char const* name;
    char const* whole_path;
    char const* file_name;
};

void PrintTo(Row const& row, std::ostream* out)
{
    *out << row.folder << "/" << row.name;
}

/// The path as this system writes it.
std::string native(std::string path)
{
    std::replace(path.begin(), path.end(), '/', umbrixlib::detail::platform::kSeparator);
    return path;
}

class OutputName : public testing::TestWithParam<Row> {};

TEST_P(OutputName, FollowsTheTable)
{
    Row const& row = GetParam();
    std::string const folder = native(row.folder);
    EXPECT_EQ(output_name(folder, row.name, "_Normal", TagSearch::kWholePath), native(row.whole_path));
    EXPECT_EQ(output_name(folder, row.name, "_Umbrix", TagSearch::kFileName), native(row.file_name));
}

INSTANTIATE_TEST_SUITE_P(
    Tags, OutputName,
    testing::Values(Row{"/t", "rock.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "rock_h.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "rock_Height.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "rock_n.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "rock_N.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "ROCK_HEIGHT.TGA", "/t/ROCK_Normal.TGA", "/t/ROCK_Umbrix.TGA"},
                    Row{"/t", "rock_big_H.png", "/t/rock_big_Normal.png", "/t/rock_big_Umbrix.png"},
                    Row{"/t", "rock_normal.tga", "/t/rock_Normal.tga", "/t/rock_Umbrix.tga"},
                    Row{"/t", "_n.tga", "/t/_Normal.tga", "/t/_Umbrix.tga"},
                    Row{"/t", "stone wall_N.tga", "/t/stone wall_Normal.tga", "/t/stone wall_Umbrix.tga"},
                    Row{"/t",
                        "gr\xc3\xb6\xc3\x9f"
                        "e_h.tga",
                        "/t/gr\xc3\xb6\xc3\x9f"
                        "e_Normal.tga",
                        "/t/gr\xc3\xb6\xc3\x9f"
                        "e_Umbrix.tga"}));

INSTANTIATE_TEST_SUITE_P(
    NoTags, OutputName,
    testing::Values(Row{"/t", "rock_N_old.tga", "/t/rock_N_old_Normal.tga", "/t/rock_N_old_Umbrix.tga"},
                    Row{"/t", "rockN.tga", "/t/rockN_Normal.tga", "/t/rockN_Umbrix.tga"},
                    Row{"/t", "rock_NORMALS.tga", "/t/rock_NORMALS_Normal.tga", "/t/rock_NORMALS_Umbrix.tga"},
                    Row{"/t", "rock_Umbrix.tga", "/t/rock_Umbrix_Normal.tga", "/t/rock_Umbrix_Umbrix.tga"},
                    Row{"/t", ".tga", "/t/_Normal.tga", "/t/_Umbrix.tga"},
                    Row{"/t", "a.b.c.tga", "/t/a.b.c_Normal.tga", "/t/a.b.c_Umbrix.tga"}));

INSTANTIATE_TEST_SUITE_P(
    SeveralDotsAndTags, OutputName,
    testing::Values(Row{"/t", "a_N.b.tga", "/t/a_Normal.tga", "/t/a_Umbrix.tga"},
                    Row{"/t", "rock_n.b_h.tga", "/t/rock_n.b_Normal.tga", "/t/rock_n.b_Umbrix.tga"},
                    Row{"/t", "rock_n.b_c.tga", "/t/rock_n.b_Normal.tga", "/t/rock_n.b_Umbrix.tga"},
                    Row{"/t", "rock_height.", "/t/rock_Normal.", "/t/rock_Umbrix."},
                    Row{"/t", "a_N.b_c", "/t/a_N_Normal.b_c", "/t/a_N_Umbrix.b_c"}));

INSTANTIATE_TEST_SUITE_P(
    TagsInFolders, OutputName,
    testing::Values(Row{"/c/x_n.d", "rock.tga", "/c/x_Normal.tga", "/c/x_n.d/rock_Umbrix.tga"},
                    Row{"/c/x_n.d", "rock_a.tga", "/c/x_n.d/rock_Normal.tga", "/c/x_n.d/rock_a_Umbrix.tga"},
                    Row{"/c/x_n.d", "rock_N.tga", "/c/x_n.d/rock_Normal.tga", "/c/x_n.d/rock_Umbrix.tga"},
                    Row{"/c/X_HEIGHT.old/sub", "rock.tga", "/c/X_Normal.tga",
                        "/c/X_HEIGHT.old/sub/rock_Umbrix.tga"},
                    Row{"/c/x_n", "rock.tga", "/c/x_n/rock_Normal.tga", "/c/x_n/rock_Umbrix.tga"},
                    Row{"/c/x_n.d", "rock_a", "/c/x_n_Normal.d/rock_a", "/c/x_n_Umbrix.d/rock_a"},
                    Row{"/c/x.d", "rock", "/c/x_Normal.d/rock", "/c/x_Umbrix.d/rock"}));

TEST(OutputNames, WithoutADotInThePathThereIsNone)
{
    for (TagSearch const search : {TagSearch::kWholePath, TagSearch::kFileName}) {
        EXPECT_THROW(output_name("/t", "rock", "_Normal", search), std::out_of_range);
        EXPECT_THROW(output_name("/t_n", "rock_h", "_Normal", search), std::out_of_range);
    }
}

} // namespace
