// SPDX-License-Identifier: MIT
// Progress, stops and many callers of the runs in memory.
#include "normals/make_normals.h"
#include "umbrix/make_map.h"

#include "random_image.h"
#include "same_bits.h"
#include "umbrix_test_options.h"

#include <chrono>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using umbrixlib::MapRequest;
using umbrixlib::MapResult;
using umbrixlib::Outcome;
using umbrixlib::RunControl;
using umbrixlib::SampleType;

constexpr int kSide = 256;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;

class MakeMapControl : public testing::TestWithParam<bool> {
protected:
    MakeMapControl()
    {
        request_.source = {heights_.data(), kSide, kSide, 1, SampleType::kFloat};
        request_.options = umbrixlib::test::neutral_options();
        request_.options.calc_type = calc_type_light_occlusion;
        request_.options.height_map = request_.options.generate_normal = true;
        request_.options.rays = 100;
        request_.options.radius = 1.0f;
        request_.options.h_scale = 0.3f;
        request_.options.b_radius = 3.0f;
        request_.options.L_Detail = 2.0f;
        request_.options.smooth = request_.options.h_smooth = 1.0f;
        request_.wants_light = request_.wants_occlusion = true;
        request_.wants_normals = request_.wants_heights = true;
        if (GetParam()) {
            request_.gpu = GPU_opt{false, DeviceCount() - 1, 0}; // the host
        }
    }

    std::vector<float> map_of(MapRequest const& request) const
    {
        MapResult const result = umbrixlib::make_map(request);
        EXPECT_EQ(result.outcome, Outcome::kDone);
        return result.map == nullptr ? std::vector<float>()
                                     : std::vector<float>(&result.map[0].x, &result.map[0].x + 4 * kTexels);
    }

    static void expect_stopped(MapResult const& result)
    {
        EXPECT_EQ(result.outcome, Outcome::kStopped);
        EXPECT_EQ(result.map, nullptr);
        EXPECT_EQ(result.light, nullptr);
        EXPECT_EQ(result.occlusion, nullptr);
        EXPECT_EQ(result.normals, nullptr);
        EXPECT_EQ(result.heights, nullptr);
    }

    std::vector<float> heights_ = umbrixlib::test::random_image<float>(kTexels, 3);
    MapRequest request_;
};
INSTANTIATE_TEST_SUITE_P(Roads, MakeMapControl, testing::Bool());

TEST_P(MakeMapControl, AStopBeforeTheRunLeavesNothing)
{
    RunControl control;
    control.stop();
    request_.control = &control;
    expect_stopped(umbrixlib::make_map(request_));
}

TEST_P(MakeMapControl, StagesComeInOrderAndTheirProgressNeverGoesBack)
{
    RunControl control;
    request_.control = &control;
    std::vector<std::string> stages;
    bool goes_back = false;
    std::atomic<bool> done = false;
    std::thread front_end([&] {
        int last = 0;
        while (!done) {
            std::string const stage = control.stage();
            int const now = control.permille();
            if (stages.empty() || stages.back() != stage) {
                stages.push_back(stage);
            } else if (stage == "Height -> AO" && stage == control.stage()) {
                goes_back = goes_back || now < last;
            }
            last = now;
        }
    });
    std::vector<float> const watched = map_of(request_);
    done = true;
    front_end.join();
    EXPECT_FALSE(goes_back);
    EXPECT_STREQ(control.stage(), "Storing Results");
    EXPECT_NE(std::find(stages.begin(), stages.end(), "Height -> AO"), stages.end());
    request_.control = nullptr;
    EXPECT_SAME_BITS(map_of(request_), watched);
}

TEST_P(MakeMapControl, AStopInAnyStageEndsTheRunAndLeavesNoTraces)
{
    std::vector<float> const expected = map_of(request_);
    for (char const* const stage :
         {"", "Bilateral Filtering", "Generating Normal", "Normal -> Umbrix", "Height -> AO"}) {
        RunControl control;
        MapRequest stopped = request_;
        stopped.control = &control;
        stopped.options.rays = 5000; // nobody misses that stage
        std::atomic<bool> done = false;
        std::thread front_end([&] {
            // A stage that the polling misses is followed by one that comes later.
            while (!done && control.stage() != std::string(stage) &&
                   control.stage() != std::string("Height -> AO")) {
            }
            control.stop();
        });
        MapResult const result = umbrixlib::make_map(stopped);
        done = true;
        front_end.join();
        expect_stopped(result);
        EXPECT_SAME_BITS(expected, map_of(request_));
    }
}

