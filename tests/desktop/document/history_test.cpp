// SPDX-License-Identifier: MIT
#include "document/history.h"

#include <gtest/gtest.h>
#include <string>

namespace umbrix_desktop {
namespace {

Step step_to(std::string const& name, std::string source)
{
    Step step{name, {}};
    step.state.source = std::move(source);
    return step;
}

TEST(DesktopHistory, BeginsWithNothingToUndoOrRedo)
{
    History history(step_to("", "a").state);
    EXPECT_EQ(history.now().state.source, "a");
    EXPECT_FALSE(history.can_undo());
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.undo_name(), "");
    EXPECT_EQ(history.redo_name(), "");
    history.undo();
    history.redo();
    EXPECT_EQ(history.now().state.source, "a");
}

TEST(DesktopHistory, TellsTheNamesOfTheStepsOnEachSide)
{
    History history;
    history.push(step_to("Open", "a"));
    history.push(step_to("Relief", "b"));
    EXPECT_EQ(history.undo_name(), "Relief");
    EXPECT_EQ(history.redo_name(), "");
    history.undo();
    EXPECT_EQ(history.undo_name(), "Open");
    EXPECT_EQ(history.redo_name(), "Relief");
    history.undo();
    EXPECT_EQ(history.undo_name(), "");
    EXPECT_EQ(history.redo_name(), "Open");
}

TEST(DesktopHistory, ForgetsWhatWasUndoneAtTheNextStep)
{
    History history;
    history.push(step_to("Open", "a"));
    history.push(step_to("Relief", "b"));
    history.undo();
    history.push(step_to("Light", "c"));
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.now().state.source, "c");
    history.undo();
    EXPECT_EQ(history.now().state.source, "a");
    history.replace(step_to("Open", "d"));
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.now().state.source, "d");
}

TEST(DesktopHistory, DropsAStepAsIfItHadNeverBeen)
{
    History history;
    std::size_t const before = history.bytes();
    history.push(step_to("Open", "a"));
    history.drop();
    EXPECT_EQ(history.now().state.source, "");
    EXPECT_FALSE(history.can_undo());
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.bytes(), before);
}

TEST(DesktopHistory, CountsTheBytesOfTextsAndLayers)
{
    Step small;
    Step large;
    large.state.source = std::string(10'000, 'x');
    large.state.layers.description.layers.resize(100);
    EXPECT_GE(bytes_of(large), bytes_of(small) + 10'000 + 100 * sizeof(toolkit::StackLayer));
}

TEST(DesktopHistory, LetsTheOldestStepsGoAtTheBound)
{
    constexpr std::size_t kBound = 1'000'000;
    History history({}, kBound);
    for (int i = 0; i < 100; ++i) {
        history.push(step_to(std::to_string(i), std::string(20'000, 'x')));
        EXPECT_LE(history.bytes(), kBound);
    }
    EXPECT_GT(history.bytes(), kBound / 2);
    int steps = 0;
    for (; history.can_undo(); ++steps) {
        EXPECT_EQ(history.undo_name(), std::to_string(99 - steps));
        history.undo();
    }
    EXPECT_GT(steps, 40);
    EXPECT_LT(steps, 50);
}

TEST(DesktopHistory, KeepsTheStepThatIsNowWhateverItTakes)
{
    History history({}, 1000);
    history.push(step_to("Open", std::string(20'000, 'x')));
    EXPECT_EQ(history.now().state.source.size(), 20'000U);
    EXPECT_FALSE(history.can_undo());
    history.replace(step_to("Open", "a"));
    EXPECT_EQ(history.now().state.source, "a");
    EXPECT_EQ(history.bytes(), bytes_of(history.now()));
}

} // namespace
} // namespace umbrix_desktop
