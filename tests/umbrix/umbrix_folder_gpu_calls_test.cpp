// SPDX-License-Identifier: MIT
// The calls that the graphics form of the folder batch makes. The walk itself is that of UmbrixFolder.
#include "files/umbrix_folder.h"

#include "call_log.h"
#include "devil_fake.h"
#include "graphics_fake.h"
#include "kept_directory.h"
#include "picture_depths.h"
#include "temporary_folder.h"
#include "umbrix_test_options.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::KeptDirectory;
using umbrixlib::test::neutral_options;
using umbrixlib::test::TemporaryFolder;
using Calls = std::vector<std::string>;

class UmbrixFolderGpuCalls : public testing::Test {
protected:
    void SetUp() override
    {
        CallLog::instance().clear();
        GraphicsFake::instance().reset();
        DevilFake::instance().serve(4, 4, 32);
        options_.cancel = &cancel_;
    }
    void TearDown() override
    {
        DevilFake::instance() = {};
        delete[] options_.height_copy;
    }

    void add_files(std::initializer_list<char const*> names) const
    {
        for (char const* const name : names) {
            std::filesystem::create_directories((root_ / name).parent_path());
            std::ofstream(root_ / name) << "x";
        }
    }

    void describe(int records)
    {
        for (int i = 0; i < records; ++i) {
            layers_.Add(n_layer());
        }
    }

    bool run(NLayers* stack)
    {
        // A caller may take the array of a file: then the next file gets another.
        DevilFake::instance().on_call = [this](std::string const& call) {
            if (call.rfind("ilSaveImage", 0) == 0) {
                delete[] options_.height_copy;
                options_.height_copy = nullptr;
                saved_.push_back(DevilFake::instance().stored.size());
            }
            cancel_ = cancel_ || (!cancel_at_.empty() && call.find(cancel_at_) != std::string::npos);
        };
        GPU_opt const gpu = {true, 3, 17};
        return UmbrixFolder_GPU(gpu, root_.path().string(), "*.tga", options_, &layers_, stack, &current_,
                                &status_, &progress_);
    }

    /// The recorded calls that start with one of @p starts, the root folder left out of the names.
    Calls calls(std::initializer_list<char const*> starts) const
    {
        Calls found;
        for (std::string call : CallLog::instance().calls()) {
            bool const wanted = std::any_of(starts.begin(), starts.end(),
                                            [&](char const* start) { return call.rfind(start, 0) == 0; });
            std::string const root = root_.path().string() + "/";
            if (std::size_t const at = call.find(root); wanted && at != std::string::npos) {
                call.erase(at, root.size());
            }
            if (wanted) {
                found.push_back(call);
            }
        }
        return found;
    }
    Calls files() const { return calls({"ilLoadImage(", "ilSaveImage("}); }

    TemporaryFolder root_;
    KeptDirectory kept_;
    umbrix_options options_ = neutral_options();
    bool cancel_ = false;
    std::string cancel_at_;
    std::vector<std::size_t> saved_; ///< Bytes of each picture.
    LinkedList<n_layer> layers_;
    std::string current_;
    std::string status_;
    int progress_ = 0;
};

TEST_F(UmbrixFolderGpuCalls, EveryFileGoesThroughTheGraphicsLibrarySubfoldersFirst)
{
    add_files({"a_N.tga", "sub/b_Height.tga"});
    options_.recurse = true;
    EXPECT_TRUE(run(nullptr));
    EXPECT_THAT(files(), ElementsAre("ilLoadImage(sub/b_Height.tga)", "ilSaveImage(sub/b_Umbrix.tga)",
                                     "ilLoadImage(a_N.tga)", "ilSaveImage(a_Umbrix.tga)"));
    EXPECT_EQ(calls({"PreProcess_GPU("}).size(), 2U);
    EXPECT_EQ(calls({"PostProcess_GPU("}).size(), 2U);
    EXPECT_EQ(calls({"SetDevice(3)"}).size(), calls({"SetDevice("}).size()) << "the device of the record";
    EXPECT_THAT(GraphicsFake::instance().faults, IsEmpty());
    EXPECT_FALSE(GraphicsFake::instance().has_slots());
}

