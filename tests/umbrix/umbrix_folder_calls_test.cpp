// SPDX-License-Identifier: MIT
// The calls that the folder batch of Umbrix maps makes, on the CPU and with the graphics library. The files
// are empty: stand-ins serve the pictures.
#include "files/umbrix_folder.h"

#include "devil_fake.h"
#include "folder_calls.h"
#include "forms.h"
#include "graphics_fake.h"
#include "picture_depths.h"
#include "umbrix_test_options.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <omp.h>
#include <stdexcept>
#include <utility>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::Form;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::kCpu;
using umbrixlib::test::kGpu;
using umbrixlib::test::name_of;
using umbrixlib::test::neutral_options;

class UmbrixFolderCalls : public umbrixlib::test::FolderCalls, public testing::WithParamInterface<Form> {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        GraphicsFake::instance().reset();
        DevilFake::instance().serve(4, 4, 32);
        options_.cancel = &cancel_;
    }
    void TearDown() override
    {
        EXPECT_THAT(GraphicsFake::instance().faults, IsEmpty());
        EXPECT_FALSE(GraphicsFake::instance().has_slots());
        DevilFake::instance() = {};
        release();
    }

    /// What a run leaves to the caller.
    void release()
    {
        if (options_.keep_buffers) {
            delete[] std::exchange(options_.ao_map, nullptr);
            delete[] std::exchange(options_.normal_map, nullptr);
        }
        delete[] std::exchange(options_.height_copy, nullptr);
    }

    void describe(std::initializer_list<char const*> files)
    {
        for (char const* const file : files) {
            n_layer record;
            record.filename = file;
            record.opacity = 100.0f;
            layers_.Add(record);
        }
    }

    bool run(char const* search, std::string const& path, LinkedList<n_layer>* layers,
             NLayers* stack = nullptr)
    {
        release(); // what the run before left
        if (GetParam().graphics) {
            return UmbrixFolder_GPU({true, 3, 17}, path, search, options_, layers, stack, &current_, &status_,
                                    &progress_);
        }
        return UmbrixFolder(path, search, options_, layers, &current_, &status_, &progress_);
    }
    bool run(char const* search, std::string const& path) { return run(search, path, &layers_); }
    bool run(char const* search) { return run(search, root()); }

    /// Sets the stop flag when a call begins with @p start.
    void cancel_at(std::string const& start)
    {
        DevilFake::instance().on_call = [this, start](std::string const& call) {
            cancel_ = cancel_ || call.find(start) != std::string::npos;
        };
    }

    umbrix_options options_ = neutral_options();
    bool cancel_ = false;
};
INSTANTIATE_TEST_SUITE_P(Forms, UmbrixFolderCalls, testing::Values(kCpu, kGpu), name_of);

/// Where the CPU's form alone makes stacks of its own.
class UmbrixFolderStacks : public UmbrixFolderCalls {};
INSTANTIATE_TEST_SUITE_P(Forms, UmbrixFolderStacks, testing::Values(kCpu), name_of);

/// What the form with the graphics library alone does.
class UmbrixFolderGpuCalls : public UmbrixFolderCalls {};
INSTANTIATE_TEST_SUITE_P(Forms, UmbrixFolderGpuCalls, testing::Values(kGpu), name_of);

TEST_P(UmbrixFolderCalls, EachFileIsConvertedBesideItself)
{
    add_files({"rock.tga", "stone wall_Height.TGA", "gr\xc3\xbcn_n.tga", "note.txt", "no_dot", "a_N.b.tga"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(a_N.b.tga)", "ilSaveImage(a_Umbrix.tga)",
                            "ilLoadImage(gr\xc3\xbcn_n.tga)", "ilSaveImage(gr\xc3\xbcn_Umbrix.tga)",
                            "ilLoadImage(rock.tga)", "ilSaveImage(rock_Umbrix.tga)",
                            "ilLoadImage(stone wall_Height.TGA)", "ilSaveImage(stone wall_Umbrix.TGA)"));
}

TEST_P(UmbrixFolderCalls, SubfoldersComeFirstAndFolderNamesAreNoTags)
{
    add_files({"a_N.tga", "Big Rocks/b_H.tga", "Big Rocks/x_n.d/c.tga", "z.tga/d.tga"});
    options_.recurse = true;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(Big Rocks/x_n.d/c.tga)", "ilSaveImage(Big Rocks/x_n.d/c_Umbrix.tga)",
                            "ilLoadImage(Big Rocks/b_H.tga)", "ilSaveImage(Big Rocks/b_Umbrix.tga)",
                            "ilLoadImage(z.tga/d.tga)", "ilSaveImage(z.tga/d_Umbrix.tga)",
                            "ilLoadImage(a_N.tga)", "ilSaveImage(a_Umbrix.tga)"));
    EXPECT_EQ(fs::current_path(), fs::canonical(root_.path()));
}