TEST_P(MakeMapControl, RunsOfManyThreadsHaveTheirOwnResults)
{
    constexpr std::size_t kCallers = 4;
    std::vector<MapRequest> requests(kCallers, request_);
    std::vector<std::vector<float>> alone(kCallers);
    for (std::size_t i = 0; i < kCallers; ++i) {
        requests[i].options.rays = 10;
        requests[i].source.height -= static_cast<int>(i) * 13;
        requests[i].options.b_radius = static_cast<float>(i);
    }
    auto const texels_of = [](MapResult const& result) {
        return std::vector<float>(&result.map[0].x,
                                  &result.map[0].x + std::ptrdiff_t{4} * result.rows * result.cols);
    };
    for (std::size_t i = 0; i < kCallers; ++i) {
        alone[i] = texels_of(umbrixlib::make_map(requests[i]));
    }
    std::vector<std::vector<float>> together(kCallers);
    std::vector<std::thread> callers;
    for (std::size_t i = 0; i < kCallers; ++i) {
        callers.emplace_back([&, i] {
            for (int round = 0; round < 3; ++round) {
                together[i] = texels_of(umbrixlib::make_map(requests[i]));
            }
        });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(alone, together);
}

TEST_P(MakeMapControl, ARunThatWaitsForAnotherCanBeStopped)
{
    RunControl first_control;
    request_.control = &first_control;
    request_.options.rays = 3000;
    std::thread first([&] { EXPECT_EQ(umbrixlib::make_map(request_).outcome, Outcome::kStopped); });
    while (first_control.stage() != std::string("Height -> AO")) {
        std::this_thread::yield();
    }
    RunControl second_control;
    MapRequest second = request_;
    second.control = &second_control;
    std::thread front_end([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        second_control.stop();
    });
    expect_stopped(umbrixlib::make_map(second));
    EXPECT_STREQ(second_control.stage(), "") << "it had not begun";
    front_end.join();
    first_control.stop();
    first.join();
}

TEST(MakeNormalsControl, AStopLeavesNothing)
{
    std::vector<float> const heights = umbrixlib::test::random_image<float>(kTexels, 3);
    RunControl control;
    control.stop();
    umbrixlib::NormalsRequest request;
    request.heights = {heights.data(), kSide, kSide, 1, SampleType::kFloat};
    request.control = &control;
    umbrixlib::NormalsResult const result = umbrixlib::make_normals(request);
    EXPECT_EQ(result.outcome, Outcome::kStopped);
    EXPECT_EQ(result.normals, nullptr);
}

TEST(MakeMapRequest, WhatMakesNoSenseIsRefused)
{
    float const one = 0.5f;
    auto const outcome = [](umbrixlib::PictureView const& view, LinkedList<n_layer>* layers = nullptr) {
        MapRequest request;
        request.source = view;
        request.options = umbrixlib::test::neutral_options();
        request.layers = layers;
        return umbrixlib::make_map(request).outcome;
    };
    EXPECT_EQ(outcome({&one, 1, 1, 1, SampleType::kFloat}), Outcome::kDone);
    EXPECT_EQ(outcome({nullptr, 1, 1, 1, SampleType::kFloat}), Outcome::kInvalid);
    EXPECT_EQ(outcome({&one, -1, 1, 1, SampleType::kFloat}), Outcome::kInvalid);
    EXPECT_EQ(outcome({&one, 1, -1, 1, SampleType::kFloat}), Outcome::kInvalid);
    EXPECT_EQ(outcome({&one, 1, 1, 0, SampleType::kFloat}), Outcome::kInvalid);
    EXPECT_EQ(outcome({&one, 1, 1, 5, SampleType::kFloat}), Outcome::kInvalid);
    EXPECT_EQ(outcome({nullptr, 0, 7, 3, SampleType::kFloat}), Outcome::kDone) << "a map of no texels";
    LinkedList<n_layer> layers;
    layers.Add({});
    EXPECT_EQ(outcome({&one, 1, 1, 1, SampleType::kFloat}, &layers), Outcome::kInvalid) << "no stack";
    umbrixlib::NormalsRequest normals;
    EXPECT_EQ(umbrixlib::make_normals(normals).outcome, Outcome::kInvalid);
}

} // namespace
