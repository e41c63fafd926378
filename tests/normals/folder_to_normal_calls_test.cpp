// SPDX-License-Identifier: MIT
// The calls that the folder batch of normal maps makes. The files are empty: stand-ins serve the pictures.
#include "files/folder_to_normal.h"

#include "devil_fake.h"
#include "folder_calls.h"
#include "picture_depths.h"

#include <gmock/gmock.h>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;

class FolderToNormalCalls : public umbrixlib::test::FolderCalls {
protected:
    void SetUp() override { DevilFake::instance().serve(4, 4, 24); }
    void TearDown() override { DevilFake::instance() = {}; }

    bool run(char const* pattern, bool recurse, std::string const& path)
    {
        return FolderToNormal(path, pattern, 2.0f, 0.0f, false, 1, 3.0f, false, layers_, false, recurse,
                              &current_, &status_, &progress_);
    }
    bool run(char const* pattern, bool recurse = false) { return run(pattern, recurse, root()); }
};

TEST_F(FolderToNormalCalls, EachFileIsConvertedBesideItself)
{
    add_files({"rock.tga", "stone wall_Height.TGA", "gr\xc3\xbcn_n.tga", "note.txt", "no_dot"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(gr\xc3\xbcn_n.tga)", "ilSaveImage(gr\xc3\xbcn_Normal.tga)",
                            "ilLoadImage(rock.tga)", "ilSaveImage(rock_Normal.tga)",
                            "ilLoadImage(stone wall_Height.TGA)", "ilSaveImage(stone wall_Normal.TGA)"));
    EXPECT_THAT(calls({"Height2Normal3("}).size(), 3U);
    EXPECT_THAT(calls({"Height2Normal3("})[0], testing::EndsWith(", 4, 4, 2)")) << "n_scale";
    EXPECT_EQ(calls({"BilateralFilter3("}).size(), 3U) << "L_Detail";
}

TEST_F(FolderToNormalCalls, SubfoldersComeFirst)
{
    add_files({"a.tga", "Big Rocks/b_H.tga", "Big Rocks/deep/c.tga", "z_NORMAL/d.tga"});
    EXPECT_TRUE(run("*.tga", true));
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(Big Rocks/deep/c.tga)", "ilSaveImage(Big Rocks/deep/c_Normal.tga)",
                            "ilLoadImage(Big Rocks/b_H.tga)", "ilSaveImage(Big Rocks/b_Normal.tga)",
                            "ilLoadImage(z_NORMAL/d.tga)", "ilSaveImage(z_NORMAL/d_Normal.tga)",
                            "ilLoadImage(a.tga)", "ilSaveImage(a_Normal.tga)"));
    EXPECT_EQ(fs::current_path(), fs::canonical(root_.path()));
}

TEST_F(FolderToNormalCalls, ATagInAFoldersNameCountsForEveryFileBelow)
{
    add_files({"x_n.d/rock.tga", "x_n.d/wall_a.tga"});
    EXPECT_TRUE(run("*.tga", true));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(x_n.d/rock.tga)", "ilSaveImage(x_Normal.tga)",
                                     "ilLoadImage(x_n.d/wall_a.tga)", "ilSaveImage(x_n.d/wall_Normal.tga)"));
}

TEST_F(FolderToNormalCalls, TwoSourcesOfOneNameAndEarlierResultsAreInputsLikeAnyOther)
{
    add_files({"rock.tga", "rock_H.tga", "rock_Normal.tga"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(rock_Normal.tga)", "ilSaveImage(rock_Normal.tga)",
                            "ilSaveImage(rock_Normal.tga)"));
    CallLog::instance().clear();
    add_files({"rock_Umbrix.tga"});
    EXPECT_TRUE(run("*umbrix.tga"));
    EXPECT_THAT(calls({"ilSaveImage("}), ElementsAre("ilSaveImage(rock_Umbrix_Normal.tga)"));
}

TEST_F(FolderToNormalCalls, TheFrontEndSeesWhatIsInWork)
{
    add_files({"a.tga", "sub/b.tga"});
    Calls seen;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call.rfind("ilInit", 0) == 0 || call.rfind("ilLoadImage", 0) == 0 ||
            call.rfind("ilSave", 0) == 0) {
            seen.push_back(call.substr(0, call.find('(')) + ": " + current_ + ", " + status_ + ", " +
                           std::to_string(progress_));
            progress_ = 55;
        }
    };
    EXPECT_TRUE(run("*.tga", true));
    EXPECT_THAT(seen, ElementsAre("ilInit: before, before, 7", "ilInit: sub/, before, 55",
                                  "ilInit: b.tga, Processing, 0", "ilLoadImage: b.tga, Processing, 55",
                                  "ilSaveImage: b.tga, Generating Normal, 0", "ilInit: a.tga, Processing, 0",
                                  "ilLoadImage: a.tga, Processing, 55",
                                  "ilSaveImage: a.tga, Generating Normal, 0"));
}

