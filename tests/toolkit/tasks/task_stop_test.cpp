// SPDX-License-Identifier: MIT
/// A wish to stop reaches the run of a single picture.
#include "counted_coding.h"
#include "task_test.h"
#include "toolkit/base/stop.h"

#include <algorithm>
#include <string_view>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// Wants the job to end as soon as it has got somewhere in one stage.
class ImpatientObserver : public Observer {
public:
    explicit ImpatientObserver(std::string_view stage) : stage_(stage) {}

    void stage(std::string_view name, int permille) override
    {
        if (name == stage_) {
            reached_ = true;
            furthest_ = std::max(furthest_, permille);
        }
    }
    void begin(Phase phase, std::string const&) override { writes_ = writes_ || phase == Phase::kWriting; }
    bool stopping() const override { return reached_; }

    int furthest() const { return furthest_; } ///< Of 1000, in that stage.
    bool writes() const { return writes_; }

private:
    std::string_view stage_;
    bool reached_ = false;
    int furthest_ = 0;
    bool writes_ = false;
};

class TaskStop : public TaskTest {
protected:
    static constexpr int kSide = 512;

    /// Runs @p job, whose occlusion takes minutes, until it is in that.
    template <typename Job>
    void expect_stop_in_the_occlusion(Job const& job)
    {
        ImpatientObserver observer("occlusion");
        coding_count = {};
        EXPECT_THROW(run(job, observer), Stopped);
        EXPECT_LT(observer.furthest(), 500) << "of 1000";
        EXPECT_FALSE(observer.writes());
        EXPECT_EQ(coding_count.encoded, 0);
        EXPECT_FALSE(std::filesystem::exists(path("map.png")));
    }
};

TEST_F(TaskStop, ReachesTheOcclusionOfASingleMap)
{
    put_heights("a.png", kSide, 8, [](int x, int y) { return (x * y % 251) / 251.0; });
    MapJob job;
    job.files = files("a.png", "map.png");
    job.settings.rays = 100000;
    expect_stop_in_the_occlusion(job);
    job.graphics.device = DeviceCount() - 1; // the host
    expect_stop_in_the_occlusion(job);

    job.graphics.device.reset();
    job.settings.rays = 4;
    run(job, nobody_);
    EXPECT_EQ(picture("map.png").width, kSide) << "nothing of the stopped runs is left";
}

} // namespace
} // namespace umbrixlib::test
