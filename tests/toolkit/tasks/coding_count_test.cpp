// SPDX-License-Identifier: MIT
/// Each source is decoded once, each result encoded once, and decoded or looked at once to check it.
#include "counted_coding.h"
#include "task_test.h"
#include "toolkit/lists/list_settings.h"

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class CodingOnce : public TaskTest {
protected:
    static constexpr int kSide = 24;

    CodingOnce()
    {
        for (char const* const name : {"a.png", "b.png"}) {
            put_heights(name, kSide, 8, [](int x, int y) { return (x * y % 17) / 17.0; });
        }
        settings_.rays = 4;
    }

    template <typename Job>
    CodingCount count_of(Job const& job)
    {
        coding_count = {};
        run(job, nobody_);
        return coding_count;
    }

    StackJob stack(bool with_map) const
    {
        StackJob job;
        job.file = "stack.toml";
        for (char const* const name : {"a.png", "b.png"}) {
            StackLayer layer;
            layer.label = name;
            layer.file = path(name);
            job.description.layers.push_back(layer);
        }
        job.normals = {path("normals.tga"), "normals"};
        if (with_map) {
            job.heights = {path("heights.tga"), "heights"};
            job.map = {path("map.tga"), "map"};
        }
        job.max_texels = kMostTexels;
        job.settings = settings_;
        return job;
    }

    Settings settings_ = kDefaults;
};

TEST_F(CodingOnce, HoldsForAMap)
{
    MapJob job;
    job.files = files("a.png", "map.png");
    job.settings = settings_;
    EXPECT_EQ(count_of(job), (CodingCount{1, 1, 1}));
    job.settings.height_in_alpha = true;
    EXPECT_EQ(count_of(job), (CodingCount{1, 1, 1}));
    job.compare_cpu = true;
    job.graphics.device = DeviceCount() - 1; // the host
    EXPECT_EQ(count_of(job), (CodingCount{1, 1, 1}));
}

TEST_F(CodingOnce, HoldsForANormalMapAndALitPicture)
{
    NormalJob normal;
    normal.files = files("a.png", "normal.tga");
    EXPECT_EQ(count_of(normal), (CodingCount{2, 1}));
    RelightJob relight;
    relight.files = files("a.png", "lit.png");
    relight.light = {45.0, 45.0};
    relight.look = {Modes_UnitBasis, 0.5};
    EXPECT_EQ(count_of(relight), (CodingCount{1, 1, 1}));
}

TEST_F(CodingOnce, HoldsForWhatIsOnlyLookedAt)
{
    EXPECT_EQ(count_of(InfoJob{path("a.png"), kMostTexels, false}), (CodingCount{1, 0}));
    FitJob fit;
    fit.heights = path("a.png");
    fit.normals = path("b.png");
    fit.max_texels = kMostTexels;
    EXPECT_EQ(count_of(fit), (CodingCount{2, 0}));
}

TEST_F(CodingOnce, HoldsForAStack)
{
    EXPECT_EQ(count_of(stack(false)), (CodingCount{2 + 1, 1}));
    StackJob with_map = stack(true);
    EXPECT_EQ(count_of(with_map), (CodingCount{2 + 3, 3}));
    with_map.map_from_layers = true;
    EXPECT_EQ(count_of(with_map), (CodingCount{2 + 3, 3}));
}

TEST_F(CodingOnce, HoldsForAJobOfAList)
{
    ListJob job;
    job.files = files("a.png", "map.png");
    job.data = data_for(settings_, Kind::kHeightMap, kSide);
    EXPECT_EQ(count_of(job), (CodingCount{1, 1, 1}));
    n_layer layer;
    layer.filename = path("b.png");
    job.layers = {layer, layer};
    EXPECT_EQ(count_of(job), (CodingCount{3, 1, 1}));
}

} // namespace
} // namespace umbrixlib::test