TEST_P(UmbrixFolderCalls, WithoutRecurseFoldersAreLeftAlone)
{
    add_files({"a.tga", "sub/b.tga", "z.tga/d.tga"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(a.tga)", "ilSaveImage(a_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, TwoSourcesOfOneNameAndEarlierResultsAreInputsLikeAnyOther)
{
    add_files({"rock.tga", "rock_N.tga", "wall_Umbrix.tga"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(rock_Umbrix.tga)", "ilSaveImage(rock_Umbrix.tga)",
                            "ilSaveImage(wall_Umbrix_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, TheFrontEndSeesWhatIsInWork)
{
    add_files({"a.tga", "sub/b.tga"});
    options_.recurse = true;
    Calls seen;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call == "ilInit()" || call.rfind("ilLoadImage", 0) == 0) {
            seen.push_back(call.substr(0, call.find('(')) + ": " + current_ + ", " + status_ + ", " +
                           std::to_string(progress_));
            progress_ = 55;
        }
    };
    EXPECT_TRUE(run("*.tga"));
    // On the CPU each file has a stack, which is made before the file's run.
    Calls const with_stacks = {
        "ilInit: sub/, Processing, 7",        "ilInit: b.tga, Processing, 0",
        "ilLoadImage: b.tga, Processing, 55", "ilInit: b.tga, Storing Results, 0",
        "ilInit: a.tga, Storing Results, 0",  "ilLoadImage: a.tga, Storing Results, 55"};
    Calls const without = {with_stacks[1], with_stacks[2], with_stacks[4], with_stacks[5]};
    EXPECT_EQ(seen, GetParam().graphics ? without : with_stacks);
}

TEST_P(UmbrixFolderStacks, WithNormalGenerationEveryLayerIsTheFileInWork)
{
    add_files({"a.tga", "b.tga"});
    describe({"one.tga", "two.tga"});
    options_.generate_normal = true;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(a.tga)", "ilLoadImage(a.tga)", "ilLoadImage(a.tga)",
                                     "ilSaveImage(a_Umbrix.tga)", "ilLoadImage(b.tga)", "ilLoadImage(b.tga)",
                                     "ilLoadImage(b.tga)", "ilSaveImage(b_Umbrix.tga)"));
    EXPECT_EQ(calls({"ilInit("}).size(), 8U) << "each file: its stack, two layers, the run";
    EXPECT_EQ(calls({"Height2Normal("}).size(), 4U) << "the normals of each layer of each file";
}

TEST_P(UmbrixFolderCalls, WithoutNormalGenerationEachFilesStackIsFilledFromTheDescriptions)
{
    add_files({"a.tga", "b.tga"});
    describe({"one.tga"});
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(a.tga)", "ilLoadImage(one.tga)", "ilSaveImage(a_Umbrix.tga)",
                            "ilLoadImage(b.tga)", "ilLoadImage(one.tga)", "ilSaveImage(b_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, NoLayersAndNoListAreTheSame)
{
    add_files({"a.tga"});
    options_.generate_normal = true;
    EXPECT_TRUE(run("*.tga"));
    Calls const with_empty_list = files();
    CallLog::instance().clear();
    EXPECT_TRUE(run("*.tga", root(), nullptr));
    EXPECT_EQ(files(), with_empty_list);
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(a.tga)", "ilSaveImage(a_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, AStopFlagSetBeforeTheCallIsFalseAndNothingIsDone)
{
    add_files({"a.tga"});
    cancel_ = true;
    fs::path const before = fs::current_path();
    for (bool const recurse : {false, true}) {
        options_.recurse = recurse;
        EXPECT_FALSE(run("*.tga"));
    }
    EXPECT_THAT(CallLog::instance().calls(), IsEmpty());
    EXPECT_EQ(fs::current_path(), before);
    EXPECT_EQ(current_, "before");
}

TEST_P(UmbrixFolderCalls, AStopFlagSetDuringAFileEndsTheWalkBehindIt)
{
    add_files({"a.tga", "b.tga", "c.tga"});
    cancel_at("ilLoadImage(" + root() + "/b.tga");
    EXPECT_FALSE(run("*.tga"));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(a_Umbrix.tga)", "ilSaveImage(b_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, AStopFlagSetDuringTheLastFileIsNotAskedAgain)
{
    add_files({"a.tga", "b.tga"});
    cancel_at("ilLoadImage(" + root() + "/b.tga");
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(calls({"ilSaveImage("}).size(), 2U);
}

TEST_P(UmbrixFolderCalls, AStopFlagSetInASubfolderEndsTheWholeWalk)
{
    add_files({"a.tga", "sub/b.tga", "sub/c.tga"});
    options_.recurse = true;
    for (char const* const file : {"/sub/b.tga", "/sub/c.tga"}) {
        cancel_ = false;
        CallLog::instance().clear();
        cancel_at("ilLoadImage(" + root() + file);
        EXPECT_FALSE(run("*.tga")) << file;
        EXPECT_EQ(calls({"ilSaveImage("}).back(), std::string("ilSaveImage(sub/") + file[5] + "_Umbrix.tga)");
        EXPECT_EQ(fs::current_path(), fs::canonical(root_ / "sub")) << "where it was broken off";
    }
}

TEST_P(UmbrixFolderCalls, WithoutAStopFlagTheWalkRunsToItsEnd)
{
    add_files({"a.tga", "b.tga"});
    options_.cancel = nullptr;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(calls({"ilSaveImage("}).size(), 2U);
}

TEST_P(UmbrixFolderCalls, AMissingFolderIsFalse)
{
    for (bool const recurse : {false, true}) {
        options_.recurse = recurse;
        EXPECT_FALSE(run("*.tga", root() + "/missing"));
    }
    EXPECT_THAT(CallLog::instance().calls(), IsEmpty());
}

TEST_P(UmbrixFolderCalls, ASubfolderThatIsGoneDoesNotStopTheWalk)
{
    add_files({"a.tga", "one/b.tga", "two/c.tga"});
    options_.recurse = true;
    DevilFake::instance().on_call = [&](std::string const&) { fs::remove_all(root_ / "two"); };
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(one/b_Umbrix.tga)", "ilSaveImage(a_Umbrix.tga)"));
}

TEST_P(UmbrixFolderCalls, OfARelativePathTheFilesAreNamedFromInsideIt)
{
    add_files({"tree/a.tga", "tree/sub/b.tga"});
    fs::current_path(root_.path());
    EXPECT_TRUE(run("*.tga", "tree"));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(tree/a.tga)", "ilSaveImage(tree/a_Umbrix.tga)"));
    CallLog::instance().clear();
    fs::current_path(root_.path());
    options_.recurse = true;
    EXPECT_FALSE(run("*.tga", "tree"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_P(UmbrixFolderCalls, AFileWithoutADotRaises)
{
    add_files({"a.tga", "b_n", "c.tga"});
    EXPECT_THROW(run("*.*"), std::out_of_range);
    EXPECT_THAT(calls({"ilSaveImage("}), ElementsAre("ilSaveImage(a_Umbrix.tga)")) << "before it came up";
    EXPECT_EQ(current_, "b_n");
}

TEST_P(UmbrixFolderCalls, AFileThatFailsDoesNotStopTheWalk)
{
    add_files({"a.tga", "b.tga"});
    DevilFake::instance().load_result = 0;
    DevilFake::instance().save_result = 0;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(calls({"ilSaveImage("}).size(), 2U);
}

TEST_P(UmbrixFolderCalls, FilesOfEverySizeAndDepthComeOut)
{
    options_.calc_type = calc_type_light_occlusion;
    for (int const depth : umbrixlib::test::kDepths) {
        std::vector<std::size_t> expected;
        for (auto const& size : umbrixlib::test::kPictureSizes) {
            std::string const name = std::string(1, static_cast<char>('a' + expected.size())) + ".tga";
            add_files({name.c_str()});
            DevilFake::instance().files[root() + "/" + name] = {
                size.width, size.height, 8 * depth, std::vector<unsigned char>(4 * size.texels(), 100)};
            expected.push_back(size.texels() * umbrixlib::test::fetched_channels(depth));
        }
        for (bool const generate_normal : {false, true}) {
            options_.generate_normal = generate_normal;
            std::vector<std::size_t> saved;
            DevilFake::instance().on_call = [&](std::string const& call) {
                if (call.rfind("ilSaveImage(", 0) == 0) {
                    saved.push_back(DevilFake::instance().stored.size());
                }
            };
            EXPECT_TRUE(run("?.tga"));
            EXPECT_EQ(saved, expected) << depth << " bytes a texel";
        }
    }
}

TEST_P(UmbrixFolderCalls, TheOptionsCarryOverFromFileToFile)
{
    add_files({"a.tga", "b.tga"});
    DevilFake::instance().files[root() + "/b.tga"] = {6, 2, 24, {}};
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(options_.image_width, 6);
    EXPECT_EQ(options_.image_height, 2);
}

/// What is deleted is never handed out again in this program, so an address names one array.
TEST_P(UmbrixFolderCalls, KeptBuffersAreTakenByTheNextFile)
{
    add_files({"a.tga", "b.tga", "sub/c.tga"});
    options_.recurse = options_.keep_buffers = options_.preserve = true;
    options_.generate_normal = options_.height_map = true;
    std::vector<void const*> arrays;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call.rfind("ilSaveImage", 0) == 0) {
            arrays.insert(arrays.end(), {options_.ao_map, options_.normal_map, options_.height_copy});
        }
    };
    EXPECT_TRUE(run("*.tga"));
    ASSERT_EQ(arrays.size(), 9U);
    for (std::size_t i = 3; i < 9; ++i) {
        EXPECT_EQ(arrays[i], arrays[i % 3]) << i;
    }
    EXPECT_EQ(options_.ao_map[15].x, 1.0f) << "those of the last file are the caller's";
}

TEST_P(UmbrixFolderCalls, KeptBuffersGrowWithThePictures)
{
    add_files({"a.tga", "b.tga"});
    DevilFake::instance().files[root() + "/b.tga"] = {9, 7, 24, std::vector<unsigned char>(63 * 3, 200)};
    options_.keep_buffers = true;
    EXPECT_TRUE(run("*.tga"));
    for (int i = 0; i < 63; ++i) {
        EXPECT_EQ(options_.ao_map[i].z, 1.0f);
        EXPECT_EQ(options_.normal_map[i].z, float(double(float(200 / 255.0)) * 2.0 - 1.0));
    }
}

TEST_P(UmbrixFolderGpuCalls, EveryFileGoesThroughTheGraphicsLibrary)
{
    add_files({"a_N.tga", "sub/b_Height.tga"});
    options_.recurse = true;
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(calls({"PreProcess_GPU("}).size(), 2U);
    EXPECT_EQ(calls({"PostProcess_GPU("}).size(), 2U);
    EXPECT_EQ(calls({"SetDevice(3)"}).size(), calls({"SetDevice("}).size()) << "the device of the record";
}

TEST_P(UmbrixFolderGpuCalls, TheStackIsFilledWithTheFileWhateverTheOptionsSay)
{
    describe({"", ""});
    add_files({"a.tga", "b.tga"});
    for (bool const generate_normal : {false, true}) {
        CallLog::instance().clear();
        options_.generate_normal = generate_normal;
        NLayers stack(&layers_);
        EXPECT_TRUE(run("?.tga", root(), &layers_, &stack));
        Calls const loads = calls({"ilLoadImage("});
        EXPECT_EQ(std::count(loads.begin(), loads.end(), "ilLoadImage(a.tga)"), 3)
            << "two layers, and the run";
        EXPECT_EQ(std::count(loads.begin(), loads.end(), "ilLoadImage(b.tga)"), 3);
        EXPECT_EQ(loads.size(), 6U);
        EXPECT_EQ(stack.Count(), 2) << "it was cleared between the files";
    }
}

TEST_P(UmbrixFolderGpuCalls, WithoutDescriptionsTheStackIsStillCleared)
{
    add_files({"a.tga"});
    LinkedList<n_layer> others;
    others.Add(n_layer());
    NLayers stack(&others);
    stack.AddLayer("before.tga");
    ASSERT_EQ(stack.Count(), 1);
    EXPECT_TRUE(run("*.tga", root(), &layers_, &stack));
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(before.tga)", "ilLoadImage(a.tga)", "ilSaveImage(a_Umbrix.tga)"));
}

TEST_P(UmbrixFolderGpuCalls, TheNextFileTakesTheHeightsOfTheLast)
{
    add_files({"a.tga", "b.tga", "sub/c.tga"});
    options_.recurse = true;
    std::vector<void const*> arrays;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call.rfind("ilSaveImage", 0) == 0) {
            arrays.push_back(options_.height_copy);
        }
    };
    EXPECT_TRUE(run("*.tga"));
    EXPECT_THAT(arrays, ElementsAre(arrays[0], arrays[0], arrays[0]));
}

TEST_P(UmbrixFolderGpuCalls, AfterAFileWhoseHeightsTheCallerTookTheNextGetsOthers)
{
    add_files({"a.tga", "b.tga", "c.tga"});
    int taken = 0;
    DevilFake::instance().on_call = [&](std::string const& call) {
        if (call.rfind("ilSaveImage", 0) == 0) {
            taken += options_.height_copy != nullptr ? 1 : 0;
            delete[] std::exchange(options_.height_copy, nullptr);
        }
    };
    EXPECT_TRUE(run("*.tga"));
    EXPECT_EQ(taken, 3);
}

} // namespace
