// SPDX-License-Identifier: MIT
#include "views/texel_image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>

namespace umbrix_desktop {

namespace {

/// Texels of a side that a pixel is the mean of at most.
constexpr int kMostTexels = 3;

/// Which samples of a texel become red, green and blue; -1: none, which is full.
using Places = std::array<int, 3>;

Places places_of(toolkit::Picture const& picture, Channel channel)
{
    int const colours = picture.channels < 3 ? 1 : 3;
    auto const all_of = [](int place) { return Places{place, place, place}; };
    switch (channel) {
    case Channel::kRed:
        return all_of(0);
    case Channel::kGreen:
        return all_of(std::min(1, colours - 1));
    case Channel::kBlue:
        return all_of(std::min(2, colours - 1));
    case Channel::kAlpha:
        return all_of(picture.has_alpha() ? picture.channels - 1 : -1);
    default:
        return colours == 1 ? all_of(0) : Places{0, 1, 2};
    }
}

bool has_float_vectors(toolkit::Picture const& picture)
{
    return picture.kind == toolkit::PictureKind::kNormals && !toolkit::is_whole(picture.type);
}

/// For each pixel of a row or a column the texels that it shows, @p count of them; -1 beside the picture.
std::vector<int> texels_of_pixels(int pixels, double begin, double zoom, int tile, int tiles, int first,
                                  int length, int texels, int count)
{
    std::vector<int> found;
    found.reserve(static_cast<std::size_t>(pixels) * static_cast<std::size_t>(count));
    for (int pixel = 0; pixel < pixels; ++pixel) {
        for (int i = 0; i < count; ++i) {
            double const place = std::floor((pixel - begin + (i + 0.5) / count) / zoom);
            int texel = -1;
            if (place >= 0 && place < 1.0 * tile * tiles) {
                int const inside = static_cast<int>(place) % tile - first;
                if (inside >= 0 && inside < length) {
                    texel = static_cast<int>(std::int64_t{inside} * texels / length);
                }
            }
            found.push_back(texel);
        }
    }
    return found;
}

/// What one pass over an image needs to know.
struct Drawing {
    std::vector<int> columns;
    std::vector<int> rows;
    std::size_t count; ///< Texels of a side a pixel.
    Places places;
    bool vectors;
};

template <typename Sample>
unsigned shown(Sample sample, bool vector)
{
    if constexpr (std::is_same_v<Sample, float> || std::is_same_v<Sample, toolkit::Half>) {
        if (vector) {
            return toolkit::to_byte(static_cast<float>(toolkit::to_number(sample) * 0.5 + 0.5));
        }
    }
    return toolkit::to_byte(sample);
}

template <typename Sample>
void draw(QImage& target, toolkit::Picture const& picture, Drawing const& drawing)
{
    Sample const* const samples = picture.samples<Sample>().data();
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const width = static_cast<std::size_t>(picture.width);
    for (int y = 0; y < target.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(target.scanLine(y));
        int const* const rows = &drawing.rows[static_cast<std::size_t>(y) * drawing.count];
        for (int x = 0; x < target.width(); ++x) {
            int const* const columns = &drawing.columns[static_cast<std::size_t>(x) * drawing.count];
            std::array<unsigned, 3> sums{};
            unsigned met = 0;
            for (std::size_t j = 0; j < drawing.count; ++j) {
                for (std::size_t i = 0; i < drawing.count; ++i) {
                    if (rows[j] < 0 || columns[i] < 0) {
                        continue;
                    }
                    // The first row of a picture is the bottom one.
                    auto const row = static_cast<std::size_t>(picture.height - 1 - rows[j]);
                    Sample const* const texel =
                        samples + (row * width + static_cast<std::size_t>(columns[i])) * channels;
                    for (std::size_t c = 0; c < 3; ++c) {
                        int const place = drawing.places[c];
                        sums[c] += place < 0 ? 255U : shown(texel[place], drawing.vectors);
                    }
                    ++met;
                }
            }
            if (met > 0) {
                line[x] = qRgb(static_cast<int>((sums[0] + met / 2) / met),
                               static_cast<int>((sums[1] + met / 2) / met),
                               static_cast<int>((sums[2] + met / 2) / met));
            }
        }
    }
}

/// The channels of a texel.
std::vector<double> numbers_of(toolkit::Picture const& picture, int x, int y)
{
    auto const first =
        (static_cast<std::size_t>(picture.height - 1 - y) * static_cast<std::size_t>(picture.width) +
         static_cast<std::size_t>(x)) *
        static_cast<std::size_t>(picture.channels);
    return toolkit::with_samples(picture, [&](auto samples) {
        std::vector<double> numbers;
        for (int c = 0; c < picture.channels; ++c) {
            numbers.push_back(toolkit::to_number(samples[first + static_cast<std::size_t>(c)]));
        }
        return numbers;
    });
}

} // namespace

void draw_texels(QImage& target, toolkit::Picture const& picture, Area const& area, Viewport const& viewport,
                 Channel channel)
{
    // How many texels of this picture lie below a pixel.
    double const texels = 1.0 * picture.width / area.width / viewport.zoom;
    int const count = std::clamp(static_cast<int>(std::ceil(texels - 1e-6)), 1, kMostTexels);
    Drawing const drawing{
        texels_of_pixels(target.width(), viewport.left(), viewport.zoom, viewport.picture.width(),
                         viewport.tiles, area.left, area.width, picture.width, count),
        texels_of_pixels(target.height(), viewport.top(), viewport.zoom, viewport.picture.height(),
                         viewport.tiles, area.top, area.height, picture.height, count),
        static_cast<std::size_t>(count), places_of(picture, channel), has_float_vectors(picture)};
    toolkit::with_samples(
        picture, [&]<typename Sample>(std::span<Sample const>) { draw<Sample>(target, picture, drawing); });
}

QImage split_at(QImage const& left, QImage const& right, int column)
{
    QImage joined = right;
    int const width = std::clamp(column, 0, left.width());
    for (int y = 0; y < joined.height(); ++y) {
        auto const* const from = reinterpret_cast<QRgb const*>(left.constScanLine(y));
        std::copy_n(from, width, reinterpret_cast<QRgb*>(joined.scanLine(y)));
    }
    return joined;
}

QImage difference_of(QImage const& left, QImage const& right)
{
    QImage difference = right;
    for (int y = 0; y < difference.height(); ++y) {
        auto const* const from = reinterpret_cast<QRgb const*>(left.constScanLine(y));
        auto* const to = reinterpret_cast<QRgb*>(difference.scanLine(y));
        for (int x = 0; x < difference.width(); ++x) {
            to[x] = qRgb(std::abs(qRed(from[x]) - qRed(to[x])), std::abs(qGreen(from[x]) - qGreen(to[x])),
                         std::abs(qBlue(from[x]) - qBlue(to[x])));
        }
    }
    return difference;
}

std::string texel_words(toolkit::Picture const& picture, int x, int y)
{
    std::vector<double> numbers = numbers_of(picture, x, y);
    bool const whole = toolkit::is_whole(picture.type);
    double const full = toolkit::full_scale(picture.type);
    std::string alpha;
    if (picture.has_alpha()) {
        alpha = whole ? fmt::format(", alpha {:.4f}", numbers.back() / full)
                      : fmt::format(", alpha {:.5g}", numbers.back());
        numbers.pop_back();
    }
    if (picture.kind == toolkit::PictureKind::kNormals && numbers.size() == 3) {
        for (double& number : numbers) {
            number = whole ? number / full * 2 - 1 : number;
        }
        return fmt::format("normal {:.3f}, {:.3f}, {:.3f}{}", numbers[0], numbers[1], numbers[2], alpha);
    }
    if (numbers.size() == 1) {
        std::string const number =
            whole ? fmt::format("{:.5f}", numbers[0] / full) : fmt::format("{:.5g}", numbers[0]);
        bool const light = picture.kind == toolkit::PictureKind::kLight;
        return fmt::format("{} {}{}", light ? "light" : "height", number, alpha);
    }
    return whole ? fmt::format("{:.0f}, {:.0f}, {:.0f}{}", numbers[0], numbers[1], numbers[2], alpha)
                 : fmt::format("{:.5g}, {:.5g}, {:.5g}{}", numbers[0], numbers[1], numbers[2], alpha);
}

} // namespace umbrix_desktop
