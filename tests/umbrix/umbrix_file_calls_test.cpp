// SPDX-License-Identifier: MIT
// The calls that UmbrixFile makes into DevIL and the companion libraries, for every combination of the
// options that steer its stages. Calls of the threads of one stage may come in any order; stages may not.
#include "umbrix_file_calls.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <omp.h>

namespace {

using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::neutral_options;
using umbrixlib::test::UmbrixFileCalls;
using Bytes = std::vector<unsigned char>;
using Calls = std::vector<std::string>;

/// Calls of one stage, their order left open.
using Stage = Calls;

/// The call that @p form gives for each thread, with "T" in it replaced by the thread's number.
Stage of_every_thread(std::string const& form)
{
    int const threads = omp_get_num_procs();
    Stage stage;
    for (int thread = 0; thread < threads; ++thread) {
        std::string call = form;
        call.replace(call.find('T'), 1, std::to_string(thread) + ", " + std::to_string(threads));
        stage.push_back(call);
    }
    return stage;
}

/// Whether @p calls are the stages one after the other, each in some order of its own.
void expect_stages(std::vector<Stage> const& stages, Calls const& calls)
{
    auto at = calls.begin();
    for (Stage expected : stages) {
        auto const end =
            at + std::min<std::ptrdiff_t>(calls.end() - at, static_cast<std::ptrdiff_t>(expected.size()));
        Stage actual(at, end);
        std::sort(expected.begin(), expected.end());
        std::sort(actual.begin(), actual.end());
        ASSERT_EQ(expected, actual) << testing::PrintToString(calls);
        at = end;
    }
    EXPECT_EQ(at, calls.end()) << testing::PrintToString(calls);
}

std::vector<Stage> opening()
{
    return {{"ilInit()"},
            {"ilEnable(0x0620)"},
            {"ilEnable(0x0600)"},
            {"ilSetInteger(0x0600, 0x0602)"},
            {"ilLoadImage(in.png)"},
            {"ilGetInteger(0x0DE4)"},
            {"ilGetInteger(0x0DE5)"},
            {"ilGetInteger(0x0DE9)"},
            {"ilCopyPixels(4x4, 0x1908, 0x1401, #1)"}};
}

void append_closing(std::vector<Stage>& stages)
{
    stages.push_back({"ilTexImage(4x4x0, 4, 0x1908, 0x1401, #1)"});
    stages.push_back({"ilSaveImage(out.tga)"});
    stages.push_back({"ilShutDown()"});
}

struct Combination {
    int calc_type;
    bool preserve, keep_buffers, no_normal, generate_normal, height_map;
};

/// Buffers get their numbers in the order of first sight, so the expectation counts along.
std::vector<Stage> expected_stages(Combination const& c)
{
    std::vector<Stage> stages = opening();
    int buffers = 1;
    auto const next = [&] { return "#" + std::to_string(++buffers); };
    std::string heights;
    bool const light = c.generate_normal || (!c.no_normal && !c.height_map);
    std::string generated;
    if (c.generate_normal) {
        std::string const spatial = next();
        std::string const range = next();
        std::string const image = next();
        generated = next();
        stages.push_back({"GenerateExp(0, " + spatial + ")"});
        stages.push_back({"GenerateExp(128, " + range + ")"});
        stages.push_back({"Height2Normal(" + image + ", " + generated + ", 4, 4)"});
    }
    if (light) {
        std::string const target = c.generate_normal && !c.keep_buffers ? generated : next();
        Stage stage = of_every_thread("Normal2Umbrix(" + target + ", 4, 4, 2, T)");
        stage.emplace_back("polled: Normal -> Umbrix 0");
        stages.push_back(stage);
    }
    if (c.calc_type == 2 || c.calc_type == 5) {
        std::string const a = next();
        std::string const b = next();
        std::string const rays_c = next();
        std::string const rays = a + ", " + b + ", " + rays_c;
        stages.push_back({"GenerateRays(4, 4, " + rays + ", 7, 60, 90)"});
        std::string const occlusion = next();
        heights = next();
        stages.push_back({"Height2DirectionalAO(" + occlusion + ", " + heights + ", 4, 4, " + rays +
                          ", 7, 0.5, 0.25, true, false, true)"});
        stages.push_back({"polled: Height -> AO 0"});
    }
    append_closing(stages);
    return stages;
}

TEST_F(UmbrixFileCalls, ComeInOrderForEveryCombinationOfTheOptions)
{
    for (int bits = 0; bits < 3 * 32; ++bits) {
        Combination const c{(bits / 32 == 0)   ? 0
                            : (bits / 32 == 1) ? 2
                                               : 5,
                            (bits & 1) != 0,
                            (bits & 2) != 0,
                            (bits & 4) != 0,
                            (bits & 8) != 0,
                            (bits & 16) != 0};
        SCOPED_TRACE(bits);
        umbrix_options options = neutral_options();
        options.calc_type = static_cast<calc_type>(c.calc_type);
        options.preserve = c.preserve;
        options.keep_buffers = c.keep_buffers;
        options.no_normal = c.no_normal;
        options.generate_normal = c.generate_normal;
        options.height_map = c.height_map;
        options.rays = 7;
        options.theta_limit = 60.0f;
        options.alpha_limit = 90.0f;
        options.h_scale = 0.5f;
        options.tile = true;
        options.v_tile = true;
        options.UmbrixMode = Modes_FlatIsFull;
        options.blend_height = true;
        EXPECT_TRUE(run(options));
        ASSERT_NO_FATAL_FAILURE(expect_stages(expected_stages(c), CallLog::instance().calls()));
        EXPECT_EQ(status_, "Storing Results");
        EXPECT_EQ(progress_, 0);
        EXPECT_FALSE(options.blend_height) << "cleared, as there are no layers";
        EXPECT_EQ(options.image_width, 4);
        EXPECT_EQ(options.image_height, 4);
        release(options);
    }
}

TEST_F(UmbrixFileCalls, TheFilterRunsFromARadiusOfOneOn)
{
    umbrix_options options = neutral_options();
    options.height_map = true;
    options.b_radius = 1.0f;
    run(options);
    std::vector<Stage> stages = opening();
    // Tables are made without a barrier between the two, so the first sight of the range table may come
    // first.
    Calls calls = CallLog::instance().calls();
    auto const threads = static_cast<std::size_t>(omp_get_num_procs());
    Calls tables(calls.begin() + 9, calls.begin() + 9 + static_cast<std::ptrdiff_t>(2 * threads));
    std::string const numbers = std::to_string(threads);
    for (std::size_t thread = 0; thread < threads; ++thread) {
        std::string const share = ", " + std::to_string(thread) + ", " + numbers + ")";
        EXPECT_THAT(tables, testing::Contains("GenerateExp(1, #2" + share));
        EXPECT_THAT(tables, testing::Contains("GenerateExp(128, #3" + share));
    }
    calls.erase(calls.begin() + 9, calls.begin() + 9 + static_cast<std::ptrdiff_t>(2 * threads));
    stages.push_back(of_every_thread("BilateralFilter(#4, #5, 4, 4, 1, #2, #3, T)"));
    append_closing(stages);
    expect_stages(stages, calls);
}

TEST_F(UmbrixFileCalls, BelowARadiusOfOneThereIsNoFilter)
{
    umbrix_options options = neutral_options();
    options.height_map = true;
    options.b_radius = 0.99f;
    run(options);
    std::vector<Stage> stages = opening();
    append_closing(stages);
    expect_stages(stages, CallLog::instance().calls());
}

TEST_F(UmbrixFileCalls, TheFilteredHeightsReachTheOcclusion)
{
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.height_map = true;
    options.b_radius = 2.0f;
    options.preserve = true;
    options.keep_buffers = true;
    options.h_scale = 0.5f;
    run(options);
    auto const& fake = DevilFake::instance();
    for (std::size_t i = 0; i < 16; ++i) {
        auto const colour = [&](std::size_t c) { return double(float(fake.served[4 * i + c] / 255.0)); };
        auto const height = float((colour(0) + colour(1) + colour(2)) / 3.0);
        EXPECT_EQ(options.height_copy[i], height) << "kept before the filter";
        float const filtered = (height + KernelsFake::kFiltered) * 0.5f;
        EXPECT_EQ(fake.stored[4 * i + 3],
                  static_cast<unsigned char>(std::min(double(filtered), 1.0) * 255.0));
    }
    release(options);
}

TEST_F(UmbrixFileCalls, KeptNormalsAreThoseBeforeTheLightConversion)
{
    umbrix_options options = neutral_options();
    options.keep_buffers = true;
    run(options);
    auto const& fake = DevilFake::instance();
    for (std::size_t i = 0; i < 16; ++i) {
        auto const component = float(double(float(fake.served[4 * i] / 255.0)) * 2.0 - 1.0);
        EXPECT_EQ(options.normal_map[i].x, component);
        double const light = std::clamp(double(component + KernelsFake::kLight), 0.0, 1.0);
        EXPECT_EQ(fake.stored[4 * i], static_cast<unsigned char>(light * 255.0));
        EXPECT_EQ(options.ao_map[i].y, 1.0f) << "no occlusion";
        EXPECT_EQ(options.height_copy[i], 0.0f) << "filled with `preserve` only";
    }
    release(options);
}

TEST_F(UmbrixFileCalls, WithoutOcclusionAlphaStaysThatOfTheImage)
{
    umbrix_options options = neutral_options();
    options.keep_buffers = true;
    options.preserve = true;
    run(options);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3], DevilFake::instance().served[4 * i + 3]);
    }
    release(options);
}

