// SPDX-License-Identifier: MIT
#include "document/document.h"

#include "document/project_file.h"
#include "random_state.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace umbrix_desktop {
namespace {

void set_relief(Document& document, float relief)
{
    document.edit("Relief", [&](State& state) { state.settings.relief = relief; });
}

TEST(DesktopDocument, TellsEachChangeWithWhatWasBefore)
{
    Document document;
    std::vector<std::pair<float, float>> told;
    document.on_change([&](State const& before, State const& after) {
        told.emplace_back(before.settings.relief, after.settings.relief);
    });
    set_relief(document, 0.25f);
    document.undo();
    document.redo();
    document.redo();
    document.replace({}, "a.toml");
    document.set_saved("b.toml");
    EXPECT_EQ(told, (std::vector<std::pair<float, float>>{
                        {0.05f, 0.25f}, {0.25f, 0.05f}, {0.05f, 0.25f}, {0.25f, 0.05f}, {0.05f, 0.05f}}));
}

TEST(DesktopDocument, TellsAllWhoListen)
{
    Document document;
    int told = 0;
    for (int i = 0; i < 3; ++i) {
        document.on_change([&](State const&, State const&) { ++told; });
    }
    set_relief(document, 0.25f);
    EXPECT_EQ(told, 3);
}

TEST(DesktopDocument, MakesNoStepOfAnEditThatChangesNothing)
{
    Document document;
    set_relief(document, 0.25f);
    document.undo();
    document.on_change([](State const&, State const&) { FAIL(); });
    set_relief(document, document.state().settings.relief);
    EXPECT_EQ(document.history().redo_name(), "Relief");
    EXPECT_FALSE(document.history().can_undo());
}

TEST(DesktopDocument, StaysAsItIsWhenAnEditFails)
{
    Document document;
    EXPECT_THROW(document.edit("Relief",
                               [](State& state) {
                                   state.settings.relief = 1;
                                   throw std::runtime_error("no");
                               }),
                 std::runtime_error);
    EXPECT_EQ(document.state(), State{});
    EXPECT_FALSE(document.history().can_undo());
}

TEST(DesktopDocument, MakesOneStepOfAWholeGesture)
{
    Document document;
    document.begin_gesture();
    for (int i = 1; i <= 100; ++i) {
        set_relief(document, static_cast<float>(i) / 100);
    }
    document.end_gesture();
    set_relief(document, 2);
    document.undo();
    EXPECT_EQ(document.state().settings.relief, 1.0f);
    document.undo();
    EXPECT_EQ(document.state(), State{});
    EXPECT_FALSE(document.history().can_undo());
    document.redo();
    EXPECT_EQ(document.state().settings.relief, 1.0f);
}

TEST(DesktopDocument, MakesAStepOfEachGesture)
{
    Document document;
    for (float const relief : {1.0f, 2.0f}) {
        document.begin_gesture();
        set_relief(document, relief / 2);
        set_relief(document, relief);
        document.end_gesture();
    }
    document.undo();
    EXPECT_EQ(document.state().settings.relief, 1.0f);
    document.undo();
    EXPECT_EQ(document.state(), State{});
}

TEST(DesktopDocument, MakesAStepOfEachNameInAGesture)
{
    Document document;
    document.begin_gesture();
    set_relief(document, 1);
    document.edit("Radius", [](State& state) { state.settings.radius = 1; });
    document.edit("Radius", [](State& state) { state.settings.radius = 2; });
    document.end_gesture();
    document.undo();
    EXPECT_EQ(document.state().settings.relief, 1.0f);
    EXPECT_EQ(document.state().settings.radius, toolkit::kDefaults.radius);
    EXPECT_EQ(document.history().undo_name(), "Relief");
    EXPECT_EQ(document.history().redo_name(), "Radius");
}

TEST(DesktopDocument, MakesNoStepOfAGestureThatEndsWhereItBegan)
{
    Document document;
    set_relief(document, 1);
    document.begin_gesture();
    set_relief(document, 2);
    set_relief(document, 1);
    int told = 0;
    document.on_change([&](State const& before, State const& after) { told += before == after ? 1 : 100; });
    document.end_gesture();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(document.state().settings.relief, 1.0f);
    document.undo();
    EXPECT_EQ(document.state(), State{});
}

TEST(DesktopDocument, BeginsANewStepAfterUndoInAGesture)
{
    Document document;
    set_relief(document, 1);
    document.begin_gesture();
    set_relief(document, 2);
    document.undo();
    set_relief(document, 3);
    document.end_gesture();
    document.undo();
    EXPECT_EQ(document.state().settings.relief, 1.0f);
}

TEST(DesktopDocument, IsChangedUnlessAFileHoldsItsState)
{
    Document document;
    EXPECT_FALSE(document.is_changed());
    set_relief(document, 1);
    EXPECT_TRUE(document.is_changed());
    document.undo();
    EXPECT_FALSE(document.is_changed());
    document.redo();
    document.set_saved("a.toml");
    EXPECT_FALSE(document.is_changed());
    EXPECT_EQ(document.project_file(), "a.toml");
    EXPECT_EQ(document.history().undo_name(), "Relief");
    document.undo();
    EXPECT_TRUE(document.is_changed());
    document.redo();
    EXPECT_FALSE(document.is_changed());
}

TEST(DesktopDocument, ForgetsItsStepsWhenItIsReplaced)
{
    Document document;
    set_relief(document, 1);
    document.begin_gesture();
    set_relief(document, 2);
    State other;
    other.source = "brick.png";
    document.replace(other, "b.toml");
    EXPECT_EQ(document.state(), other);
    EXPECT_FALSE(document.is_changed());
    EXPECT_FALSE(document.history().can_undo());
    EXPECT_FALSE(document.history().can_redo());
    EXPECT_EQ(document.project_file(), "b.toml");
    set_relief(document, 3);
    document.undo();
    EXPECT_EQ(document.state(), other);
}

/// Random edits, gestures, undo and redo, beside a list of all states that there were.
class RandomHand {
public:
    explicit RandomHand(unsigned seed) : random_(seed) {}

