// SPDX-License-Identifier: MIT
/// Stacks of thousands of layers, whose jobs no pipe holds at once.
#include "tool.h"

#include <fmt/format.h>

namespace umbrixlib::test {
namespace {

class StackOfManyLayers : public ToolTest {
protected:
    StackOfManyLayers() { write("h", hill(8)); }

    void write_stack(int layers, std::string const& last_file) const
    {
        std::string text;
        for (int i = 1; i < layers; ++i) {
            text += "[[layer]]\nfile='h'\n";
        }
        text += fmt::format("[[layer]]\nfile='{}'\n", last_file);
        write("s.toml", Bytes(text.begin(), text.end()));
    }

    Arguments const blend{"stack", "s.toml", "-o", "n.tga", "--progress", "lines"};
};

/// A tool that hangs ends by a signal, which is another exit code.
void end_soon()
{
    alarm(200);
}

TEST_F(StackOfManyLayers, IsBlended)
{
    write_stack(2000, "h");
    Outcome const outcome = run(blend, {}, end_soon);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("of 2000 layers"), std::string::npos) << outcome.out;
    EXPECT_EQ(tga("n.tga").width, 8);
}

TEST_F(StackOfManyLayers, IsRefusedInASentenceIfTheLastIsNoPicture)
{
    write("none", {1, 2, 3});
    write_stack(2000, "none");
    Outcome const outcome = run(blend, {}, end_soon);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix stack", "s.toml: layer 2000: file: none"));
}

TEST_F(StackOfManyLayers, IsRefusedInASentenceIfItTakesMoreThanTheMemory)
{
    write("h", hill(2048));
    write_stack(10'000, "h");
    Outcome const outcome = run(blend, {}, end_soon);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix stack", "s.toml"));
    EXPECT_NE(outcome.err.find("10000 layers of 2048 x 2048 take 742 GiB of memory"), std::string::npos)
        << outcome.err;
    EXPECT_FALSE(files().contains("n.tga"));
}

TEST_F(StackOfManyLayers, IsStoppedInTheMiddle)
{
    write_stack(10000, "h");
    std::set<std::string> const before = files();
    RunningTool tool(folder(), blend, with_scratch(), end_soon);
    ASSERT_TRUE(tool.wait_for_text("blending layers\n"));
    tool.send(SIGINT);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 130);
    EXPECT_NE(outcome.err.find("umbrix stack: interrupted; nothing was written\n"), std::string::npos);
    EXPECT_EQ(files(), before);
}

} // namespace
} // namespace umbrixlib::test
