// SPDX-License-Identifier: MIT
#include "toolkit/tasks/light/relight.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/srgb.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace umbrixlib::toolkit {

namespace {

/// @p source, of floats, reduced to means of squares of @p factor by @p factor texels.
Picture reduced(Picture const& source, int factor)
{
    Picture result =
        make_picture(source.width / factor, source.height / factor, source.channels, SampleType::kFloat);
    auto const step = static_cast<std::size_t>(factor);
    auto const stride = static_cast<std::size_t>(source.width);
    auto const columns = static_cast<std::size_t>(result.width);
    auto const channels = static_cast<std::size_t>(source.channels);
    auto const from = source.samples<float>();
    auto const to = result.samples<float>();
    for_each_number(static_cast<std::size_t>(result.height), [&](std::size_t y) {
        for (std::size_t i = 0; i < columns * channels; ++i) {
            std::size_t const x = i / channels * step;
            double sum = 0.0;
            for (std::size_t dy = 0; dy < step; ++dy) {
                for (std::size_t dx = 0; dx < step; ++dx) {
                    sum += static_cast<double>(
                        from[((y * step + dy) * stride + x + dx) * channels + i % channels]);
                }
            }
            to[y * columns * channels + i] = static_cast<float>(sum / static_cast<double>(step * step));
        }
    });
    return result;
}

/// The light of each texel, in one channel of floats.
Picture light_on(Picture const& map, Light light, Relighting const& look)
{
    double const one = full_scale(map.type);
    ChannelWeights const weights = channel_weights(light, look);
    double const ambient = ambient_weight(look);
    Picture lit = make_picture(map.width, map.height, 1, SampleType::kFloat);
    lit.kind = PictureKind::kLight;
    auto const to = lit.samples<float>();
    auto const columns = static_cast<std::size_t>(map.width);
    auto const channels = static_cast<std::size_t>(map.channels);
    with_samples(map, [&](auto samples) {
        for_each_number(static_cast<std::size_t>(map.height), [&](std::size_t y) {
            for (std::size_t i = y * columns; i < (y + 1) * columns; ++i) {
                auto const* const texel = &samples[i * channels];
                double const red = to_number(texel[0]);
                double const green = to_number(texel[1]);
                double const blue = to_number(texel[2]);
                double const direct = weights[0] * red + weights[1] * green + weights[2] * blue;
                double const all = (direct > 0.0 ? direct : 0.0) + ambient * (red + green + blue);
                to[i] = all > 0.0 ? static_cast<float>(all / one) : 0.0f;
            }
        });
    });
    return lit;
}

/// @p albedo in that light.
Picture colours_in(Picture const& lit, Picture const& albedo)
{
    Picture colours = make_alike(lit, 3, SampleType::kFloat);
    auto const light = lit.samples<float>();
    auto const from = albedo.samples<float>();
    auto const to = colours.samples<float>();
    auto const columns = static_cast<std::size_t>(lit.width);
    for_each_number(static_cast<std::size_t>(lit.height), [&](std::size_t y) {
        for (std::size_t i = y * columns; i < (y + 1) * columns; ++i) {
            for (std::size_t c = 3 * i; c < 3 * i + 3; ++c) {
                to[c] = from[c] * light[i];
            }
        }
    });
    return colours;
}

/// About as many columns as rows; one more where that leaves no cell of the sheet empty.
int columns_of(int pictures)
{
    int const square = static_cast<int>(std::ceil(std::sqrt(pictures)));
    for (int columns = square; columns <= square + 1; ++columns) {
        if (pictures % columns == 0) {
            return columns;
        }
    }
    return square;
}

/// Copies @p piece into @p sheet with its bottom left corner there.
void place(Picture const& piece, Picture& sheet, int left, int bottom)
{
    std::size_t const texel = sample_size(piece.type) * static_cast<std::size_t>(piece.channels);
    for (int y = 0; y < piece.height; ++y) {
        auto const from = static_cast<std::size_t>(y) * static_cast<std::size_t>(piece.width);
        auto const to = static_cast<std::size_t>(bottom + y) * static_cast<std::size_t>(sheet.width) +
                        static_cast<std::size_t>(left);
        std::copy_n(&piece.bytes[from * texel], static_cast<std::size_t>(piece.width) * texel,
                    &sheet.bytes[to * texel]);
    }
}

} // namespace

Picture relit(LitSurface const& surface, Light light, Relighting const& look, SavedAs const& as)
{
    Picture picture = light_on(surface.map, light, look);
    if (surface.albedo.texels() > 0) {
        picture = colours_in(picture, surface.albedo);
        if (is_whole(as.depth)) {
            code_as_srgb(picture);
        }
    }
    picture = in_samples(picture, {as.depth, Rounding::kNearest, as.dither});
    return as.depth == SampleType::kUint8 ? in_colour(picture, false) : picture;
}

std::vector<Picture> turned(LitSurface const& surface, Light light, Relighting const& look, int directions,
                            int cell, SavedAs const& as)
{
    Picture const& map = surface.map;
    int const factor =
        std::min((std::max(map.width, map.height) + cell - 1) / cell, std::min(map.width, map.height));
    LitSurface small{reduced(in_floats(map), factor), {}};
    if (surface.albedo.texels() > 0) {
        small.albedo = reduced(surface.albedo, factor);
    }
    std::vector<Picture> pictures;
    for (int i = 0; i < directions; ++i) {
        Light const towards{light.azimuth_degrees + 360.0 * i / directions, light.elevation_degrees};
        pictures.push_back(relit(small, towards, look, as));
    }
    return pictures;
}

Picture contact_sheet(std::vector<Picture> const& pictures)
{
    Picture const& first = pictures.front();
    auto const count = static_cast<int>(pictures.size());
    int const columns = columns_of(count);
    int const rows = (count + columns - 1) / columns;
    Picture sheet = make_picture(columns * first.width, rows * first.height, first.channels, first.type);
    for (int i = 0; i < count; ++i) {
        place(pictures[static_cast<std::size_t>(i)], sheet, i % columns * first.width,
              (rows - 1 - i / columns) * first.height);
    }
    return sheet;
}

} // namespace umbrixlib::toolkit
