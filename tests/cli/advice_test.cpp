// SPDX-License-Identifier: MIT
/// What the command line makes of the faults of the toolkit.
#include "terminal/advice.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using umbrix_cli::advice_on;
using umbrix_cli::complaint_about;
using umbrix_cli::error_line;
using umbrix_cli::Failure;
using umbrix_cli::Fault;
using umbrix_cli::Note;
using umbrix_cli::NoteKind;
using umbrix_cli::text_of;

TEST(Advice, ThereIsSomeOnEveryFault)
{
    for (std::size_t i = 0; i < umbrixlib::toolkit::kFaults; ++i) {
        auto const fault = static_cast<Fault>(i);
        EXPECT_EQ(advice_on(fault).fault, fault) << i;
        EXPECT_FALSE(complaint_about({fault, "a.png", "it is odd", "give another"}).advice.empty()) << i;
    }
}

TEST(Advice, IsASentenceWithTheExitCodeOfTheFault)
{
    auto const exists = complaint_about({Fault::kOutputExists, "a.png", "it exists"});
    EXPECT_EQ(error_line(exists, "umbrix map"),
              "umbrix map: error: a.png: it exists; add --overwrite to replace it, or give another name");
    EXPECT_EQ(exists.code, 1);
    EXPECT_EQ(complaint_about({Fault::kOutputIsInput, "a.png", "it is the input"}).code, 2);
}

TEST(Advice, TakesTheRemedyOfTheFailureIn)
{
    EXPECT_EQ(complaint_about({Fault::kWrongValue, "a.toml", "it is wrong", "give {} or \"x\""}).advice,
              "give {} or \"x\"");
    EXPECT_EQ(complaint_about({Fault::kSettingOutOfRange, "job 1", "its rays is 0", "give 1 to 9"}).advice,
              "give 1 to 9 with umbrix list set");
}

TEST(Advice, NamesTheOptionThatLedToTheFault)
{
    auto const device = complaint_about({Fault::kNoSuchDevice, "graphics device", "there is no device 7"});
    EXPECT_EQ(error_line(device, "umbrix map"),
              "umbrix map: error: --gpu: there is no device 7; umbrix devices lists them");
    EXPECT_EQ(device.code, 2);
    EXPECT_EQ(complaint_about({Fault::kUnknownPreset, "x", "'x' is none", "check it"}).subject, "--preset");
}

TEST(Advice, OnAFaultOfNoKnownNumberIsThatOnTheUnexpected)
{
    EXPECT_EQ(advice_on(static_cast<Fault>(99999)).fault, Fault::kUnexpected);
    EXPECT_EQ(advice_on(static_cast<Fault>(-1)).fault, Fault::kUnexpected);
}

TEST(Advice, CompletesNotes)
{
    EXPECT_EQ(text_of({"it is {} small"}), "it is {} small");
    EXPECT_EQ(text_of({"device 0 is the processor", NoteKind::kDeviceIsCpu}),
              "device 0 is the processor, so --gpu saves no time");
    EXPECT_EQ(text_of({"heights differ", NoteKind::kGraphicsHeights}),
              "heights differ; --match-cpu gives the relief of a run without --gpu");
    EXPECT_EQ(text_of({"they are left out", NoteKind::kNormalsLeftOut}),
              "--map-from-layers leaves the normals of this layer out of the map");
}

} // namespace
} // namespace umbrixlib::test
