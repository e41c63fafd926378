// SPDX-License-Identifier: MIT
#include "work/picture_parts.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace umbrix_desktop {

namespace {

using toolkit::Picture;

int wrapped(int index, int size)
{
    int const rest = index % size;
    return rest < 0 ? rest + size : rest;
}

template <typename Sample>
void put_mean(Sample& sample, double sum, double count)
{
    sample = static_cast<Sample>(std::is_integral_v<Sample> ? sum / count + 0.5 : sum / count);
}

void put_mean(toolkit::Half& sample, double sum, double count)
{
    sample = toolkit::to_half(static_cast<float>(sum / count));
}

template <typename Sample>
void reduce(std::span<Sample const> samples, Picture const& source, int factor, Picture& result)
{
    auto const channels = static_cast<std::size_t>(source.channels);
    std::span<Sample> const means = result.samples<Sample>();
    std::vector<double> sums;
    for (int row = 0; row < result.height; ++row) {
        sums.assign(static_cast<std::size_t>(result.width) * channels, 0.0);
        int const last_row = std::min((row + 1) * factor, source.height);
        for (int y = row * factor; y < last_row; ++y) {
            Sample const* at =
                &samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width) * channels];
            for (int x = 0; x < source.width; ++x) {
                double* const sum = &sums[static_cast<std::size_t>(x / factor) * channels];
                for (std::size_t c = 0; c < channels; ++c) {
                    sum[c] += toolkit::to_number(*at++);
                }
            }
        }
        for (int column = 0; column < result.width; ++column) {
            int const last_column = std::min((column + 1) * factor, source.width);
            auto const count = static_cast<double>(last_row - row * factor) *
                               static_cast<double>(last_column - column * factor);
            for (std::size_t c = 0; c < channels; ++c) {
                std::size_t const at = static_cast<std::size_t>(column) * channels + c;
                put_mean(means[static_cast<std::size_t>(row) * sums.size() + at], sums[at], count);
            }
        }
    }
}

} // namespace

Picture cut_out(Picture const& picture, Cut const& cut)
{
    Picture result = toolkit::make_picture(cut.width, cut.height, picture.channels, picture.type);
    result.kind = picture.kind;
    std::size_t const texel = toolkit::sample_size(picture.type) * static_cast<std::size_t>(picture.channels);
    std::uint8_t* to = result.bytes.data();
    for (int y = 0; y < cut.height; ++y) {
        auto const row = static_cast<std::size_t>(wrapped(cut.bottom + y, picture.height)) *
                         static_cast<std::size_t>(picture.width);
        for (int x = 0; x < cut.width;) {
            int const from = wrapped(cut.left + x, picture.width);
            int const run = std::min(cut.width - x, picture.width - from);
            std::size_t const bytes = static_cast<std::size_t>(run) * texel;
            std::memcpy(to, &picture.bytes[(row + static_cast<std::size_t>(from)) * texel], bytes);
            to += bytes;
            x += run;
        }
    }
    return result;
}

Picture box_reduced(Picture const& picture, int factor)
{
    auto const pieces = [factor](int size) { return (size + factor - 1) / factor; };
    Picture result =
        toolkit::make_picture(pieces(picture.width), pieces(picture.height), picture.channels, picture.type);
    result.kind = picture.kind;
    toolkit::with_samples(picture, [&](auto samples) { reduce(samples, picture, factor, result); });
    return result;
}

} // namespace umbrix_desktop
