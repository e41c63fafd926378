// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/tasks/library_run.h"
#include "toolkit/tasks/methods/relief_fit.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <cmath>
#include <fmt/format.h>
#include <umbrixlib.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr double kLeastRelief = 1e-4; // image widths
constexpr double kMostRelief = 10.0;

/// A relief beats flat ground if it leaves less than this part of its angle. Any noise fits a very low relief
/// a little.
constexpr double kBetter = 0.99;

/// Calls @p body with the number of a texel and its first three channels, in the file's own numbers.
template <typename Body>
void for_each_colour(Picture const& picture, Body&& body)
{
    with_samples(picture, [&](auto samples) {
        auto const channels = static_cast<std::size_t>(picture.channels);
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            auto const* const texel = &samples[i * channels];
            body(i, to_number(texel[0]), to_number(texel[1]), to_number(texel[2]));
        }
    });
}

std::vector<float> heights_of(Picture const& picture)
{
    std::vector<float> heights(picture.texels());
    double const full = 3.0 * full_scale(picture.type);
    for_each_colour(picture, [&](std::size_t i, double red, double green, double blue) {
        auto const height = static_cast<float>((red + green + blue) / full);
        heights[i] = std::isfinite(height) ? height : 0.0f;
    });
    return heights;
}

/// Where flat ground lies, beside the middle of the samples, for makers that cut off, that divide by 127.5
/// and round, and that have it at 128 of 255. A wrong one shifts every normal by a quarter of a degree in 8
/// bits.
constexpr double kOffsets[] = {-0.5, 0.0, 0.5};

/// Unit vectors, with flat ground @p offset steps beside the middle.
std::vector<float3> normals_of(Picture const& picture, double offset)
{
    std::vector<float3> normals(picture.texels());
    double const full = full_scale(picture.type);
    double const middle = full / 2.0 + (full > 1.0 ? offset : 0.0);
    for_each_colour(picture, [&](std::size_t i, double red, double green, double blue) {
        double const x = red - middle;
        double const y = green - middle;
        double const z = blue - middle;
        double const length = std::sqrt(x * x + y * y + z * z);
        bool const has_direction = length > 0.0 && std::isfinite(length);
        normals[i] = !has_direction ? float3{0.0f, 0.0f, 1.0f}
                                    : float3{static_cast<float>(x / length), static_cast<float>(y / length),
                                             static_cast<float>(z / length)};
    });
    return normals;
}

struct Pair {
    int width;
    int height;
    std::vector<float> heights;
    Picture picture; ///< The normal map.
};

Pair read_pair(FitJob const& job, Observer& observer)
{
    Pair pair{};
    {
        PreparedInput const input = prepare_input({job.heights, job.heights, job.max_texels}, observer);
        if (input.guess.kind == Kind::kNormalMap) {
            observer.note(job.heights, {"this looks like a normal map (" + input.guess.reason +
                                        "); its brightness is taken for heights"});
        }
        pair.width = input.width;
        pair.height = input.height;
        pair.heights = heights_of(input.picture);
    }
    PreparedInput input = prepare_input({job.normals, job.normals, job.max_texels}, observer);
    if (input.width != pair.width || input.height != pair.height) {
        throw Failure(Fault::kSizesDiffer, job.normals,
                      fmt::format("its size is {} x {} and that of the height map {} x {}", input.width,
                                  input.height, pair.width, pair.height));
    }
    if (input.guess.kind == Kind::kHeightMap) {
        observer.note(job.normals, {"this does not look like a normal map: " + input.guess.reason});
    }
    take_for_normals(input, job.normals, observer);
    pair.picture = std::move(input.picture);
    return pair;
}

/// Fits both directions of green to slopes that the library makes of the heights.
class PairFit {
public:
    struct Result {
        FittedScale up;
        FittedScale down;

        FittedScale const& best() const
        {
            return down.mean_angle_degrees < up.mean_angle_degrees ? down : up;
        }
    };

    PairFit(Pair& pair, float detail, std::string* status, int* progress)
        : pair_(pair), detail_(detail), status_(status), progress_(progress)
    {
    }

    /// From now on, reads the normal map with flat ground at the place that leaves the smallest angle.
    void choose_middle(double gaussian)
    {
        double smallest = 360.0;
        double best = 0.0;
        for (double const offset : kOffsets) {
            normals_ = normals_of(pair_.picture, offset);
            double const angle = at(gaussian, false).best().mean_angle_degrees;
            if (angle < smallest) {
                smallest = angle;
                best = offset;
            }
        }
        normals_ = normals_of(pair_.picture, best);
    }

    std::vector<float3> const& normals() const { return normals_; }

    Result at(double gaussian, bool thorough)
    {
        make_slopes(gaussian);
        auto const fit = [&](NormalY green) {
            return fit_scale(slopes_, normals_, green, scale_of(kLeastRelief), scale_of(kMostRelief),
                             thorough);
        };
        return {fit(NormalY::kUp), fit(NormalY::kDown)};
    }

    double relief_of(double n_scale) const { return n_scale * 2.0 / pair_.width; }

private:
    double scale_of(double relief) const { return relief * pair_.width / 2.0; }

    void make_slopes(double gaussian)
    {
        if (slopes_gaussian_ == gaussian) {
            return;
        }
        std::vector<float3> made(pair_.heights.size());
        HeightToNormal(pair_.heights.data(), made.data(), pair_.height, pair_.width, 1.0f,
                       static_cast<float>(gaussian), 0.0f, false, 0, detail_, false, 0.0f, 0.0f, false,
                       status_, progress_);
        *status_ = kFittingRelief;
        slopes_ = slopes_of(made);
        slopes_gaussian_ = gaussian;
    }

    Pair& pair_;
    std::vector<float3> normals_;
    Slopes slopes_;
    double slopes_gaussian_ = -1.0; ///< Of the blur that they were made with.
    float detail_;
    std::string* status_;
    int* progress_;
};

/// Four digits, which is more than 8 bits a channel can tell.
double rounded(double value)
{
    return std::stod(fmt::format("{:.4g}", value));
}

} // namespace

FitReport run(FitJob const& job, Observer& observer)
{
    Pair pair = read_pair(job, observer);
    observer.begin(Phase::kMaking, job.heights);
    FitReport report;
    run_library(job.heights, observer, [&](std::string* status, int* progress) {
        PairFit fit(pair, job.settings.detail, status, progress);
        double gaussian = rounded(static_cast<double>(job.settings.gaussian));
        fit.choose_middle(gaussian);
        if (job.fit_gaussian) {
            gaussian = rounded(
                fit_sigma([&](double sigma) { return fit.at(sigma, false).best().mean_angle_degrees; }));
        }
        PairFit::Result const result = fit.at(gaussian, true);
        bool const down = &result.best() == &result.down;
        FittedScale const& best = result.best();
        double const flat = flat_mean_angle_degrees(fit.normals());
        double const relief = rounded(fit.relief_of(best.n_scale));
        report.width = pair.width;
        report.height = pair.height;
        report.relief = relief;
        report.n_scale = rounded(relief * pair.width / 2.0);
        report.gaussian = gaussian;
        report.green = down ? NormalY::kDown : NormalY::kUp;
        report.mean_angle_degrees = best.mean_angle_degrees;
        report.other_green_mean_angle_degrees = (down ? result.up : result.down).mean_angle_degrees;
        report.flat_mean_angle_degrees = flat;
        report.beats_flat = best.mean_angle_degrees < kBetter * flat;
        return true;
    });
    return report;
}

} // namespace umbrixlib::toolkit