TEST_F(UmbrixFileCalls, WithOcclusionAlphaBecomesOneUnlessTheHeightIsPreserved)
{
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_occlusion;
    options.no_normal = true;
    run(options);
    auto const& stored = DevilFake::instance().stored;
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(stored[4 * i], 127) << "full light times the share of x";
        EXPECT_EQ(stored[4 * i + 1], 63);
        EXPECT_EQ(stored[4 * i + 2], 255);
        EXPECT_EQ(stored[4 * i + 3], 255);
    }
}

TEST_F(UmbrixFileCalls, AMissingHeightCopyIsLeftOut)
{
    umbrix_options options = neutral_options();
    options.preserve = true;
    EXPECT_TRUE(run(options));
    EXPECT_EQ(options.height_copy, nullptr);
}

TEST_F(UmbrixFileCalls, AHeightCopyOfTheCallersIsFilled)
{
    umbrix_options options = neutral_options();
    std::vector<float> copy(16);
    options.preserve = true;
    options.height_copy = copy.data();
    run(options);
    EXPECT_EQ(copy[5], float(DevilFake::instance().served[4 * 5 + 3] / 255.0));
}

TEST_F(UmbrixFileCalls, AFailedLoadIsNotNoticed)
{
    DevilFake::instance().load_result = 0;
    DevilFake::instance().save_result = 0;
    umbrix_options options = neutral_options();
    EXPECT_TRUE(run(options));
    EXPECT_EQ(CallLog::instance().calls().back(), "ilShutDown()");
}

