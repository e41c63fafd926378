// SPDX-License-Identifier: MIT
#include "toolkit/tasks/runs/lost_light.h"

#include "toolkit/tasks/runs/map_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr double kMuchBlack = 1.0 / 3.0;
constexpr double kMuchCut = 0.1;
constexpr double kStep = 1.0 / 255.0; // less than that is black in 8 bits

/// A picture of up to so many texels is looked at as a whole, of a larger one four pieces.
constexpr int kWhole = 192 * 192;
constexpr int kPiece = 64;  // side of a piece
constexpr int kMargin = 16; // around it, as the edges of a piece do not fit together

constexpr int kMostRays = 64; // more make a finer map, and the same shares

constexpr double kLeastPart = 1.0 / 64.0; // of the relief
constexpr int kHalvings = 6;

/// Shares of a picture, 0 to 1.
struct Lost {
    double black = 0; ///< Of the samples: those below a step of 8 bits.
    double white = 0; ///< Of the texels: those with a sample of 1 or more.
    double cut = 0;   ///< The same, where the sample lies above 1 by half a step or more.
};

struct Window {
    int left;
    int bottom;
    int width;
    int height;
};

/// Counts samples; those of the alpha are none.
Lost lost_in(Picture const& map, Window const& window)
{
    double const full = full_scale(map.type);
    double const black = kStep * full;
    double const cut = (1.0 + kStep / 2.0) * full;
    auto const channels = static_cast<std::size_t>(map.channels);
    std::size_t blacks = 0;
    std::size_t whites = 0;
    std::size_t cuts = 0;
    with_samples(map, [&](auto samples) {
#pragma omp parallel for schedule(static) reduction(+ : blacks, whites, cuts)
        for (int y = window.bottom; y < window.bottom + window.height; ++y) {
            auto const first = static_cast<std::size_t>(y) * static_cast<std::size_t>(map.width) +
                               static_cast<std::size_t>(window.left);
            auto const* texel = &samples[first * channels];
            for (int x = 0; x < window.width; ++x, texel += channels) {
                double largest = 0.0;
                for (std::size_t c = 0; c < 3; ++c) {
                    double const value = to_number(texel[c]);
                    blacks += value < black ? 1 : 0;
                    largest = std::max(largest, value);
                }
                whites += largest >= full ? 1 : 0;
                cuts += largest >= cut ? 1 : 0;
            }
        }
    });
    double const texels = static_cast<double>(window.width) * window.height;
    return {static_cast<double>(blacks) / (3.0 * texels), static_cast<double>(whites) / texels,
            static_cast<double>(cuts) / texels};
}

/// What is told of the run itself is not told of runs on pieces, but they stop with it.
class Silence : public Observer {
public:
    explicit Silence(Observer const& observer) : observer_(observer) {}
    bool stopping() const override { return observer_.stopping(); }

private:
    Observer const& observer_;
};

/// Normals of @p piece with slopes times @p part, as vectors.
Picture with_scaled_slopes(Picture const& piece, float part)
{
    bool const are_vectors = piece.kind == PictureKind::kNormals && piece.type == SampleType::kFloat;
    Picture result = in_floats(piece);
    result.kind = PictureKind::kNormals;
    float* texel = result.samples<float>().data();
    for (std::size_t i = 0; i < result.texels(); ++i, texel += result.channels) {
        float const scale = are_vectors ? 1.0f : 2.0f;
        float const shift = are_vectors ? 0.0f : -1.0f;
        float const x = (texel[0] * scale + shift) * part;
        float const y = (texel[1] * scale + shift) * part;
        float const z = texel[2] * scale + shift;
        float const length = std::sqrt(x * x + y * y + z * z);
        if (length > 0.0f) {
            texel[0] = x / length;
            texel[1] = y / length;
            texel[2] = z / length;
        }
    }
    return result;
}

/// Pieces of a source, each with the window of it that counts.
class Sample {
public:
    Sample(MapOrigin const& origin, Observer const& observer) : origin_(origin), silence_(observer)
    {
        Picture const& source = origin.source;
        if (source.texels() <= kWhole) {
            pieces_.push_back({source, {0, 0, source.width, source.height}});
            return;
        }
        int const width = std::min(source.width, kPiece + 2 * kMargin);
        int const height = std::min(source.height, kPiece + 2 * kMargin);
        int const margin_x = std::min(kMargin, (width - 1) / 2);
        int const margin_y = std::min(kMargin, (height - 1) / 2);
        // No two pieces in one row or column.
        constexpr int kPlaces[] = {1, 3, 0, 2};
        for (int i = 0; i < 4; ++i) {
            Window const at{(source.width - width) * i / 3, (source.height - height) * kPlaces[i] / 3, width,
                            height};
            pieces_.push_back(
                {cut_out(at), {margin_x, margin_y, width - 2 * margin_x, height - 2 * margin_y}});
        }
    }

    /// What maps of the pieces lose with @p part of the relief, on average.
    Lost with_relief(double part)
    {
        Lost sum;
        for (Piece const& piece : pieces_) {
            Lost const lost = lost_in(map_of(piece.picture, part), piece.window);
            double const share = 1.0 / static_cast<double>(pieces_.size());
            sum.black += lost.black * share;
            sum.white += lost.white * share;
            sum.cut += lost.cut * share;
        }
        return sum;
    }

private:
    struct Piece {
        Picture picture;
        Window window;
    };

