// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/colour_models.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

template <typename Sample>
void from_inks(Picture const& inks, Picture& colours)
{
    constexpr std::uint64_t kFull = static_cast<Sample>(-1);
    auto const step = static_cast<std::size_t>(inks.channels);
    auto const from = inks.samples<Sample>();
    Sample* to = colours.samples<Sample>().data();
    for (std::size_t i = 0; i < from.size(); i += step) {
        std::uint64_t const light = kFull - from[i + 3];
        for (std::size_t ink = 0; ink < 3; ++ink) {
            *to++ = static_cast<Sample>(((kFull - from[i + ink]) * light + kFull / 2) / kFull);
        }
        if (step == 5) {
            *to++ = from[i + 4];
        }
    }
}

template <typename Sample>
void divide_by_alpha(Picture& picture)
{
    auto const samples = picture.samples<Sample>();
    auto const step = static_cast<std::size_t>(picture.channels);
    for (std::size_t i = 0; i < samples.size(); i += step) {
        Sample const alpha = samples[i + step - 1];
        if (alpha == Sample{0}) {
            continue;
        }
        for (std::size_t c = i; c < i + step - 1; ++c) {
            if constexpr (std::is_same_v<Sample, float>) {
                samples[c] /= alpha;
            } else {
                constexpr std::uint64_t kFull = static_cast<Sample>(-1);
                samples[c] = static_cast<Sample>(std::min((samples[c] * kFull + alpha / 2U) / alpha, kFull));
            }
        }
    }
}

/// How the entries of a palette become samples of 8 bits.
struct Narrowing {
    bool exact; ///< They do.
    unsigned divisor;
};

Narrowing narrowing_of(std::array<std::span<std::uint16_t const>, 3> const& palette)
{
    auto const all = [&](auto&& holds) {
        return std::all_of(palette.begin(), palette.end(), [&](auto const& channel) {
            return std::all_of(channel.begin(), channel.end(), holds);
        });
    };
    for (unsigned const divisor : {257U, 256U}) { // 8 bits twice, or before 8 bits of 0
        if (all([divisor](unsigned entry) { return entry % divisor == 0; })) {
            return {true, divisor};
        }
    }
    return {all([](unsigned entry) { return entry < 256; }), 1}; // some writers leave them as they are
}

} // namespace

Picture from_inks(Picture const& inks)
{
    Picture colours = make_picture(inks.width, inks.height, inks.channels - 1, inks.type);
    if (inks.type == SampleType::kUint8) {
        from_inks<std::uint8_t>(inks, colours);
    } else {
        from_inks<std::uint16_t>(inks, colours);
    }
    return colours;
}

void make_rgb_of_xyz(Picture& picture)
{
    auto const samples = picture.samples<float>();
    auto const step = static_cast<std::size_t>(picture.channels);
    for (std::size_t i = 0; i < samples.size(); i += step) {
        double const x = static_cast<double>(samples[i]);
        double const y = static_cast<double>(samples[i + 1]);
        double const z = static_cast<double>(samples[i + 2]);
        samples[i] = static_cast<float>(3.240479 * x - 1.53715 * y - 0.498535 * z);
        samples[i + 1] = static_cast<float>(-0.969256 * x + 1.875991 * y + 0.041556 * z);
        samples[i + 2] = static_cast<float>(0.055648 * x - 0.204043 * y + 1.057311 * z);
    }
}

Picture divided_by_alpha(Picture&& picture)
{
    if (picture.type == SampleType::kHalf) {
        picture = in_floats(picture);
    }
    switch (picture.type) {
    case SampleType::kUint8:
        divide_by_alpha<std::uint8_t>(picture);
        break;
    case SampleType::kUint16:
        divide_by_alpha<std::uint16_t>(picture);
        break;
    default:
        divide_by_alpha<float>(picture);
        break;
    }
    return std::move(picture);
}

Picture colours_of(Picture const& indexes, std::array<std::span<std::uint16_t const>, 3> const& palette)
{
    Narrowing const narrowing = narrowing_of(palette);
    Picture colours = make_picture(indexes.width, indexes.height, 3,
                                   narrowing.exact ? SampleType::kUint8 : SampleType::kUint16);
    auto const look_up = [&](auto numbers) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            for (std::size_t c = 0; c < 3; ++c) {
                unsigned const entry = palette[c][numbers[i]];
                if (narrowing.exact) {
                    colours.bytes[3 * i + c] = static_cast<std::uint8_t>(entry / narrowing.divisor);
                } else {
                    colours.samples<std::uint16_t>()[3 * i + c] = static_cast<std::uint16_t>(entry);
                }
            }
        }
    };
    if (indexes.type == SampleType::kUint8) {
        look_up(indexes.samples<std::uint8_t>());
    } else {
        look_up(indexes.samples<std::uint16_t>());
    }
    return colours;
}

} // namespace umbrixlib::toolkit
