// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/textures/vectors.h"

#include <cmath>

namespace umbrixlib::toolkit {

namespace {

float third(float x, float y)
{
    return std::sqrt(std::max(0.0f, 1.0f - x * x - y * y));
}

template <typename Whole>
void add_blue(std::span<Whole const> from, std::span<Whole> to)
{
    constexpr auto kFull = static_cast<float>(static_cast<Whole>(-1));
    auto const component = [](Whole sample) { return static_cast<float>(sample) * 2.0f / kFull - 1.0f; };
    for (std::size_t i = 0; i < from.size() / 2; ++i) {
        float const blue = third(component(from[2 * i]), component(from[2 * i + 1]));
        to[3 * i] = from[2 * i];
        to[3 * i + 1] = from[2 * i + 1];
        to[3 * i + 2] = static_cast<Whole>((blue + 1.0f) / 2.0f * kFull + 0.5f);
    }
}

} // namespace

Picture with_blue(Picture const& red_and_green)
{
    bool const is_half = red_and_green.type == SampleType::kHalf;
    Picture const source = is_half ? in_floats(red_and_green) : red_and_green;
    Picture result = make_picture(source.width, source.height, 3, source.type);
    if (source.type == SampleType::kUint8) {
        add_blue(source.samples<std::uint8_t>(), result.samples<std::uint8_t>());
    } else if (source.type == SampleType::kUint16) {
        add_blue(source.samples<std::uint16_t>(), result.samples<std::uint16_t>());
    } else {
        auto const from = source.samples<float>();
        auto const to = result.samples<float>();
        for (std::size_t i = 0; i < from.size() / 2; ++i) {
            to[3 * i] = from[2 * i];
            to[3 * i + 1] = from[2 * i + 1];
            to[3 * i + 2] = third(from[2 * i], from[2 * i + 1]);
        }
    }
    return result;
}

} // namespace umbrixlib::toolkit
