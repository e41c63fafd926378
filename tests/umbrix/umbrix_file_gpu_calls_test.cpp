// SPDX-License-Identifier: MIT
// The calls that UmbrixFile_GPU makes into the graphics library, DevIL and the kernels, and the bytes that
// come out, for every combination of the options that steer its stages.
#include "umbrix_file_gpu_calls.h"

#include "kernels_fake.h"

#include <array>
#include <gmock/gmock.h>
#include <set>

namespace {

using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::GraphicsStages;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::neutral_options;
using umbrixlib::test::UmbrixFileGpuCalls;
using Calls = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

enum class Layers { kNone, kNormalsOnly, kHeightsToo };

struct Combination {
    int calc_type;
    bool preserve, keep_buffers, no_normal, generate_normal, height_map, filter, ao_flag;
    Layers layers;
};

/// Every combination.
std::vector<Combination> all_combinations()
{
    std::vector<Combination> all;
    for (int const calc_type : {0, 1, 2, 3, 5}) {
        for (unsigned bits = 0; bits < 128; ++bits) {
            auto const bit = [&](unsigned number) { return (bits >> number & 1) != 0; };
            for (Layers const layers : {Layers::kNone, Layers::kNormalsOnly, Layers::kHeightsToo}) {
                all.push_back({calc_type, bit(0), bit(1), bit(2), bit(3), bit(4), bit(5), bit(6), layers});
            }
        }
    }
    return all;
}

/// What the three options about normals select, spelled out.
struct NormalWork {
    bool group_2;    ///< Normals are made of the heights, by the library or by the layers.
    bool from_image; ///< They are decoded from the colours.
    bool group_3;    ///< They become light.
};
NormalWork normal_work(Combination const& c)
{
    struct Row {
        bool no_normal, generate_normal, height_map;
        NormalWork work;
    };
    constexpr Row kTable[] = {
        {false, false, false, {false, true, true}},  {false, false, true, {false, false, false}},
        {false, true, false, {true, false, true}},   {false, true, true, {true, false, true}},
        {true, false, false, {false, false, false}}, {true, false, true, {false, false, false}},
        {true, true, false, {false, false, false}},  {true, true, true, {false, false, false}},
    };
    for (Row const& row : kTable) {
        if (row.no_normal == c.no_normal && row.generate_normal == c.generate_normal &&
            row.height_map == c.height_map) {
            return row.work;
        }
    }
    throw std::logic_error("not in the table");
}

/// The calls with buffers numbered in the order in which they appear. A buffer is "#12", or "{role}".
Calls renumbered(Calls const& calls)
{
    std::vector<std::string> seen;
    Calls result;
    for (std::string const& call : calls) {
        std::string out;
        for (std::size_t at = 0; at < call.size();) {
            bool const number = call[at] == '#';
            if (!number && call[at] != '{') {
                out += call[at++];
                continue;
            }
            std::size_t const end =
                number ? call.find_first_not_of("0123456789", at + 1) : call.find('}', at) + 1;
            std::string const name = call.substr(at, end - at);
            auto const known = std::find(seen.begin(), seen.end(), name);
            out += "#" + std::to_string(known - seen.begin());
            if (known == seen.end()) {
                seen.push_back(name);
            }
            at = end;
        }
        result.push_back(out);
    }
    return result;
}

/// The stage text and number as a front end polls them.
struct Polled {
    std::string text = "before";
    int number = 99;
    std::string line() const { return "polled: " + text + " " + std::to_string(number); }
};

/// The calls of a run from the fetching of the pixels on.
Calls expected_calls(Combination const& c)
{
    std::string const gpu = (c.ao_flag ? "true" : "false") + std::string("/3/17");
    NormalWork const work = normal_work(c);
    Polled polled;
    Calls calls{"ilCopyPixels(4x4, 0x1908, 0x1401, {pixels})"};
    auto const add = [&](std::initializer_list<std::string> more) { calls.insert(calls.end(), more); };
    std::string heights = "{heights}";
    if (c.filter) {
        if (c.layers == Layers::kNone) {
            add({"GenerateExp(1, {spatial})", "GenerateExp(128, {range})"});
        }
        add({"BilateralFilter({heights}, {filtered}, 4, 4, 1, {spatial}, {range})"});
        heights = "{filtered}";
    }
    polled.text = "Bilateral Filtering";
    add({"SetDevice(3)", "SetDest:float(" + heights + ", 4, 4)",
         "PreProcess_GPU(" + gpu + ", " + heights + ", 4, 4)", polled.line(),
         "GetDest:float(" + heights + ", 4, 4)"});
    if (work.group_2 && c.layers == Layers::kNone) {
        add({"SetDevice(3)", "SetDest:float3({normals}, 4, 4)",
             "HeightToNormal_GPU(" + gpu + ", " + heights + ", 4, 4, 1.5, 0.75, 2, 0)", polled.line(),
             "GetDest:float3({normals}, 4, 4)"});
    }
    if (work.group_3) {
        polled = {"Normal -> Umbrix", 0};
        add({"SetDevice(3)",
             c.keep_buffers ? "SetDest:float3({kept}, 4, 4)" : "SetDest:float3({normals}, 4, 4)",
             "UmbrixNormal_GPU(" + gpu + ", {normals}, 2, 4, 4)", polled.line(),
             c.keep_buffers ? "GetDest:float3({converted}, 4, 4)" : "GetDest:float3({normals}, 4, 4)",
             "DeleteDest()", "DeleteSrc()"});
    }
    if (c.calc_type == 2 || c.calc_type == 5) {
        polled = {"Height -> AO", 0};
        add({"SetDevice(3)", "SetDest:float3({ao}, 4, 4)", "SetSrc:float3({ao}, 4, 4)",
             "SetSrc:float(" + heights + ", 4, 4)", "SetDest:float(" + heights + ", 4, 4)",
             "DirectionalAO_GPU(" + heights + ", 4, 4, 7, 90, 60, 0.25, 3, false, true, " +
                 (c.ao_flag ? "false" : "true") + ", 17)",
             polled.line(), "GetDest:float3({ao}, 4, 4)", "DeleteDest()", "DeleteSrc()"});
        polled.number = 1000;
    }
    add({"SetDest:float4({result}, 4, 4)", "PostProcess_GPU(" + gpu + ", {result}, 4, 4)", polled.line(),
         "GetDest:float4({result}, 4, 4)", "DeleteDest()", "DeleteSrc()",
         "ilTexImage(4x4x0, 4, 0x1908, 0x1401, {pixels})", "ilSaveImage(out.tga)", "ilShutDown()"});
    return calls;
}

/// Whether a call is one of the run's own, and not of the layers' in between.
bool is_of_the_run(std::string const& call)
{
    static std::set<std::string> const kLayersOwn = {"GenerateExp", "Height2Normal", "NormalScale",
                                                     "BlendNormal", "Blend"};
    return kLayersOwn.count(call.substr(0, call.find('('))) == 0;
}

umbrix_options options_of(Combination const& c)
{
    umbrix_options options = neutral_options();
    options.calc_type = static_cast<calc_type>(c.calc_type);
    options.preserve = c.preserve;
    options.keep_buffers = c.keep_buffers;
    options.no_normal = c.no_normal;
    options.generate_normal = c.generate_normal;
    options.height_map = c.height_map;
    options.b_radius = c.filter ? 1.0f : 0.99f;
    options.blend_height = c.layers != Layers::kNormalsOnly;
    options.rays = 7;
    options.theta_limit = 60.0f;
    options.alpha_limit = 90.0f;
    options.h_scale = 0.5f;
    options.tile = false;
    options.v_tile = true;
    options.n_scale = 1.5f;
    options.gaussian = 0.75f;
    options.L_Detail = 2.0f;
    options.UmbrixMode = Modes_FlatIsFull;
    return options;
}

unsigned char byte_of(double value)
{
    return static_cast<unsigned char>(std::clamp(value, 0.0, 1.0) * 255.0);
}

/// A texel of a run without layers, worked out by itself: the stand-ins' marks in the order of the stages.
struct Texel {
    float height_copy;
    float3 normal, open;
    std::array<unsigned char, 4> bytes;
};
Texel expected_texel(Combination const& c, unsigned char const* bytes)
{
    double colour[4];
    for (int i = 0; i < 4; ++i) {
        colour[i] = double(float(bytes[i] / 255.0));
    }
    NormalWork const work = normal_work(c);
    float height =
        c.height_map ? float(1.0 - (colour[0] + colour[1] + colour[2]) / 3.0) : float(1.0 - bytes[3] / 255.0);
    height += c.filter ? KernelsFake::kFiltered : 0.0f;
    Texel texel{c.preserve ? height : 1.0f, {0.0f, 0.0f, 1.0f}, {1.0f, 1.0f, 1.0f}, {}};
    height += GraphicsStages::kPre;
    if (work.group_2) {
        texel.normal = {0.0f, 0.0f, height};
    }
    if (work.from_image) {
        texel.normal = {float(colour[0] * 2.0 - 1.0), float(colour[1] * 2.0 - 1.0),
                        float(colour[2] * 2.0 - 1.0)};
    }
    float3 light = {1.0f, 1.0f, 1.0f};
    if (work.group_3) {
        light = {texel.normal.x + GraphicsStages::kLight, texel.normal.y, texel.normal.z};
    }
    float alpha = float(colour[3]);
    if (c.calc_type == 2 || c.calc_type == 5) {
        texel.open = {GraphicsStages::kOpenX, GraphicsStages::kOpenY, GraphicsStages::kOpenZ};
        alpha = c.preserve ? height : 1.0f;
    }
    texel.bytes = {byte_of(double(light.x * texel.open.x * 0.5f)), byte_of(double(light.y * texel.open.y)),
                   byte_of(double(light.z * texel.open.z)), byte_of(double(alpha))};
    return texel;
}

void expect_texels(Combination const& c, umbrix_options const& options, Bytes const& served)
{
    for (std::size_t i = 0; i < 16; ++i) {
        Texel const expected = expected_texel(c, &served[4 * i]);
        for (std::size_t channel = 0; channel < 4; ++channel) {
            ASSERT_EQ(DevilFake::instance().stored[4 * i + channel], expected.bytes[channel])
                << i << " " << channel;
        }
        ASSERT_EQ(options.height_copy[i], expected.height_copy);
        if (c.keep_buffers) {
            ASSERT_EQ(options.normal_map[i].x, expected.normal.x);
            ASSERT_EQ(options.normal_map[i].y, expected.normal.y);
            ASSERT_EQ(options.normal_map[i].z, expected.normal.z);
            ASSERT_EQ(options.ao_map[i].x, expected.open.x);
            ASSERT_EQ(options.ao_map[i].y, expected.open.y);
            ASSERT_EQ(options.ao_map[i].z, expected.open.z);
        }
    }
}

TEST_F(UmbrixFileGpuCalls, ComeInOrderForEveryCombinationOfTheOptions)
{
    Calls const opening = {"ilInit()",
                           "ilEnable(0x0620)",
                           "ilEnable(0x0600)",
                           "ilSetInteger(0x0600, 0x0602)",
                           "ilLoadImage(in.png)",
                           "ilGetInteger(0x0DE4)",
                           "ilGetInteger(0x0DE5)",
                           "ilGetInteger(0x0DE9)"};
    Bytes const served = DevilFake::instance().served;
    int number = 0;
    for (Combination const& c : all_combinations()) {
        SCOPED_TRACE(number++);
        if (c.layers == Layers::kNone && layers_.count > 0) {
            layers_.Remove(0);
        } else if (c.layers != Layers::kNone && layers_.count == 0) {
            describe({"same.png"});
        }
        NLayers stack(&layers_);
        if (c.layers != Layers::kNone) {
            stack.AddLayer("same.png");
        }
        gpu_.ao_flag = c.ao_flag;
        umbrix_options options = options_of(c);
        EXPECT_TRUE(run(options, "out.tga", &stack));
        Calls actual = CallLog::instance().calls();
        ASSERT_GE(actual.size(), opening.size());
        auto const behind = actual.begin() + static_cast<std::ptrdiff_t>(opening.size());
        EXPECT_EQ(Calls(actual.begin(), behind), opening);
        actual.erase(actual.begin(), behind);
        if (c.layers != Layers::kNone) {
            actual.erase(std::remove_if(actual.begin(), actual.end(),
                                        [](std::string const& call) { return !is_of_the_run(call); }),
                         actual.end());
        }
        ASSERT_EQ(renumbered(actual), renumbered(expected_calls(c)));
        EXPECT_EQ(status_, "Storing Results");
        EXPECT_EQ(progress_, 0);
        EXPECT_EQ(options.blend_height, c.layers == Layers::kHeightsToo);
        EXPECT_EQ(options.image_width, 4);
        EXPECT_EQ(options.image_height, 4);
        EXPECT_FALSE(GraphicsFake::instance().has_slots()) << "all were given up";
        ASSERT_EQ(GraphicsFake::instance().faults, Calls());
        if (c.layers == Layers::kNone) {
            ASSERT_NO_FATAL_FAILURE(expect_texels(c, options, served));
        }
        release(options);
    }
    EXPECT_EQ(number, 5 * 128 * 3);
}

TEST_F(UmbrixFileGpuCalls, TheTextOfTheFilterShowsWithoutAFilterToo)
{
    for (float const radius : {0.0f, 0.99f, 1.0f, 2.5f}) {
        umbrix_options options = neutral_options();
        options.b_radius = radius;
        run(options);
        EXPECT_THAT(CallLog::instance().calls(), testing::Contains("polled: Bilateral Filtering 99"));
        EXPECT_EQ(calls_starting_with("BilateralFilter("), radius < 1.0f ? 0 : 1) << radius;
        release(options);
    }
}

TEST_F(UmbrixFileGpuCalls, HeightsAreKeptBehindTheFilter)
{
    for (bool const preserve : {false, true}) {
        umbrix_options options = neutral_options();
        options.b_radius = 1.0f;
        options.preserve = preserve;
        run(options);
        for (std::size_t i = 0; i < 16; ++i) {
            float const height = float(1.0 - DevilFake::instance().served[4 * i + 3] / 255.0);
            EXPECT_EQ(options.height_copy[i], preserve ? height + KernelsFake::kFiltered : 1.0f);
        }
        release(options);
    }
}

TEST_F(UmbrixFileGpuCalls, AHeightCopyOfTheCallersIsLeftAlone)
{
    umbrix_options options = neutral_options();
    std::vector<float> copy(16, -5.0f);
    options.height_copy = copy.data();
    options.preserve = true;
    run(options);
    EXPECT_NE(options.height_copy, copy.data());
    EXPECT_EQ(copy, std::vector<float>(16, -5.0f));
    release(options);
}

TEST_F(UmbrixFileGpuCalls, FailedLoadsAndSavesAreNotNoticed)
{
    for (unsigned char const result : Bytes{0, 9, 255}) {
        DevilFake::instance().load_result = result;
        DevilFake::instance().save_result = result;
        umbrix_options options = neutral_options();
        EXPECT_TRUE(run(options));
        EXPECT_EQ(CallLog::instance().calls().back(), "ilShutDown()");
        release(options);
    }
}

TEST_F(UmbrixFileGpuCalls, AVtfNameReversesTheRowsOfEveryShape)
{
    struct Shape {
        int width, height;
    };
    for (Shape const shape : {Shape{3, 5}, Shape{5, 3}, Shape{1, 7}, Shape{7, 1}, Shape{4, 4}}) {
        for (int const bits : {24, 32}) {
            DevilFake::instance().files.clear();
            serve(shape.width, shape.height, bits);
            umbrix_options options = neutral_options();
            options.calc_type = calc_type_light_occlusion;
            options.preserve = true;
            run(options);
            Bytes const plain = DevilFake::instance().stored;
            release(options);
            EXPECT_EQ(progress_, 0);
            run(options, "a.vtf.tga");
            Bytes const reversed = DevilFake::instance().stored;
            release(options);
            EXPECT_EQ(progress_, int(double(float(shape.height - 1)) / double(float(shape.height)) * 1000.0));
            auto const row = static_cast<std::ptrdiff_t>(shape.width) * (bits / 8);
            for (int r = 0; r < shape.height; ++r) {
                EXPECT_TRUE(std::equal(plain.begin() + r * row, plain.begin() + (r + 1) * row,
                                       reversed.begin() + (shape.height - 1 - r) * row));
            }
            run(options, "a.VTF");
            EXPECT_EQ(DevilFake::instance().stored, plain) << "the case of the letters must match";
            release(options);
            UmbrixFile_GPU(gpu_, "in.vtf", "out.tga", options, &layers_, nullptr, &status_, &progress_);
            EXPECT_EQ(DevilFake::instance().stored, plain) << "the name of the input does not count";
            release(options);
        }
    }
}

TEST_F(UmbrixFileGpuCalls, TheNextRunTakesTheHeightsOfTheLast)
{
    umbrix_options options = neutral_options();
    options.b_radius = 1.0f;
    run(options);
    release(options);
    CallLog::instance().clear();
    for (int i = 0; i < 2; ++i) {
        UmbrixFile_GPU(gpu_, "in.png", "out.tga", options, &layers_, nullptr, &status_, &progress_);
        release(options);
    }
    std::vector<Calls> filters;
    for (std::string const& call : CallLog::instance().calls()) {
        if (call.rfind("BilateralFilter(", 0) == 0) {
            std::size_t const comma = call.find(", ");
            filters.push_back({call.substr(16, comma - 16),
                               call.substr(comma + 2, call.find(", ", comma + 2) - comma - 2)});
        }
    }
    ASSERT_EQ(filters.size(), 2U);
    EXPECT_EQ(filters[0][1], filters[1][0]) << "the filtered buffer of one run holds the heights of the next";
    EXPECT_NE(filters[1][0], filters[1][1]);
}

TEST_F(UmbrixFileGpuCalls, ALibraryThatDoesNothingLeavesADefinedPicture)
{
    struct Idle : GraphicsStages {
        void pre_process(float*, int, int, umbrix_options&) override {}
        void normals(float3*, float*, int, int, float, float, float) override {}
        void light(float3*, int, int, int) override {}
        void occlusion(float3*, float*, int, int, Occlusion const&, int*) override {}
        void post_process(float4*, int, int, umbrix_options&) override {}
    } idle;
    GraphicsFake::instance().stages = &idle;
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.generate_normal = true;
    EXPECT_TRUE(run(options));
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(DevilFake::instance().stored[4 * i], 0) << "the occlusion map is zero before its stage";
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3], 255);
    }
    release(options);
}

} // namespace
