// SPDX-License-Identifier: MIT
/// Runs that are stopped while nobody reads what they tell.
#include "cli/tool.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <thread>

namespace umbrixlib::test {
namespace {

using namespace std::chrono_literals;

/// A pipe that is read late, or never.
class LatePipe {
public:
    LatePipe() { good_ = pipe2(ends_, O_CLOEXEC) == 0; }
    ~LatePipe()
    {
        close(ends_[0]);
        close(ends_[1]);
    }
    LatePipe(LatePipe const&) = delete;
    LatePipe& operator=(LatePipe const&) = delete;

    int written_to() const { return ends_[1]; }

    /// Waits until a writer cannot go on. False if that does not come.
    bool fills_up() const
    {
        for (auto waited = 0ms; waited < 20s; waited += 20ms) {
            pollfd room{ends_[1], POLLOUT, 0};
            if (poll(&room, 1, 0) == 0) {
                return true;
            }
            std::this_thread::sleep_for(20ms);
        }
        return false;
    }

private:
    int ends_[2] = {-1, -1};
    bool good_ = false;
};

class UnreadOutput : public ToolTest {
protected:
    UnreadOutput()
    {
        Bytes const small = hill(4);
        for (int i = 0; i < 600; ++i) { // their names are more than a pipe takes
            write(fmt::format("{:0200}.tga", i), small);
        }
    }
};

TEST_F(UnreadOutput, IsDroppedByASignal)
{
    for (int const signal : {SIGINT, SIGTERM}) {
        LatePipe const pipe;
        RunningTool tool(folder(), {"batch", ".", "--dry-run"}, with_scratch(),
                         [&] { dup2(pipe.written_to(), STDOUT_FILENO); });
        ASSERT_TRUE(pipe.fills_up());
        tool.send(signal);
        Outcome const outcome = tool.finish();
        EXPECT_EQ(outcome.code, 128 + signal);
        EXPECT_EQ(outcome.err, "umbrix batch: interrupted; not all that it tells was read\n");
    }
}

TEST_F(UnreadOutput, OfBothStreamsIsDropped)
{
    LatePipe const pipe;
    RunningTool tool(folder(), {"batch", ".", "--progress", "lines", "--rays", "1"}, with_scratch(), [&] {
        dup2(pipe.written_to(), STDOUT_FILENO);
        dup2(pipe.written_to(), STDERR_FILENO);
    });
    ASSERT_TRUE(pipe.fills_up());
    tool.send(SIGTERM);
    EXPECT_EQ(tool.finish().code, 128 + SIGTERM);
}

} // namespace
} // namespace umbrixlib::test
