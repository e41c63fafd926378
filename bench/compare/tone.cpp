// SPDX-License-Identifier: MIT
// The tone chain of `PreProcess` and `PostProcess` (contrast, limits, brightness; no blur) against the plain
// loops of the tests and a chain of OpenCV's `convertTo`, on one processor. All work in place and go on from
// where the run before left the image; the values stay in 0..1.
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/same_bits.h"
#include "opencv_images.h"
#include "tone_reference.h"
#include "umbrix/grading.h"
#include "umbrix_test_options.h"

#include <opencv2/core.hpp>
#include <type_traits>

namespace {

using namespace umbrixlib::bench;
namespace reference = umbrixlib::test::reference;

constexpr float kContrast = 0.1f;
constexpr int kLow = 5;
constexpr int kHigh = 250;
constexpr float kBrightness = 0.01f;

template <typename Pixel>
void ours_in_place(std::vector<Pixel>& image, int side)
{
    umbrix_options options = umbrixlib::test::neutral_options();
    options.contrast = options.h_contrast = kContrast;
    options.min = options.h_min = kLow;
    options.max = options.h_max = kHigh;
    options.brightness = options.h_brightness = kBrightness;
    if constexpr (std::is_same_v<Pixel, float>) {
        PreProcess(image.data(), side, side, options);
    } else {
        PostProcess(image.data(), side, side, options);
    }
}

template <typename Pixel>
void plain_in_place(std::vector<Pixel>& image, int side)
{
    reference::change_contrast(image.data(), side, side, kContrast);
    reference::limit_color(image.data(), side, side, kLow, kHigh);
    reference::brighten(image.data(), side, side, kBrightness);
}

void clamp(cv::Mat const& image)
{
    cv::min(image, 1.0, image);
    cv::max(image, 0.0, image);
}

/// The brightness of heights reaches as many texels as the image has rows, as ours does. Alpha changes with
/// the colours, which it does not in ours.
void opencv_in_place(cv::Mat image)
{
    double const contrast = static_cast<double>(kContrast);
    double const low = kLow / 255.0;
    double const high = kHigh / 255.0;
    image.convertTo(image, -1, 1.0 + contrast, -0.5 * contrast);
    clamp(image);
    image.convertTo(image, -1, high - low, low);
    cv::Mat brightened = image.channels() == 1 ? image.row(0) : image;
    brightened.convertTo(brightened, -1, 1.0, static_cast<double>(kBrightness));
    clamp(brightened);
}

template <typename Pixel>
void set_alpha(std::vector<Pixel>& image, [[maybe_unused]] float alpha)
{
    if constexpr (std::is_same_v<Pixel, float4>) {
        for (float4& pixel : image) {
            pixel.w = alpha;
        }
    }
}

template <typename Pixel>
void measure(char const* pixel, char const* map, int side, Effort const& effort)
{
    std::vector<Pixel> const source = pixels_of<Pixel>(map, side);
    std::vector<Pixel> ours = source;
    std::vector<Pixel> plain = source;
    std::vector<Pixel> opencv = source;
    cv::Mat const opencv_image = as_image(opencv, side);
    Seconds const seconds = interleaved({{"ours", [&] { ours_in_place(ours, side); }},
                                         {"plain", [&] { plain_in_place(plain, side); }},
                                         {"opencv", [&] { opencv_in_place(opencv_image); }}},
                                        effort, cpu_seconds);
    ours = plain = opencv = source;
    ours_in_place(ours, side);
    plain_in_place(plain, side);
    opencv_in_place(as_image(opencv, side));
    bool const equals = same_bits(ours, plain);
    set_alpha(ours, 1.0f);
    set_alpha(opencv, 1.0f);
    print({{"what", "tone"},
           {"pixel", pixel},
           {"map", map},
           {"side", side},
           {"seconds", seconds},
           {"equals_plain", equals},
           {"opencv_difference", largest_difference(ours, opencv, side, 0)}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    cv::setNumThreads(1);
    Effort const effort = effort_of(count, words);
    for (char const* const map : maps_of(count, words)) {
        for (int const side : {512, 1024, 2048}) {
            measure<float>("float", map, side, effort);
            measure<float3>("float3", map, side, effort);
            measure<float4>("float4", map, side, effort);
        }
    }
}
