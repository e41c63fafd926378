// SPDX-License-Identifier: MIT
#include "capi/pictures_internal.h"
#include "toolkit/tasks/makers.h"

#include <fmt/format.h>
#include <utility>
#include <vector>

using namespace umbrix_capi;
using namespace umbrixlib::toolkit;

namespace {

void check_light(double value, double least, double most, char const* name)
{
    if (!(value >= least && value <= most)) { // what is no number, too
        throw WrongArgument(fmt::format("light: its {} is {}, not {} to {}", name, value, least, most));
    }
}

umbrix_light whole_light(umbrix_light const* given)
{
    constexpr double kFullTurns = 3600.0;
    umbrix_light const light = record_of(given, offsetof(umbrix_light, weights), "light");
    check_light(light.azimuth, -kFullTurns, kFullTurns, "azimuth");
    check_light(light.elevation, 0.0, 90.0, "elevation");
    check_light(light.exposure, 0.01, 10.0, "exposure");
    check_light(light.ambient, 0.0, 10.0, "ambient");
    check_light(value_in(light.weights), UMBRIX_FITTED, UMBRIX_CLAMPED, "weights");
    return light;
}

} // namespace

umbrix_code umbrix_relight(umbrix_context* context, umbrix_picture const* map, umbrix_light const* light,
                           umbrix_picture const* albedo, umbrix_settings const* settings,
                           umbrix_picture* result)
{
    return work(context, map, [&](CallObserver& observer) {
        require(map, "map");
        umbrix_light const wanted = whole_light(light);
        check_result(result, "result", size_of(*map), albedo != nullptr ? 3 : 1);
        RelightJob job;
        job.files = {map->name, {}, 0.0};
        job.light = {wanted.azimuth, wanted.elevation};
        job.look = {settings_of(settings).mode, wanted.exposure, static_cast<WeightRule>(wanted.weights),
                    wanted.ambient};
        job.force = wanted.force != 0;
        Picture colours;
        if (albedo != nullptr) {
            colours = decoded(albedo, "albedo").picture;
            check_same_size(albedo->name, size_of(*albedo), "the map", size_of(*map));
        }
        std::vector<Picture> made =
            make(job, prepared(map, "map", observer), std::move(colours), {SampleType::kFloat}, observer);
        give(std::move(made.front()), map->name, *result);
    });
}

umbrix_code umbrix_find_relief(umbrix_context* context, umbrix_picture const* heights,
                               umbrix_picture const* normals, umbrix_settings const* settings, int find_blur,
                               umbrix_fit* fit)
{
    return work(context, heights, [&](CallObserver& observer) {
        require(heights, "heights");
        require(normals, "normals");
        require(fit, "fit");
        FitJob job;
        job.heights = heights->name;
        job.normals = normals->name;
        job.settings = settings_of(settings);
        job.fit_gaussian = find_blur != 0;
        check_same_size(normals->name, size_of(*normals), "the height map", size_of(*heights));
        FitHeights taken = take_heights_to_fit(job, prepared(heights, "heights", observer), observer);
        FitReport const found = make(job, std::move(taken), prepared(normals, "normals", observer), observer);
        fill_record(fit, {0, found.relief, found.n_scale, found.gaussian, found.inverted ? 1 : 0,
                          found.green == NormalY::kDown ? 1 : 0, found.mean_angle_degrees,
                          found.flat_mean_angle_degrees, found.beats_flat ? 1 : 0});
    });
}
