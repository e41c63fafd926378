// SPDX-License-Identifier: MIT
#include "toolkit/batch/batch_plan.h"

#include "picture_files.h"
#include "temporary_folder.h"

#include <functional>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using namespace toolkit;

class BatchPlans : public testing::Test {
protected:
    BatchPlans()
    {
        choice_.search.places = {folder_.path().string()};
        choice_.suffix = "_Umbrix";
    }

    void touch(std::string const& name) const
    {
        fs::create_directories((folder_.path() / name).parent_path());
        write_file(folder_.path() / name, {1});
    }

    /// "source -> target" of each file, seen from the folder.
    std::vector<std::string> plan() const
    {
        std::vector<std::string> lines;
        for (BatchFile const& file : plan_batch(choice_).files) {
            std::string line = file.source.lexically_relative(folder_.path()).string();
            line += " -> ";
            line += file.target.lexically_relative(folder_.path()).string();
            lines.push_back(line);
        }
        return lines;
    }

    Fault fault() const
    {
        try {
            plan_batch(choice_);
        } catch (Failure const& failure) {
            return failure.fault;
        }
        return Fault::kUnexpected;
    }

    TemporaryFolder folder_;
    BatchChoice choice_;
};

using Lines = std::vector<std::string>;

TEST_F(BatchPlans, NameOutputsBesideTheirInputs)
{
    touch("b_height.tga");
    touch("a.png");
    touch("notes.txt");
    touch("deep/c.png");
    EXPECT_EQ(plan(), (Lines{"a.png -> a_Umbrix.png", "b_height.tga -> b_Umbrix.tga"}));
    choice_.search.recurse = true;
    choice_.suffix = "_Normal";
    EXPECT_EQ(plan(), (Lines{"a.png -> a_Normal.png", "b_height.tga -> b_Normal.tga",
                             "deep/c.png -> deep/c_Normal.png"}));
}

TEST_F(BatchPlans, KeepTheTreeInAnotherFolder)
{
    touch("in/a.png");
    touch("in/deep/a.png");
    choice_.search.places = {(folder_ / "in").string()};
    choice_.search.recurse = true;
    choice_.keep_tree = folder_ / "out";
    EXPECT_EQ(plan(), (Lines{"in/a.png -> out/a_Umbrix.png", "in/deep/a.png -> out/deep/a_Umbrix.png"}));
}

TEST_F(BatchPlans, LeaveOutputsOfEarlierRunsOut)
{
    touch("a.png");
    touch("a_Umbrix.png");
    touch("b_Umbrix.png");
    BatchPlan const plan_without = plan_batch(choice_);
    EXPECT_EQ(plan_without.files.size(), 1U);
    EXPECT_EQ(plan_without.outputs_left_out, 2U);
    choice_.include_outputs = true;
    EXPECT_EQ(plan_batch(choice_).files.size(), 3U);
}

TEST_F(BatchPlans, OfTwoInputsForOneOutputAreRefused)
{
    touch("a_H.png");
    touch("a_height.png");
    EXPECT_EQ(fault(), Fault::kSameTarget);
}

TEST_F(BatchPlans, ThatReplaceAnInputAreRefused)
{
    touch("a.png");
    touch("a_Umbrix.png");
    choice_.include_outputs = true;
    EXPECT_EQ(plan().size(), 2U); // what exists is kept
    choice_.policy = OutputPolicy::kReplace;
    EXPECT_EQ(fault(), Fault::kTargetIsSource);
    choice_.policy = OutputPolicy::kKeep;
    choice_.suffix = "";
    EXPECT_EQ(fault(), Fault::kTargetIsSource);
}

TEST_F(BatchPlans, OfNothingAreRefused)
{
    EXPECT_EQ(fault(), Fault::kNothingFoundAtTop);
    choice_.search.recurse = true;
    EXPECT_EQ(fault(), Fault::kNothingFound);
    touch("a_Umbrix.png");
    EXPECT_EQ(fault(), Fault::kOnlyOutputsFound);
}