    Picture cut_out(Window const& at) const
    {
        Picture const& source = origin_.source;
        Picture piece = make_picture(at.width, at.height, source.channels, source.type);
        piece.kind = source.kind;
        std::size_t const texel = static_cast<std::size_t>(source.channels) * sample_size(source.type);
        std::size_t const row = static_cast<std::size_t>(at.width) * texel;
        for (int y = 0; y < at.height; ++y) {
            std::size_t const from =
                static_cast<std::size_t>(at.bottom + y) * static_cast<std::size_t>(source.width) +
                static_cast<std::size_t>(at.left);
            std::copy_n(&source.bytes[from * texel], row, &piece.bytes[static_cast<std::size_t>(y) * row]);
        }
        return piece;
    }

    /// Lengths in image widths grow as the width shrinks. A piece goes on beyond its edges as the picture
    /// does: with more of the same.
    Picture map_of(Picture const& piece, double part)
    {
        Settings settings = origin_.settings;
        int const width = origin_.source.width;
        auto const widths = static_cast<float>(width) / static_cast<float>(piece.width);
        settings.n_scale = n_scale_of(settings, width) * static_cast<float>(part);
        settings.h_scale = h_scale_of(settings) * widths * static_cast<float>(part);
        settings.radius *= widths;
        settings.rays = std::min(settings.rays, kMostRays);
        settings.height_in_alpha = false;
        if (piece.width != width || piece.height != origin_.source.height) {
            settings.tile = settings.h_tile = settings.v_tile = true;
        }
        umbrix_options const options = options_for(settings, origin_.kind, piece.width);
        bool const scaled = origin_.normals_follow_relief && part < 1.0;
        Picture const flatter = scaled ? with_scaled_slopes(piece, static_cast<float>(part)) : Picture{};
        SavedAs const floats{SampleType::kFloat, Rounding::kCut, false};
        return make_umbrix_map({scaled ? flatter : piece, "", options, floats, borders_of(settings)},
                               silence_);
    }

    MapOrigin const& origin_;
    Silence silence_;
    std::vector<Piece> pieces_;
};

/// Two digits.
double rounded(double value)
{
    return std::stod(fmt::format("{:.2g}", value));
}

/// What would have to be asked for to have that part of the relief.
std::string in_settings(Settings const& settings, int width, double part)
{
    std::string text = fmt::format("{} of {}", settings.h_scale ? "an h-scale" : "a relief",
                                   rounded(static_cast<double>(h_scale_of(settings)) * part));
    if (settings.n_scale) {
        text += fmt::format(" with an n-scale of {}",
                            rounded(static_cast<double>(n_scale_of(settings, width)) * part));
    }
    return text;
}

/// Whether a map on this device has the relief that the settings ask for.
bool has_relief_of_settings(Graphics const& graphics)
{
    return !graphics.device || graphics.match_cpu;
}

} // namespace

void note_lost_light(Picture const& map, std::string const& name, MapOrigin const& origin, Observer& observer)
{
    Lost lost = lost_in(map, {0, 0, map.width, map.height});
    // Without light open ground is white, too. Floats go on above 1.
    lost.cut = origin.settings.light && is_whole(map.type) ? lost.white : 0.0;
    if (lost.black < kMuchBlack && lost.cut < kMuchCut) {
        return;
    }
    std::string remedy;
    if (!origin.source.bytes.empty() && has_relief_of_settings(origin.graphics)) {
        Sample sample(origin, observer);
        Lost const now = sample.with_relief(1.0);
        lost.cut *= now.white > 0.0 ? now.cut / now.white : 1.0; // what is at full light just so is not cut
        bool const black = lost.black >= kMuchBlack;
        bool const cut = lost.cut >= kMuchCut;
        if (!black && !cut) {
            return;
        }
        auto const halves = [&](double part) {
            Lost const then = sample.with_relief(part);
            return (!black || then.black <= now.black / 2.0) && (!cut || then.cut <= now.cut / 2.0);
        };
        remedy = "; no lower relief would halve that";
        double high = 1.0;
        double low = kLeastPart;
        if (halves(low)) {
            for (int i = 0; i < kHalvings; ++i) {
                double const middle = std::sqrt(low * high);
                (halves(middle) ? low : high) = middle;
            }
            remedy =
                fmt::format("; {} would halve that", in_settings(origin.settings, origin.source.width, low));
        }
    }
    std::string text;
    if (lost.black >= kMuchBlack) {
        text = fmt::format("{:.0f} % of the map's samples are black", 100.0 * lost.black);
    }
    if (lost.cut >= kMuchCut) {
        text += fmt::format("{}{:.0f} % of {} texels are cut off at {}", text.empty() ? "" : ", and ",
                            100.0 * lost.cut, text.empty() ? "the map's" : "its", full_scale(map.type));
    }
    observer.note(name, {text + remedy});
}

} // namespace umbrixlib::toolkit
