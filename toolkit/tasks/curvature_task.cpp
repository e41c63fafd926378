// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/relief/curvature.h"
#include "toolkit/tasks/methods/read_slopes.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/runs/normals_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace umbrixlib::toolkit {

namespace {

/// Blurs slopes as the blur of their heights would. Beyond a border that does not repeat they are mirrored,
/// as the heights' margin there mirrors in place and in value.
void blur(std::vector<float>& slopes, int width, int height, Borders const& borders, float sigma)
{
    int const reach = static_cast<int>(std::ceil(6.0 * static_cast<double>(sigma))) + 1;
    auto const margin = [&](bool repeats, int side) { return repeats ? 0 : std::min(reach, side - 1); };
    int const left = margin(borders.h_tile, width);
    int const below = margin(borders.v_tile, height);
    int const columns = width + 2 * left;
    int const rows = height + 2 * below;
    auto const mirrored = [](int at, int side) {
        return at < 0 ? -at : at < side ? at : 2 * (side - 1) - at;
    };
    auto const place = [](int y, int x, int stride) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(stride) + static_cast<std::size_t>(x);
    };
    std::vector<float> extended(place(rows, 0, columns));
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            extended[place(y, x, columns)] =
                slopes[place(mirrored(y - below, height), mirrored(x - left, width), width)];
        }
    }
    std::vector<float> scratch(extended.size());
    gaussianFilterRGBA(extended.data(), extended.data(), scratch.data(), columns, rows, sigma);
    for (int y = 0; y < height; ++y) {
        std::copy_n(&extended[place(y + below, left, columns)], width, &slopes[place(y, 0, width)]);
    }
}

/// Unit vectors of a surface with these slopes.
std::vector<float3> normals_of_slopes(CentralDifferences const& slopes)
{
    std::vector<float3> normals(slopes.along_rows.size());
    for (std::size_t i = 0; i < normals.size(); ++i) {
        double const x = -static_cast<double>(slopes.along_rows[i]);
        double const y = -static_cast<double>(slopes.across_rows[i]);
        double const length = std::sqrt(x * x + y * y + 1.0);
        normals[i] = {static_cast<float>(x / length), static_cast<float>(y / length),
                      static_cast<float>(1.0 / length)};
    }
    return normals;
}

std::vector<float> curvatures_of(float3 const* normals, CurvatureJob const& job,
                                 CurvatureReport const& report, Observer& observer)
{
    std::vector<float> curvatures;
    run_in_memory(job.files.input, observer, [&](RunControl& control) {
        control.enter(kMakingCurvature);
        curvatures = mean_curvature(normals, report.width, report.height, borders_of(job.settings), &control);
        return control.stopping() ? Outcome::kStopped : Outcome::kDone;
    });
    return curvatures;
}

std::vector<float> curvatures_of_heights(CurvatureJob const& job, PreparedInput& input,
                                         CurvatureReport& report, Observer& observer)
{
    std::string const& name = job.files.input;
    ToldHeights const told = told_heights(input.picture.attributes, height_reading_of(job.settings));
    report.heights = take_for_heights(input, told.reading, name, observer);
    report.n_scale = n_scale_of(in_unit(job.settings, told.unit), input.width);
    observer.begin(Phase::kMaking, name);
    NormalsResult const made =
        normals_of_heights(input.picture, report.n_scale, job.settings, name, observer);
    return curvatures_of(made.normals.get(), job, report, observer);
}

std::vector<float> curvatures_of_normals(CurvatureJob const& job, PreparedInput& input,
                                         CurvatureReport& report, Observer& observer)
{
    SlopeSource const source{input.picture, job.files.input, job.settings, job.normal_y};
    report.green = green_of_input(source);
    observer.begin(Phase::kMaking, job.files.input);
    NormalReading reading{};
    CentralDifferences slopes = read_differences(source, report.green, 1.0, reading, observer);
    report.reading = reading.name;
    input.picture = {}; // its memory is needed
    if (job.settings.gaussian > 0.0f) {
        for (auto* const plane : {&slopes.along_rows, &slopes.across_rows}) {
            blur(*plane, report.width, report.height, borders_of(job.settings), job.settings.gaussian);
        }
    }
    return curvatures_of(normals_of_slopes(slopes).data(), job, report, observer);
}

/// The radius of the ball that is white: as asked for, or as the picture suits.
double radius_in_texels(Settings const& settings, std::vector<float> const& curvatures, int width)
{
    if (settings.curvature_radius) {
        return static_cast<double>(*settings.curvature_radius) * width;
    }
    double const common = common_curvature(curvatures);
    return common > 0.0 ? 1.0 / common : width;
}

/// @p share is the curvature by that of the ball.
double shown(double share, CurvaturePart part)
{
    switch (part) {
    case CurvaturePart::kCavity:
        return 1.0 + std::min(share, 0.0);
    case CurvaturePart::kRidges:
        return std::max(share, 0.0);
    default:
        return share;
    }
}

Picture picture_of_curvatures(std::vector<float> const& curvatures, CurvatureReport const& report,
                              double radius, Settings const& settings, SavedAs const& as)
{
    Picture floats = make_picture(report.width, report.height, 1, SampleType::kFloat);
    floats.kind = PictureKind::kLight;
    bool const around_grey = settings.curvature_part == CurvaturePart::kAll && is_whole(as.depth);
    std::ranges::transform(curvatures, floats.samples<float>().begin(), [&](float curvature) {
        double const value = shown(static_cast<double>(curvature) * radius, settings.curvature_part);
        return static_cast<float>(around_grey ? (value + 1.0) / 2.0 : value);
    });
    Picture picture = in_samples(std::move(floats), as);
    picture.attributes = attributes_of_curvature("curvature", settings, report.radius, as);
    return picture;
}

} // namespace

CurvatureReport run(CurvatureJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    CurvatureReport report;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kLight, files.output.name);
    if (!job.kind) {
        note_unlike_its_name(files.input, input.guess, observer);
    }
    report.width = input.width;
    report.height = input.height;
    report.kind = job.kind.value_or(input.guess.kind);
    report.guessed = !job.kind.has_value();
    report.reason = input.guess.reason;

    std::vector<float> const curvatures = report.kind == Kind::kHeightMap
                                              ? curvatures_of_heights(job, input, report, observer)
                                              : curvatures_of_normals(job, input, report, observer);
    double const radius = radius_in_texels(job.settings, curvatures, input.width);
    report.radius = radius / input.width;
    write_picture(files.output.file, format, files.output.name,
                  picture_of_curvatures(curvatures, report, radius, job.settings, as),
                  files.output.saving.compression, observer);
    return report;
}

} // namespace umbrixlib::toolkit
