// SPDX-License-Identifier: MIT
#include "toolkit/base/all_threads.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/read_slopes.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <numeric>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

using How = HeightRange::How;

/// 16 bits where the format has them: 8 would cost more than all the rest.
SavedAs saved_in_depth(Output const& output, OutputFormat const& format)
{
    Saving saving = output.saving;
    saving.depth = saving.depth.value_or(nearest_depth(format, SampleType::kUint16));
    return saved_as(saving, format, PictureKind::kHeights, output.name);
}

void note_input(PreparedInput const& input, std::string const& name, Observer& observer)
{
    if (input.guess.kind == Kind::kHeightMap) {
        observer.note(name, {"this does not look like a normal map: " + input.guess.reason});
    }
    if (input.has_alpha) {
        observer.note(name, {"its alpha is not looked at", NoteKind::kPlain, true});
    }
}

/// What the heights would rise by from the first number of a side to behind the last.
double rise(std::vector<float> const& differences, std::size_t rows, int length)
{
    std::size_t const columns = differences.size() / rows;
    std::vector<double> sums(rows);
    on_all_threads(rows, [&](auto const& next) {
        for (std::size_t y = next(); y < rows; y = next()) {
            float const* const row = &differences[y * columns];
            sums[y] = std::accumulate(row, row + columns, 0.0);
        }
    });
    double const sum = std::accumulate(sums.begin(), sums.end(), 0.0);
    return sum / static_cast<double>(differences.size()) * length / 2.0; // each spans two texels
}

/// What the mean of the normals asks for along the sides that repeat. 0 if it may be half a step of their
/// samples.
struct Lean {
    double to_right = 0.0;
    double to_top = 0.0;
};

Lean lean_of(CentralDifferences const& differences, Borders const& borders, double unsure)
{
    auto const rows = static_cast<std::size_t>(differences.height);
    auto const sure = [=](std::vector<float> const& along, int length) {
        double const by = rise(along, rows, length);
        return std::abs(by) > unsure * length / 2.0 ? by : 0.0;
    };
    return {borders.h_tile ? sure(differences.along_rows, differences.width) : 0.0,
            borders.v_tile ? sure(differences.across_rows, differences.height) : 0.0};
}

/// Notes a lean that is not small, by itself and beside the heights.
void note_lean(Lean const& lean, HeightReport const& report, std::string const& name, Observer& observer)
{
    double const least = std::max(0.01, 0.05 * (report.high - report.low));
    std::vector<std::string> parts;
    for (auto const& [by, way] :
         {std::pair(lean.to_right, "left to right"), {lean.to_top, "bottom to top"}}) {
        if (std::abs(by) > least) {
            parts.push_back(fmt::format("by {:.2g} from {}", by, way));
        }
    }
    if (!parts.empty()) {
        observer.note(name,
                      {fmt::format("its normals lean, as if the heights rose {}; heights that repeat cannot, "
                                   "so this is left out",
                                   fmt::join(parts, " and ")),
                       NoteKind::kLeaningNormals});
    }
}

std::vector<float> make_heights(HeightJob const& job, CentralDifferences differences, Observer& observer)
{
    std::optional<std::vector<float>> heights;
    run_in_memory(job.files.input, observer, [&](RunControl& control) {
        control.enter(kMakingHeights);
        heights = heights_of_differences(std::move(differences), borders_of(job.settings), &control);
        return heights ? Outcome::kDone : Outcome::kStopped;
    });
    return *std::move(heights);
}

/// Moves the heights so that the middle between the lowest and the highest is 0.5.
void centre(std::vector<float>& heights, HeightReport& report)
{
    auto const [lowest, highest] = std::ranges::minmax_element(heights);
    double const low = static_cast<double>(*lowest);
    double const high = static_cast<double>(*highest);
    double const up = 0.5 - (low + high) / 2.0;
    for (float& height : heights) {
        height = static_cast<float>(static_cast<double>(height) + up);
    }
    report.low = low + up;
    report.high = high + up;
}

/// A strength of normals that is next to nothing, and normals of floats that are next to none.
void check_finite(HeightReport const& report, std::string const& name)
{
    if (!std::isfinite(report.low) || !std::isfinite(report.high)) {
        throw Failure(Fault::kWrongValue, name,
                      fmt::format("an n-scale of {} makes no heights of its normals", report.n_scale),
                      "give a relief further from 0");
    }
}

/// A range for a command line in which no height is cut.
std::string range_around(HeightReport const& report)
{
    constexpr double kSteps = 1000.0;
    return fmt::format("{},{}", std::floor(report.low * kSteps) / kSteps,
                       std::ceil(report.high * kSteps) / kSteps);
}

