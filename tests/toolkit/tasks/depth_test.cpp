// SPDX-License-Identifier: MIT
/// What a picture has in more than 8 bits reaches the result.
#include "task_test.h"
#include "toolkit/lists/list_settings.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr int kBumpSide = 64;

/// A smooth round bump so low that 8 bits have three levels of it, in 20 steps.
double bump(int x, int y)
{
    double const away = std::min(std::hypot(x - kBumpSide / 2, y - kBumpSide / 2) / (kBumpSide / 2), 1.0);
    double const height = (1.0 + std::cos(away * 3.14159265358979)) / 2.0;
    return (100.0 + 2.0 * std::round(height * 19.0) / 19.0) / 255.0;
}

/// The same jobs on the bump in 16 bits and in 8.
class Depth : public TaskTest {
protected:
    Depth()
    {
        put_heights("deep.png", kBumpSide, 16, bump);
        put_heights("bytes.png", kBumpSide, 8, bump);
        settings_.n_scale = 300.0f;
        settings_.h_scale = 10.0f;
        settings_.rays = 16;
        settings_.occlusion = false;
    }

    /// Levels of red that @p job makes of each, by the name of the source.
    template <typename Job>
    std::map<std::string, std::size_t> reds_of(Job job)
    {
        std::map<std::string, std::size_t> levels;
        for (std::string const name : {"deep", "bytes"}) {
            job.files = files(name + ".png", name + "_result.png");
            run(job, nobody_);
            levels[name] = reds(name + "_result.png");
        }
        return levels;
    }

    StackJob stack_on(std::string const& lowest) const
    {
        StackJob job;
        job.file = "stack.toml";
        for (std::string const& name : {lowest, std::string("bytes")}) {
            StackLayer layer;
            layer.label = name;
            layer.file = path(name + ".png");
            layer.blend = 3;
            layer.n_scale = 150.0f;
            job.description.layers.push_back(layer);
        }
        job.normals = {path("normals.tga"), "normals"};
        job.heights = {path("heights.tga"), "heights"};
        job.map = {path("map.tga"), "map"};
        job.max_texels = kMostTexels;
        job.settings = settings_;
        return job;
    }

    /// The picture that a map was made of before there was a road in floats: blended normals and heights in
    /// bytes, the heights in the alpha.
    Picture map_of_saved_blend() const
    {
        Picture const normals = picture("normals.tga");
        Picture const heights = picture("heights.tga");
        Bytes samples;
        for (std::size_t i = 0; i < normals.texels(); ++i) {
            std::uint8_t const* const normal = normals.texel(i);
            // A TGA has blue first.
            samples.insert(samples.end(), {normal[2], normal[1], normal[0], heights.texel(i)[0]});
        }
        write_file(path("blend.tga"), tga_bytes(kBumpSide, kBumpSide, 4, samples));
        MapJob job;
        job.files = files("blend.tga", "map_of_blend.tga");
        job.kind = Kind::kNormalMap;
        job.settings = settings_;
        Observer nobody;
        run(job, nobody);
        return picture("map_of_blend.tga");
    }

    Settings settings_ = kDefaults;
};

TEST_F(Depth, OfTheBumpIsTwentyLevelsOfWhichBytesHaveThree)
{
    auto const levels = [&](char const* name) {
        std::set<int> values;
        Picture const heights = picture(name);
        with_samples(heights, [&](auto samples) {
            for (auto const sample : samples) {
                values.insert(static_cast<int>(to_number(sample)));
            }
        });
        return values.size();
    };
    EXPECT_EQ(levels("deep.png"), 20U);
    EXPECT_EQ(levels("bytes.png"), 3U);
}

TEST_F(Depth, ReachesMapsAndNormals)
{
    MapJob map;
    map.settings = settings_;
    auto const of_map = reds_of(map);
    EXPECT_GT(of_map.at("deep"), of_map.at("bytes"));
    NormalJob normal;
    normal.settings = settings_;
    auto const of_normals = reds_of(normal);
    EXPECT_GT(of_normals.at("deep"), of_normals.at("bytes"));
    std::printf("red has %zu levels of 16 bits and %zu of 8 in a map, %zu and %zu in normals\n",
                of_map.at("deep"), of_map.at("bytes"), of_normals.at("deep"), of_normals.at("bytes"));
}

TEST_F(Depth, ReachesMapsOfAList)
{
    ListJob job;
    job.data = data_for(settings_, Kind::kHeightMap, kBumpSide);
    auto const alone = reds_of(job);
    EXPECT_GT(alone.at("deep"), alone.at("bytes"));
    std::map<std::string, std::size_t> layered;
    for (std::string const name : {"deep", "bytes"}) {
        n_layer layer;
        layer.filename = path(name + ".png");
        layer.n_scale = 300.0f;
        layer.normal_scale = 1.0f;
        job.files = files("bytes.png", "layered.png");
        job.layers = {layer};
        run(job, nobody_);
        layered[name] = reds("layered.png");
    }
    EXPECT_GT(layered.at("deep"), layered.at("bytes"));
}

TEST_F(Depth, OfAStackIsNarrowedInBetweenIfAllLayersAreBytes)
{
    run(stack_on("bytes"), nobody_);
    EXPECT_EQ(picture("map.tga").bytes, map_of_saved_blend().bytes);
    std::size_t const of_bytes = reds("map.tga");
    run(stack_on("deep"), nobody_);
    EXPECT_NE(picture("map.tga").bytes, map_of_saved_blend().bytes);
    EXPECT_GT(reds("map.tga"), of_bytes);
}

TEST_F(Depth, OfALayerReachesTheMapOfALibraryStack)
{
    StackJob job = stack_on("bytes");
    job.map_from_layers = true;
    run(job, nobody_);
    std::size_t const of_bytes = reds("map.tga");
    job = stack_on("deep");
    job.map_from_layers = true;
    run(job, nobody_);
    EXPECT_GT(reds("map.tga"), of_bytes);
}

TEST_F(Depth, ReachesALitPicture)
{
    RelightJob job;
    job.light = {0.0, 90.0};
    job.look = {Modes_UnitBasis, 1.2}; // the brightest that keeps the bump below white
    auto const levels = reds_of(job);
    EXPECT_GT(levels.at("deep"), levels.at("bytes"));
    job.directions = 4;
    job.cell = kBumpSide / 2;
    auto const of_sheet = reds_of(job);
    EXPECT_GT(of_sheet.at("deep"), of_sheet.at("bytes"));
}

} // namespace
} // namespace umbrixlib::test