TEST_F(UmbrixFileCalls, AVtfNameReversesTheRows)
{
    umbrix_options options = neutral_options();
    options.height_map = true;
    options.keep_buffers = true;
    options.preserve = true;
    options.calc_type = calc_type_light_occlusion;
    run(options);
    auto const plain = DevilFake::instance().stored;
    release(options);
    run(options, "a.vtf.tga");
    auto const reversed = DevilFake::instance().stored;
    release(options);
    EXPECT_EQ(progress_, 750) << "after the last of four rows";
    for (std::size_t row = 0; row < 4; ++row) {
        EXPECT_TRUE(std::equal(plain.begin() + static_cast<std::ptrdiff_t>(16 * row),
                               plain.begin() + static_cast<std::ptrdiff_t>(16 * row + 16),
                               reversed.begin() + static_cast<std::ptrdiff_t>(16 * (3 - row))));
    }
    run(options, "a.VTF");
    EXPECT_EQ(DevilFake::instance().stored, plain) << "the case of the letters must match";
    release(options);
    LinkedList<n_layer> layers;
    UmbrixFile("in.vtf", "out.tga", options, &layers, nullptr, &status_, &progress_);
    EXPECT_EQ(DevilFake::instance().stored, plain) << "the name of the input does not count";
    release(options);
}