TEST_F(FolderToNormalCalls, ALayeredWalkWritesNoFile)
{
    add_files({"a.tga", "sub/b.tga"});
    n_layer record;
    record.filename = "never read.tga";
    layers_.Add(record);
    layers_.Add(record);
    EXPECT_TRUE(run("*.tga", true));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(sub/b.tga)", "ilLoadImage(sub/b.tga)", "ilLoadImage(a.tga)",
                                     "ilLoadImage(a.tga)"));
    EXPECT_EQ(calls({"Height2Normal("}).size(), 4U) << "every layer's normals are made";
    EXPECT_EQ(calls({"Height2Normal3("}).size(), 0U);
    EXPECT_EQ(status_, "Processing");
    EXPECT_FALSE(layers_.GetRef(0)->regenerate) << "the walk has its own copy of the list";
}

TEST_F(FolderToNormalCalls, AMissingFolderIsFalseAndNothingIsDone)
{
    for (bool const recurse : {false, true}) {
        EXPECT_FALSE(run("*.tga", recurse, root() + "/missing"));
    }
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(calls({"ilInit("}).size(), 2U) << "the stack is made first";
    EXPECT_EQ(current_, "before");
}

TEST_F(FolderToNormalCalls, APatternThatMatchesNothingIsTrue)
{
    add_files({"a.tga"});
    EXPECT_TRUE(run("*.png"));
    EXPECT_TRUE(run("*.png", true));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(FolderToNormalCalls, ASubfolderThatIsGoneDoesNotStopTheWalk)
{
    add_files({"a.tga", "one/b.tga", "two/c.tga"});
    DevilFake::instance().on_call = [&](std::string const&) { fs::remove_all(root_ / "two"); };
    EXPECT_TRUE(run("*.tga", true));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(one/b_Normal.tga)", "ilSaveImage(a_Normal.tga)"));
}

TEST_F(FolderToNormalCalls, AFileWithoutADotRaises)
{
    add_files({"a.tga", "b", "c.tga"});
    EXPECT_THROW(run("*.*"), std::out_of_range);
    EXPECT_THAT(calls({"ilSaveImage("}), ElementsAre("ilSaveImage(a_Normal.tga)")) << "before it came up";
    EXPECT_EQ(current_, "b");
}

TEST_F(FolderToNormalCalls, AFileThatFailsDoesNotStopTheWalk)
{
    add_files({"a.tga", "b.tga"});
    DevilFake::instance().load_result = 0;
    DevilFake::instance().save_result = 0;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(calls({"ilSaveImage("}).size(), 2U);
}

class FolderToNormalDepths : public FolderToNormalCalls, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, FolderToNormalDepths, testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(FolderToNormalDepths, FilesOfEverySizeComeOut)
{
    std::vector<std::size_t> expected;
    for (auto const& size : umbrixlib::test::kPictureSizes) {
        std::string const name = std::string(1, static_cast<char>('a' + expected.size())) + ".tga";
        add_files({name.c_str()});
        DevilFake::instance().files[root() + "/" + name] = {
            size.width, size.height, 8 * GetParam(), std::vector<unsigned char>(4 * size.texels(), 100)};
        expected.push_back(3 * size.texels());
    }
    std::vector<std::size_t> saved;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call.rfind("ilSaveImage(", 0) == 0) {
            saved.push_back(DevilFake::instance().stored.size());
        }
    };
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(saved, expected);
    CallLog::instance().clear();
    layers_.Add({});
    EXPECT_TRUE(run("*.tga")) << "through a stack";
    EXPECT_EQ(calls({"Height2Normal("}).size(), expected.size());
}

TEST_F(FolderToNormalCalls, ARelativePathServesWithoutRecurseOnly)
{
    add_files({"tree/a.tga", "tree/sub/b.tga"});
    fs::current_path(root_.path());
    EXPECT_TRUE(run("*.tga", false, "tree"));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(tree/a.tga)", "ilSaveImage(tree/a_Normal.tga)"));
    CallLog::instance().clear();
    fs::current_path(root_.path());
    EXPECT_FALSE(run("*.tga", true, "tree"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(FolderToNormalCalls, TheGpuFormIsTheSameWalkOnTheProcessor)
{
    add_files({"a_H.tga", "sub/b.tga"});
    EXPECT_TRUE(run("*.tga", true));
    Calls const expected = CallLog::instance().calls();
    CallLog::instance().clear();
    GPU_opt const options{true, 3, 100};
    EXPECT_TRUE(FolderToNormal_GPU(options, root(), "*.tga", 2.0f, 0.0f, false, 1, 3.0f, false, layers_,
                                   false, true, &current_, &status_, &progress_));
    EXPECT_THAT(files(), testing::SizeIs(4));
    EXPECT_EQ(CallLog::instance().calls().size(), expected.size());
    EXPECT_THAT(calls({"SetDevice", "SetSrc", "SetDest", "HeightToNormal_GPU"}), IsEmpty());
    EXPECT_FALSE(FolderToNormal_GPU(options, root() + "/missing", "*.tga", 2.0f, 0.0f, false, 1, 3.0f, false,
                                    layers_, false, true, &current_, &status_, &progress_));
}

} // namespace