TEST_F(BatchPlans, LeaveWhatIsNoSurfaceAlone)
{
    for (char const* name : {"a.png", "b_disp.png", "b_nor_dx.png", "b_AO.png", "b_diff_2k.jpg"}) {
        touch(name);
    }
    EXPECT_EQ(plan().size(), 5U);
    choice_.endings = Endings::kSurface;
    EXPECT_EQ(plan(), (Lines{"a.png -> a_Umbrix.png", "b_disp.png -> b_disp_Umbrix.png",
                             "b_nor_dx.png -> b_nor_dx_Umbrix.png"}));
    auto const left_alone = plan_batch(choice_).left_alone;
    ASSERT_EQ(left_alone.size(), 2U);
    EXPECT_EQ(left_alone[0].file, folder_ / "b_AO.png");
    EXPECT_EQ(left_alone[0].ending, "_ao");
    choice_.endings = Endings::kHeights;
    EXPECT_EQ(plan(), (Lines{"a.png -> a_Umbrix.png", "b_disp.png -> b_disp_Umbrix.png"}));
    choice_.endings = Endings::kNormals;
    EXPECT_EQ(plan(), (Lines{"a.png -> a_Umbrix.png", "b_nor_dx.png -> b_nor_dx_Umbrix.png"}));
}

TEST_F(BatchPlans, TakeAnyEndingThatIsAskedFor)
{
    for (char const* name : {"a_ao.png", "b_ao.png", "b_diff.png"}) {
        touch(name);
    }
    choice_.endings = Endings::kSurface;
    EXPECT_EQ(fault(), Fault::kOnlyOthersFound);
    choice_.search.include = {"*.png"}; // asks for no ending
    EXPECT_EQ(fault(), Fault::kOnlyOthersFound);
    choice_.search.include = {"*_AO.png"};
    EXPECT_EQ(plan(), (Lines{"a_ao.png -> a_ao_Umbrix.png", "b_ao.png -> b_ao_Umbrix.png"}));
    choice_.search.include = {"*diff.png"};
    EXPECT_EQ(plan(), (Lines{"b_diff.png -> b_diff_Umbrix.png"}));
    choice_.search.include = {"b_*"}; // the pictures of a material
    EXPECT_EQ(fault(), Fault::kOnlyOthersFound);
    choice_.search.include.clear();
    choice_.search.places = {folder_.path().string(), folder_ / "a_ao.png"};
    EXPECT_EQ(plan(), (Lines{"a_ao.png -> a_ao_Umbrix.png"}));
    choice_.search.places = {folder_ / "*_diff*"};
    EXPECT_EQ(plan(), (Lines{"b_diff.png -> b_diff_Umbrix.png"}));
    choice_.search.places = {folder_ / "*"};
    EXPECT_EQ(fault(), Fault::kOnlyOthersFound);
    touch("diff_diff.png");
    choice_.search.places = {folder_ / "diff*"};
    EXPECT_EQ(fault(), Fault::kOnlyOthersFound);
}

TEST_F(BatchPlans, TellOfPlacesThatAreMissing)
{
    touch("a.png");
    choice_.search.places.push_back((folder_ / "none").string());
    BatchPlan const plan = plan_batch(choice_);
    EXPECT_EQ(plan.files.size(), 1U);
    ASSERT_EQ(plan.failures.size(), 1U);
    EXPECT_EQ(plan.failures[0].subject, (folder_ / "none").string());
}

TEST_F(BatchPlans, SkipByThePolicy)
{
    touch("a.png");
    BatchFile file{folder_ / "a.png", folder_ / "a_Umbrix.png"};
    auto const skips = [&](OutputPolicy policy) { return reason_to_skip(file, policy).has_value(); };
    EXPECT_FALSE(skips(OutputPolicy::kKeep));
    touch("a_Umbrix.png");
    auto const now = fs::last_write_time(file.target);
    fs::last_write_time(file.source, now - std::chrono::seconds(9));
    EXPECT_TRUE(skips(OutputPolicy::kKeep));
    EXPECT_TRUE(skips(OutputPolicy::kUpdate));
    EXPECT_FALSE(skips(OutputPolicy::kReplace));
    fs::last_write_time(file.source, now + std::chrono::seconds(9));
    EXPECT_TRUE(skips(OutputPolicy::kKeep));
    EXPECT_FALSE(skips(OutputPolicy::kUpdate));
    file.outdated = true;
    EXPECT_FALSE(skips(OutputPolicy::kKeep));
}

} // namespace
} // namespace umbrixlib::test