/// Heights that reach from 0 to 1 exactly come back from normals of 8 bits with a little more.
constexpr double kOverlooked = 0.5 / 255.0;

/// The range that is asked for, in numbers. A Failure if there is none and whole numbers do not hold the
/// heights.
std::optional<HeightRange> range_of(HeightJob const& job, HeightReport const& report, SampleType depth)
{
    HeightRange const own{How::kGiven, report.low, report.high};
    if (job.range.how == How::kOwn) {
        return report.low < report.high ? std::optional(own) : std::nullopt;
    }
    if (job.range.how == How::kGiven) {
        return job.range;
    }
    if (is_whole(depth) && report.high > 1.0 + kOverlooked) {
        throw Failure(
            Fault::kHeightsOutsideRange, job.files.output.name,
            fmt::format("its heights would be {:.6g} to {:.6g}, not 0 to 1", report.low, report.high),
            range_around(report));
    }
    return std::nullopt;
}

/// Makes 0 and 1 of the limits of @p range and cuts the rest. What is less than half a step of @p depth
/// outside is not told.
void bring_in(std::vector<float>& heights, HeightRange const& range, SampleType depth,
              std::string const& name, Observer& observer)
{
    double const length = range.high - range.low;
    double const slack = is_whole(depth) ? 0.5 / full_scale(depth) : 0.0;
    std::size_t cut = 0;
    for (float& height : heights) {
        auto const share = static_cast<float>((static_cast<double>(height) - range.low) / length);
        cut += static_cast<double>(std::abs(share - 0.5f)) > 0.5 + slack ? 1 : 0;
        height = std::clamp(share, 0.0f, 1.0f);
    }
    if (cut > 0) {
        observer.note(name, {fmt::format("{} of {} heights lie outside {:.6g} to {:.6g} and are cut", cut,
                                         heights.size(), range.low, range.high)});
    }
}

Picture picture_of(std::vector<float> const& heights, HeightReport const& report, SavedAs const& as)
{
    Picture floats = make_picture(report.width, report.height, 1, SampleType::kFloat);
    floats.kind = PictureKind::kHeights;
    std::ranges::copy(heights, floats.samples<float>().begin());
    Picture picture = in_samples(std::move(floats), as);
    picture.attributes = attributes_of_heights("height");
    if (report.range) {
        tell_range(picture.attributes, *report.range);
    } else if (!is_whole(as.depth) && (report.low < 0.0 || report.high > 1.0)) {
        auto const limits = std::ranges::minmax(in_floats(picture).samples<float>());
        tell_limits(picture.attributes, static_cast<double>(limits.min), static_cast<double>(limits.max));
    }
    return picture;
}

} // namespace

HeightsMade make(HeightJob const& job, PreparedInput input, SavedAs const& as, Observer& observer)
{
    std::string const& name = job.files.input;
    HeightsMade made;
    HeightReport& report = made.report;
    note_input(input, name, observer);
    Borders const borders = borders_of(job.settings);
    report.width = input.width;
    report.height = input.height;
    SlopeSource const source{input.picture, name, job.settings, job.normal_y};
    report.green = green_of_input(source);
    report.n_scale = n_scale_of(job.settings, input.width);
    report.stripes_x_unseen = borders.h_tile && input.width % 2 == 0;
    report.stripes_y_unseen = borders.v_tile && input.height % 2 == 0;

    observer.begin(Phase::kMaking, name);
    NormalReading reading{};
    CentralDifferences differences =
        read_differences(source, report.green, static_cast<double>(report.n_scale), reading, observer);
    report.reading = reading.name;
    double const half_step = 2.0 * reading.least_up;
    Lean const lean =
        lean_of(differences, borders, half_step / static_cast<double>(std::abs(report.n_scale)));
    input.picture = {}; // its memory is needed
    std::vector<float> heights = make_heights(job, std::move(differences), observer);
    centre(heights, report);
    check_finite(report, name);
    note_lean(lean, report, name, observer);
    report.range = range_of(job, report, as.depth);
    if (report.range || is_whole(as.depth)) {
        bring_in(heights, report.range.value_or(HeightRange{}), as.depth, name, observer);
    }
    made.heights = picture_of(heights, report, as);
    return made;
}

HeightReport run(HeightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_in_depth(files.output, format);
    HeightsMade const made = make(job, std::move(input), as, observer);
    write_picture(files.output.file, format, files.output.name, made.heights, files.output.saving.compression,
                  observer);
    return made.report;
}

} // namespace umbrixlib::toolkit
