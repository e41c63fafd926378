// SPDX-License-Identifier: MIT
// `gaussianFilterRGBA` against the plain recursion of the tests, OpenCV's `GaussianBlur` and CImg's
// `deriche`, on one processor.
#include "cimg_deriche.h"
#include "filters/recursive_gaussian.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/same_bits.h"
#include "opencv_images.h"
#include "recursive_gaussian_reference.h"

#include <opencv2/imgproc.hpp>
#include <type_traits>

namespace {

using namespace umbrixlib::bench;
namespace reference = umbrixlib::test::reference;

template <typename Pixel>
void measure(char const* pixel, char const* map, int side, float sigma, Effort const& effort)
{
    std::vector<Pixel> source = pixels_of<Pixel>(map, side);
    std::vector<Pixel> scratch(source.size());
    std::vector<Pixel> ours(source.size());
    std::vector<Pixel> plain_scratch(source.size());
    std::vector<Pixel> plain(source.size());
    std::vector<Pixel> opencv(source.size());
    cv::Mat const opencv_source = as_image(source, side);
    cv::Mat const opencv_result = as_image(opencv, side);
    std::vector<Contender> contenders = {
        {"ours", [&] { gaussianFilterRGBA(source.data(), ours.data(), scratch.data(), side, side, sigma); }},
        {"plain",
         [&] {
             auto const coefficients = reference::gaussian_coefficients(sigma);
             reference::gaussian_columns(source.data(), plain_scratch.data(), side, side, coefficients);
             reference::gaussian_rows(plain_scratch.data(), plain.data(), side, side, coefficients);
         }},
        {"opencv", [&] {
             cv::GaussianBlur(opencv_source, opencv_result, {0, 0}, static_cast<double>(sigma));
         }}};
    std::vector<Pixel> cimg;
    if constexpr (std::is_same_v<Pixel, float>) {
        // In place, so it goes on blurring what it has blurred; its time does not depend on the values.
        cimg = source;
        contenders.push_back({"cimg", [&] { cimg_deriche(cimg, side, sigma); }});
    }
    Seconds const seconds = interleaved(contenders, effort, cpu_seconds);
    int const margin = static_cast<int>(6.0f * sigma);
    Record record = {{"what", "gaussian"},
                     {"pixel", pixel},
                     {"map", map},
                     {"side", side},
                     {"sigma", sigma},
                     {"seconds", seconds},
                     {"equals_plain", same_bits(ours, plain)},
                     {"opencv_difference", largest_difference(ours, opencv, side, margin)}};
    if constexpr (std::is_same_v<Pixel, float>) {
        cimg = source;
        cimg_deriche(cimg, side, sigma);
        record["cimg_difference"] = largest_difference(ours, cimg, side, margin);
    }
    print(record);
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    cv::setNumThreads(1);
    Effort const effort = effort_of(count, words);
    for (char const* const map : maps_of(count, words)) {
        for (int const side : {512, 1024}) {
            for (float const sigma : {2.0f, 8.0f, 32.0f}) {
                measure<float>("float", map, side, sigma, effort);
                measure<float3>("float3", map, side, sigma, effort);
                measure<float4>("float4", map, side, sigma, effort);
            }
        }
    }
}