/// A reversed picture is made from a map that was stored, an upright one without grading is not.
TEST_F(UmbrixFileCalls, AMapThatIsNeverStoredHasTheBytesOfOneThatIs)
{
    constexpr std::ptrdiff_t kSide = 20;
    for (int bits = 0; bits < 2 * 16; ++bits) {
        SCOPED_TRACE(bits);
        DevilFake::instance().serve(kSide, kSide, bits < 16 ? 24 : 32);
        umbrix_options options = neutral_options();
        options.calc_type = (bits & 1) != 0 ? calc_type_light_occlusion : static_cast<calc_type>(0);
        options.preserve = (bits & 2) != 0;
        options.no_normal = (bits & 4) != 0;
        options.height_map = (bits & 8) != 0;
        options.h_scale = 0.75f;
        run(options);
        auto const upright = DevilFake::instance().stored;
        run(options, "out.vtf");
        auto const reversed = DevilFake::instance().stored;
        auto const row = static_cast<std::ptrdiff_t>(upright.size()) / kSide;
        ASSERT_EQ(upright.size(), reversed.size());
        for (std::ptrdiff_t y = 0; y < kSide; ++y) {
            ASSERT_TRUE(std::equal(upright.begin() + row * y, upright.begin() + row * (y + 1),
                                   reversed.begin() + row * (kSide - 1 - y)));
        }
    }
}

TEST_F(UmbrixFileCalls, TheNextRunTakesTheHeightsAndRaysOfTheLast)
{
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.b_radius = 1.0f;
    run(options);
    CallLog::instance().clear();
    auto const occlusion_calls = [&] {
        LinkedList<n_layer> layers;
        UmbrixFile("in.png", "out.tga", options, &layers, nullptr, &status_, &progress_);
        Calls found;
        for (std::string const& call : CallLog::instance().calls()) {
            if (call.rfind("Height2DirectionalAO(", 0) == 0 || call.rfind("GenerateRays(", 0) == 0) {
                found.push_back(call.substr(call.find(", ")));
            }
        }
        return found;
    };
    occlusion_calls();
    Calls const after_two = occlusion_calls();
    // Calls of both runs, without the occlusion map that comes first: the same rays; the heights, which the
    // filter has swapped with the scratch buffer of their run, are those that the run before ended with.
    ASSERT_EQ(after_two.size(), 4U);
    EXPECT_EQ(after_two[0], after_two[2]);
    Calls const bilateral = [] {
        Calls found;
        for (std::string const& call : CallLog::instance().calls()) {
            if (call.rfind("BilateralFilter(", 0) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }();
    auto const field = [](std::string const& call, int index) {
        std::size_t at = call.find('(') + 1;
        for (; index > 0; --index) {
            at = call.find(", ", at) + 2;
        }
        return call.substr(at, call.find(", ", at) - at);
    };
    EXPECT_EQ(field(bilateral.front(), 1), field(bilateral.back(), 0))
        << "the filtered buffer of one run holds the heights of the next";
}

TEST_F(UmbrixFileCalls, ThreadsBeyondTheSharesCallNoKernel)
{
    umbrix_options options = neutral_options();
    options.b_radius = 1.0f;
    run(options);
    auto const sorted = [] {
        Calls calls = CallLog::instance().calls();
        std::sort(calls.begin(), calls.end());
        return calls;
    };
    std::size_t const calls = sorted().size();
    Bytes const stored = DevilFake::instance().stored;
    for (int const team : {omp_get_num_procs() + 1, 7, 64}) {
        omp_set_num_threads(team);
        run(options);
        EXPECT_EQ(sorted().size(), calls) << team;
        EXPECT_EQ(DevilFake::instance().stored, stored) << team;
    }
}

TEST_F(UmbrixFileCalls, ASmallerTeamWritesThreeBytesATexelOfGreyAndAlpha)
{
    int const shares = omp_get_num_procs(); // on a single processor every team is large enough
    DevilFake::instance().serve(6, 3, 16);
    omp_set_num_threads(1);
    for (float const brightness : {0.0f, 1.0f}) { // with 1 the map is stored before its bytes
        umbrix_options options = neutral_options();
        options.height_map = true;
        options.brightness = brightness;
        EXPECT_TRUE(run(options));
        // Full light is white. Texel i of 18 has the bytes 2 * i to 2 * i + 2.
        Bytes expected = DevilFake::instance().served;
        expected.resize(std::size_t{18} * 3);
        for (std::size_t i = 0; i < 18; i += static_cast<std::size_t>(shares)) {
            std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(2 * i), 3, 255);
        }
        EXPECT_EQ(DevilFake::instance().stored, expected) << brightness;
    }
}

} // namespace
