// SPDX-License-Identifier: MIT
#include "toolkit/base/stop.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/relief_fit.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <umbrixlib.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr double kLeastRelief = 1e-4; // image widths
constexpr double kMostRelief = 10.0;

/// A relief fits if it leaves at most this part of the angle of flat ground. Of two pictures that have
/// nothing to do with each other, a low relief meets some slopes by chance.
constexpr double kBetter = 0.9;

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
    FitHeights& heights;
    Picture picture; ///< The normal map.
};

/// The heights as they are come first, and green up, where the pictures do not tell.
constexpr Directions kDirections[] = {
    {false, NormalY::kUp}, {false, NormalY::kDown}, {true, NormalY::kUp}, {true, NormalY::kDown}};

/// Fits a normal map to slopes that the library makes of the heights.
class PairFit {
public:
    /// @param stop Ends the fit by Stopped as soon as it is set.
    PairFit(Pair& pair, float detail, std::string* status, int* progress, bool& stop)
        : pair_(pair), detail_(detail), status_(status), progress_(progress), stop_(stop)
    {
    }

    /// The directions that leave the smallest angle.
    Directions best_directions(double gaussian)
    {
        normals_ = normals_of(pair_.picture, 0.0);
        double smallest = 360.0;
        Directions best;
        for (Directions const& each : kDirections) {
            double const angle = at(gaussian, each, false).mean_angle_degrees;
            if (angle < smallest) {
                smallest = angle;
                best = each;
            }
        }
        return best;
    }

    /// From now on, reads the normal map with flat ground at the place that leaves the smallest angle.
    void choose_middle(double gaussian, Directions const& directions)
    {
        double smallest = 360.0;
        double best = 0.0;
        for (double const offset : kOffsets) {
            normals_ = normals_of(pair_.picture, offset);
            double const angle = at(gaussian, directions, false).mean_angle_degrees;
            if (angle < smallest) {
                smallest = angle;
                best = offset;
            }
        }
        normals_ = normals_of(pair_.picture, best);
    }

    std::vector<float3> const& normals() const { return normals_; }

    FittedScale at(double gaussian, Directions const& directions, bool thorough)
    {
        if (std::atomic_ref(stop_).load(std::memory_order_relaxed)) {
            throw Stopped();
        }
        make_slopes(gaussian);
        return fit_scale(slopes_, normals_, directions, scale_of(kLeastRelief), scale_of(kMostRelief),
                         thorough);
    }

    double relief_of(double n_scale) const { return n_scale * 2.0 / pair_.heights.width; }

private:
    double scale_of(double relief) const { return relief * pair_.heights.width / 2.0; }

    void make_slopes(double gaussian)
    {
        if (slopes_gaussian_ == gaussian) {
            return;
        }
        std::vector<float3> made(pair_.heights.samples.size());
        HeightToNormal(pair_.heights.samples.data(), made.data(), pair_.heights.height, pair_.heights.width,
                       1.0f, static_cast<float>(gaussian), 0.0f, false, 0, detail_, false, 0.0f, 0.0f, false,
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
    bool& stop_;
};

/// Four digits, which is more than 8 bits a channel can tell.
double rounded(double value)
{
    return std::stod(fmt::format("{:.4g}", value));
}

} // namespace

FitHeights take_heights_to_fit(FitJob const& job, PreparedInput input, Observer& observer)
{
    note_normals_as_heights(job.heights, input.guess, observer);
    ToldHeights const told = told_heights(input.picture.attributes, height_reading_of(job.settings));
    take_for_heights(input, told.reading, job.heights, observer);
    FitHeights taken{input.width, input.height, {}};
    Picture const heights = channel_of(input.picture, HeightChannel::kMean, job.heights);
    auto const samples = heights.samples<float>();
    std::ranges::transform(samples, std::back_inserter(taken.samples), [&](float height) {
        return static_cast<float>(static_cast<double>(height) * told.unit);
    });
    return taken;
}

FitReport make(FitJob const& job, FitHeights heights, PreparedInput normals, Observer& observer)
{
    check_same_size(job.normals, {normals.width, normals.height}, "the height map",
                    {heights.width, heights.height});
    if (normals.guess.kind == Kind::kHeightMap) {
        observer.note(job.normals, {"this does not look like a normal map: " + normals.guess.reason});
    }
    take_for_normals(normals, {}, job.normals, observer);
    Pair pair{heights, std::move(normals.picture)};
    observer.begin(Phase::kMaking, job.heights);
    FitReport report;
    bool stop = false;
    auto const call = [&](std::string* status, int* progress) {
        PairFit fit(pair, job.settings.detail, status, progress, stop);
        double gaussian = rounded(static_cast<double>(job.settings.gaussian));
        Directions const directions = fit.best_directions(gaussian);
        fit.choose_middle(gaussian, directions);
        if (job.fit_gaussian) {
            gaussian = rounded(
                fit_sigma([&](double sigma) { return fit.at(sigma, directions, false).mean_angle_degrees; }));
        }
        auto const [inverted, green] = directions;
        NormalY const other_green = green == NormalY::kUp ? NormalY::kDown : NormalY::kUp;
        FittedScale const best = fit.at(gaussian, directions, true);
        double const relief = rounded(fit.relief_of(best.n_scale));
        report.width = heights.width;
        report.height = heights.height;
        report.relief = relief;
        report.n_scale = rounded(relief * heights.width / 2.0);
        report.gaussian = gaussian;
        report.inverted = inverted;
        report.green = green;
        report.mean_angle_degrees = best.mean_angle_degrees;
        report.other_heights_mean_angle_degrees =
            fit.at(gaussian, {!inverted, green}, true).mean_angle_degrees;
        report.other_green_mean_angle_degrees =
            fit.at(gaussian, {inverted, other_green}, true).mean_angle_degrees;
        report.flat_mean_angle_degrees = flat_mean_angle_degrees(fit.normals());
        report.beats_flat = best.mean_angle_degrees < kBetter * report.flat_mean_angle_degrees;
        return true;
    };
    run_library(job.heights, observer, call, &stop);
    return report;
}

FitReport run(FitJob const& job, Observer& observer)
{
    FitHeights heights = take_heights_to_fit(
        job, prepare_input({job.heights, job.heights, job.max_texels}, observer), observer);
    return make(job, std::move(heights), prepare_input({job.normals, job.normals, job.max_texels}, observer),
                observer);
}

} // namespace umbrixlib::toolkit