    void edit()
    {
        State next = document_.state();
        random_.change(next);
        bool const is_change = next != document_.state();
        document_.edit("Edit", [&](State& state) { state = next; });
        if (is_change) {
            states_.resize(at_ + 1);
            remember(next);
            ++at_;
        }
    }

    void make_gesture()
    {
        State const before = document_.state();
        document_.begin_gesture();
        for (std::size_t left = 1 + random_.below(5); left > 0; --left) {
            State next = document_.state();
            random_.change(next);
            states_.resize(next != document_.state() ? at_ + 1 : states_.size());
            document_.edit("Gesture", [&](State& state) { state = next; });
        }
        State const after = document_.state();
        document_.end_gesture();
        if (after != before) {
            remember(after);
            ++at_;
        }
    }

    void undo()
    {
        document_.undo();
        at_ -= at_ > 0 ? 1U : 0U;
    }

    void redo()
    {
        document_.redo();
        at_ += at_ + 1 < states_.size() ? 1U : 0U;
    }

    void act()
    {
        switch (random_.below(6)) {
        case 0:
            return make_gesture();
        case 1:
            return undo();
        case 2:
            return redo();
        default:
            return edit();
        }
    }

    void check() const
    {
        ASSERT_EQ(document_.state(), states_[at_]);
        ASSERT_EQ(project_text({document_.state(), ""}), texts_[at_]);
        ASSERT_EQ(document_.history().can_undo(), at_ > 0);
        ASSERT_EQ(document_.history().can_redo(), at_ + 1 < states_.size());
    }

    std::size_t place() const { return at_; }
    std::size_t states() const { return states_.size(); }

private:
    void remember(State const& state)
    {
        states_.push_back(state);
        texts_.resize(states_.size() - 1);
        texts_.push_back(project_text({state, ""}));
    }

    test::RandomState random_;
    Document document_;
    std::vector<State> states_{State{}};
    std::vector<std::string> texts_{project_text({State{}, ""})};
    std::size_t at_ = 0;
};

TEST(DesktopDocument, RestoresEveryStateOfAThousandRandomEdits)
{
    RandomHand hand(1);
    for (int i = 0; i < 1000; ++i) {
        hand.act();
        ASSERT_NO_FATAL_FAILURE(hand.check());
    }
    ASSERT_GT(hand.states(), 100U);
    while (hand.place() > 0) {
        hand.undo();
        ASSERT_NO_FATAL_FAILURE(hand.check());
    }
    while (hand.place() + 1 < hand.states()) {
        hand.redo();
        ASSERT_NO_FATAL_FAILURE(hand.check());
    }
}

} // namespace
} // namespace umbrix_desktop
