// SPDX-License-Identifier: MIT
// `BilateralFilter` on floats against the plain loops of the tests and OpenCV's `bilateralFilter`, on one
// processor.
#include "bilateral_filter_reference.h"
#include "boundary/texture_kernels.h"
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

constexpr float kRangeSigma = 128.0f; ///< Of 255 steps, as the pipelines have it.

void measure(char const* map, int side, int radius, Effort const& effort)
{
    std::vector<float> source = heights_of(map, side);
    std::vector<float> spatial(static_cast<std::size_t>(radius) + 1);
    std::vector<float> range(256);
    GenerateExp(static_cast<float>(radius), spatial.data());
    GenerateExp(kRangeSigma, range.data());
    std::vector<float> ours(source.size());
    std::vector<float> plain(source.size());
    std::vector<float> opencv(source.size());
    cv::Mat const opencv_source = as_image(source, side);
    cv::Mat const opencv_result = as_image(opencv, side);
    // The tables span three standard deviations.
    double const sigma_space = radius / 3.0;
    double const sigma_range = static_cast<double>(kRangeSigma) / 3.0 / 255.0;
    Seconds const seconds =
        interleaved({{"ours",
                      [&] {
                          BilateralFilter(source.data(), ours.data(), side, side, static_cast<float>(radius),
                                          spatial.data(), range.data());
                      }},
                     {"plain",
                      [&] {
                          velloric::reference::bilateral_filter(source.data(), plain.data(), side, side, 1,
                                                                radius, spatial.data(), range.data());
                      }},
                     {"opencv",
                      [&] {
                          cv::bilateralFilter(opencv_source, opencv_result, 2 * radius + 1, sigma_range,
                                              sigma_space, cv::BORDER_WRAP);
                      }}},
                    effort, cpu_seconds);
    print({{"what", "bilateral"},
           {"map", map},
           {"side", side},
           {"radius", radius},
           {"seconds", seconds},
           {"equals_plain", same_bits(ours, plain)},
           {"opencv_difference", largest_difference(ours, opencv, side, 0)}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    cv::setNumThreads(1);
    Effort const effort = effort_of(count, words);
    // The time does not depend on the heights, so two of the maps do.
    for (int const radius : {2, 5, 10, 20}) {
        for (char const* const map : {"terrain", "bricks"}) {
            measure(map, 512, radius, effort);
            if (!is_quick(count, words) || radius < 20) {
                measure(map, 1024, radius, effort);
            }
        }
    }
}
