// SPDX-License-Identifier: MIT
// `Height2Normal` against the plain loop of the tests and OpenCV's `Sobel` with a normalisation, on one
// processor.
#include "boundary/texture_kernels.h"
#include "height_to_normal_reference.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/same_bits.h"
#include "opencv_images.h"

#include <opencv2/imgproc.hpp>

namespace {

using namespace umbrixlib::bench;

constexpr float kStrength = 50.0f; ///< Heights are multiplied by it beforehand, so that slopes are around 1.

/// Normals as a user of OpenCV makes them: two central differences and a normalisation, planes at a time.
class OpencvNormals {
public:
    void operator()(cv::Mat const& heights, cv::Mat const& normals)
    {
        constexpr double kLeftMinusRight = -1.0;
        constexpr int kNoSmoothing = 1;
        cv::Sobel(heights, slope_x_, CV_32F, 1, 0, kNoSmoothing, kLeftMinusRight);
        cv::Sobel(heights, slope_y_, CV_32F, 0, 1, kNoSmoothing, kLeftMinusRight);
        cv::multiply(slope_x_, slope_x_, square_);
        cv::accumulateSquare(slope_y_, square_);
        cv::add(square_, 1.0, square_);
        cv::sqrt(square_, square_);
        cv::divide(1.0, square_, inverse_);
        cv::multiply(slope_x_, inverse_, slope_x_);
        cv::multiply(slope_y_, inverse_, slope_y_);
        cv::Mat const planes[] = {slope_x_, slope_y_, inverse_};
        cv::merge(planes, 3, normals);
    }

private:
    cv::Mat slope_x_;
    cv::Mat slope_y_;
    cv::Mat square_;
    cv::Mat inverse_;
};

void measure(char const* map, int side, Effort const& effort)
{
    std::vector<float> heights = heights_of(map, side, kStrength);
    std::vector<float3> ours(heights.size());
    std::vector<float3> plain(heights.size());
    std::vector<float3> opencv(heights.size());
    cv::Mat const opencv_heights = as_image(heights, side);
    cv::Mat const opencv_result = as_image(opencv, side);
    OpencvNormals opencv_normals;
    Seconds const seconds = interleaved(
        {{"ours", [&] { Height2Normal(heights.data(), ours.data(), side, side); }},
         {"plain", [&] { velloric::reference::height_to_normal(heights.data(), plain.data(), side, side); }},
         {"opencv", [&] { opencv_normals(opencv_heights, opencv_result); }}},
        effort, cpu_seconds);
    print({{"what", "normals"},
           {"map", map},
           {"side", side},
           {"seconds", seconds},
           {"equals_plain", same_bits(ours, plain)},
           {"opencv_difference", largest_difference(ours, opencv, side, 1)}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    cv::setNumThreads(1);
    for (char const* const map : maps_of(count, words)) {
        for (int const side : {512, 1024, 2048}) {
            measure(map, side, effort_of(count, words));
        }
    }
}