TEST_F(UmbrixFolderGpuCalls, TheStackIsFilledWithTheFileWhateverTheOptionsSay)
{
    describe(2);
    for (bool const generate_normal : {false, true}) {
        CallLog::instance().clear();
        options_.generate_normal = generate_normal;
        add_files({"a.tga", "b.tga"});
        NLayers stack(&layers_);
        EXPECT_TRUE(run(&stack));
        Calls const loads = calls({"ilLoadImage("});
        EXPECT_EQ(std::count(loads.begin(), loads.end(), "ilLoadImage(a.tga)"), 3)
            << "two layers, and the run";
        EXPECT_EQ(std::count(loads.begin(), loads.end(), "ilLoadImage(b.tga)"), 3);
        EXPECT_EQ(loads.size(), 6U);
        EXPECT_EQ(stack.Count(), 2) << "it was cleared between the files";
    }
}

TEST_F(UmbrixFolderGpuCalls, WithoutDescriptionsTheStackIsStillCleared)
{
    add_files({"a.tga"});
    LinkedList<n_layer> others;
    others.Add(n_layer());
    NLayers stack(&others);
    stack.AddLayer("before.tga");
    ASSERT_EQ(stack.Count(), 1);
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_THAT(files(),
                ElementsAre("ilLoadImage(before.tga)", "ilLoadImage(a.tga)", "ilSaveImage(a_Umbrix.tga)"));
}

class UmbrixFolderGpuDepths : public UmbrixFolderGpuCalls, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, UmbrixFolderGpuDepths, testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(UmbrixFolderGpuDepths, FilesOfEverySizeComeOut)
{
    std::vector<std::size_t> expected;
    for (auto const& size : umbrixlib::test::kPictureSizes) {
        std::string const name = std::string(1, static_cast<char>('a' + expected.size())) + ".tga";
        add_files({name.c_str()});
        DevilFake::instance().files[root_.path().string() + "/" + name] = {
            size.width, size.height, 8 * GetParam(), std::vector<unsigned char>(4 * size.texels(), 100)};
        expected.push_back(size.texels() * umbrixlib::test::fetched_channels(GetParam()));
    }
    options_.calc_type = calc_type_light_occlusion;
    options_.generate_normal = true;
    EXPECT_TRUE(run(nullptr));
    EXPECT_EQ(saved_, expected);
    EXPECT_THAT(GraphicsFake::instance().faults, IsEmpty());
}

TEST_F(UmbrixFolderGpuCalls, TheStopFlagEndsTheWalkBetweenFiles)
{
    add_files({"a.tga", "b.tga", "c.tga"});
    cancel_at_ = "ilLoadImage(" + root_.path().string() + "/b.tga";
    EXPECT_FALSE(run(nullptr));
    EXPECT_THAT(calls({"ilSaveImage("}),
                ElementsAre("ilSaveImage(a_Umbrix.tga)", "ilSaveImage(b_Umbrix.tga)"));
    CallLog::instance().clear();
    EXPECT_FALSE(run(nullptr)) << "set before the call";
    EXPECT_THAT(CallLog::instance().calls(), IsEmpty());
}

/// What is deleted is never handed out again in this program, so an address names one array.
TEST_F(UmbrixFolderGpuCalls, TheNextFileTakesTheBuffersOfTheLast)
{
    add_files({"a.tga", "b.tga", "sub/c.tga"});
    options_.recurse = true;
    for (bool const keep_buffers : {false, true}) {
        options_.keep_buffers = keep_buffers;
        options_.ao_map = options_.normal_map = nullptr;
        std::vector<void const*> arrays;
        DevilFake::instance().on_call = [&](std::string const& call) {
            if (call.rfind("ilSaveImage", 0) == 0) {
                arrays.push_back(options_.height_copy);
                arrays.push_back(keep_buffers ? options_.ao_map : nullptr);
                arrays.push_back(options_.normal_map);
            }
        };
        EXPECT_TRUE(UmbrixFolder_GPU({true, 3, 17}, root_.path().string(), "?.tga", options_, &layers_,
                                     nullptr, &current_, &status_, &progress_));
        ASSERT_EQ(arrays.size(), 9U);
        for (std::size_t i = 3; i < 9; ++i) {
            EXPECT_EQ(arrays[i], arrays[i % 3]) << i;
        }
        if (keep_buffers) {
            delete[] options_.ao_map;
            delete[] options_.normal_map;
        }
        delete[] std::exchange(options_.height_copy, nullptr);
    }
}

} // namespace
