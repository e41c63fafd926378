// SPDX-License-Identifier: MIT
/// Normal maps of all depths as inputs of maps.
#include "task_test.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encoder.h"

#include <cmath>
#include <functional>
#include <limits>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr int kGroundSide = 16;

/// Normals of round ground in the colours, in 256ths so that floats turn over without loss, its heights in
/// the alpha.
Picture coded_normals()
{
    Picture picture = make_picture(kGroundSide, kGroundSide, 4, SampleType::kFloat);
    auto const samples = picture.samples<float>();
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        double const x = static_cast<double>(i % kGroundSide) * 0.4;
        double const y = static_cast<double>(i / kGroundSide) * 0.4;
        auto const rounded = [](double value) {
            return static_cast<float>(std::round(value * 256.0) / 256.0);
        };
        samples[4 * i] = rounded(0.5 + 0.1 * std::sin(x));
        samples[4 * i + 1] = rounded(0.5 + 0.08 * std::cos(y) + 0.05 * std::sin(x + y));
        samples[4 * i + 2] = rounded(0.98);
        samples[4 * i + 3] = rounded(0.5 + 0.25 * std::cos(x) + 0.25 * std::sin(y));
    }
    return picture;
}

class NormalMaps : public TaskTest {
protected:
    void put(std::string const& name, Picture const& picture, SampleType depth) const
    {
        bool const deep = depth == SampleType::kHalf || depth == SampleType::kFloat;
        ASSERT_TRUE((deep ? exr_encoder() : png_encoder()).encode(path(name), converted(picture, {depth})));
    }

    /// The bytes of the map that @p change makes of the normal map @p input.
    TexelBytes map_of(
        std::string const& input, std::function<void(MapJob&)> const& change = [](MapJob&) {})
    {
        MapJob job;
        job.files = files(input, "map.tga");
        job.kind = Kind::kNormalMap;
        job.settings.rays = 16;
        job.settings.relief = 0.5f;
        change(job);
        notes_.texts.clear();
        run(job, notes_);
        return picture("map.tga").bytes;
    }

    Notes notes_;
};

TEST_F(NormalMaps, WithGreenDownGiveTheMapOfThoseWithGreenUp)
{
    Picture const up = coded_normals();
    Picture down = up;
    for (std::size_t i = 1; i < down.samples<float>().size(); i += 4) {
        down.samples<float>()[i] = 1.0f - down.samples<float>()[i];
    }
    for (SampleType const depth :
         {SampleType::kUint8, SampleType::kUint16, SampleType::kHalf, SampleType::kFloat}) {
        bool const deep = depth == SampleType::kHalf || depth == SampleType::kFloat;
        std::string const ending = deep ? ".exr" : ".png";
        put("up" + ending, up, depth);
        put("down" + ending, down, depth);
        TexelBytes const wanted = map_of("up" + ending);
        TexelBytes const made = map_of("down" + ending, [](MapJob& job) { job.normal_y = NormalY::kDown; });
        int largest = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            largest = std::max(largest, std::abs(int{wanted[i]} - int{made[i]}));
        }
        EXPECT_LE(largest, depth == SampleType::kUint8 ? 3 : 1)
            << static_cast<int>(depth); // by the rounding of green
        EXPECT_NE(map_of("down" + ending), wanted);
    }
}

TEST_F(NormalMaps, OfWholeNumbersTurnOverExactly)
{
    for (SampleType const depth : {SampleType::kUint8, SampleType::kUint16}) {
        Picture const up = converted(coded_normals(), {depth});
        Picture down = up;
        if (depth == SampleType::kUint8) {
            for (std::size_t i = 1; i < down.bytes.size(); i += 4) {
                down.bytes[i] = static_cast<std::uint8_t>(255 - down.bytes[i]);
            }
        } else {
            for (std::size_t i = 1; i < down.samples<std::uint16_t>().size(); i += 4) {
                auto& green = down.samples<std::uint16_t>()[i];
                green = static_cast<std::uint16_t>(65535 - green);
            }
        }
        put("up.png", up, depth);
        put("down.png", down, depth);
        EXPECT_EQ(map_of("down.png", [](MapJob& job) { job.normal_y = NormalY::kDown; }), map_of("up.png"));
    }
}

TEST_F(NormalMaps, WithHolesAreRefusedOrFlatThere)
{
    Picture holes = coded_normals();
    Picture flat = holes;
    for (std::size_t const texel : {std::size_t{5}, std::size_t{70}}) {
        holes.samples<float>()[4 * texel + 1] = std::numeric_limits<float>::quiet_NaN();
        flat.samples<float>()[4 * texel] = flat.samples<float>()[4 * texel + 1] = 0.5f;
        flat.samples<float>()[4 * texel + 2] = 1.0f;
    }
    put("holes.exr", holes, SampleType::kFloat);
    put("flat.exr", flat, SampleType::kFloat);
    try {
        map_of("holes.exr");
        FAIL() << "it was taken";
    } catch (Failure const& failure) {
        EXPECT_STREQ(failure.what(), "2 of its texels are NaN or infinite");
    }
    auto const replaced = [](MapJob& job) { job.settings.replace_invalid.replacement = 0.0; };
    TexelBytes const made = map_of("holes.exr", replaced);
    EXPECT_EQ(notes_.texts,
              (std::vector<std::string>{"what is NaN or infinite in its normals is taken for flat ground"}));
    EXPECT_EQ(made, map_of("flat.exr"));
}

TEST_F(NormalMaps, HaveHeightsOfAnyRangeInTheirAlpha)
{
    Picture const normals = coded_normals();
    Picture wide = normals;
    for (std::size_t i = 3; i < wide.samples<float>().size(); i += 4) {
        wide.samples<float>()[i] = 8.0f * wide.samples<float>()[i] - 2.0f;
    }
    put("normals.exr", normals, SampleType::kFloat);
    put("wide.exr", wide, SampleType::kFloat);
    auto const in_range = [](MapJob& job) {
        job.settings.height_range = {HeightRange::How::kGiven, -2.0, 6.0};
    };
    EXPECT_EQ(map_of("wide.exr", in_range), map_of("normals.exr"));
    EXPECT_NE(map_of("normals.exr", [](MapJob& job) { job.settings.invert = true; }), map_of("normals.exr"));
}

TEST_F(NormalMaps, WithoutHeightsAreToldOf)
{
    Picture level = coded_normals();
    for (std::size_t i = 3; i < level.samples<float>().size(); i += 4) {
        level.samples<float>()[i] = 0.5f;
    }
    put("level.png", level, SampleType::kUint8);
    map_of("level.png");
    EXPECT_EQ(notes_.texts, (std::vector<std::string>{
                                "a normal map carries its heights in its alpha, and this one has none "
                                "there: its ground counts as flat"}));
    put("normals.png", coded_normals(), SampleType::kUint8);
    map_of("normals.png");
    EXPECT_EQ(notes_.texts, std::vector<std::string>{});
    map_of("normals.png", [](MapJob& job) { job.settings.height_from = HeightChannel::kRed; });
    EXPECT_EQ(notes_.texts, (std::vector<std::string>{"the heights of a normal map are those in its alpha, "
                                                      "whatever channel is asked for"}));
}

} // namespace
} // namespace umbrixlib::test
