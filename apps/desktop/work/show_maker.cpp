// SPDX-License-Identifier: MIT
#include "work/show_maker.h"

#include "toolkit/base/failure.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/makers.h"

#include <utility>
#include <variant>

namespace umbrix_desktop {

namespace {

using toolkit::Failure;
using toolkit::Fault;

toolkit::PreparedInput prepared(Origin const& origin, toolkit::Observer& observer)
{
    return toolkit::prepare_image(origin.image, {origin.name, origin.name, 0}, observer);
}

toolkit::SavedAs saved_as(toolkit::Settings const& settings)
{
    return {settings.save_depth.value_or(umbrixlib::SampleType::kUint8)};
}

} // namespace

Origin origin_of(toolkit::DecodedImage const& image, std::string const& name,
                 toolkit::Settings const& settings)
{
    bool const turned = settings.normal_y != toolkit::kDefaults.normal_y;
    return {image, name, settings, settings.kind, turned ? std::optional(settings.normal_y) : std::nullopt};
}

void check_map_settings(toolkit::Settings const& settings)
{
    check_ranges(settings, "the settings");
    if (!settings.light && !settings.occlusion) {
        throw Failure(Fault::kWrongValue, "light",
                      "without light and occlusion nothing is left to make a map of",
                      "switch one of them on");
    }
    if (settings.min > settings.max || settings.h_min > settings.h_max) {
        throw Failure(Fault::kWrongValue, settings.min > settings.max ? "min" : "h-min",
                      "it is above the upper limit", "set a lower one");
    }
}

toolkit::Kind kind_of(Origin const& origin)
{
    return origin.kind.value_or(
        guess_kind(origin.image.to_picture(origin.image.has_alpha()), origin.name).kind);
}

toolkit::Picture make_normals(Origin const& origin, toolkit::Observer& observer)
{
    toolkit::NormalJob job;
    job.files.input = origin.name;
    job.settings = origin.settings;
    job.normal_y = origin.settings.normal_y;
    return make(job, prepared(origin, observer), saved_as(origin.settings), observer).normals;
}

toolkit::Picture make_map(Origin const& origin, toolkit::Observer& observer)
{
    toolkit::MapJob job;
    job.files.input = origin.name;
    job.settings = origin.settings;
    job.kind = origin.kind;
    job.normal_y = origin.normal_y;
    return make(job, prepared(origin, observer), saved_as(origin.settings), observer).map;
}

toolkit::Picture make_occlusion(Origin const& origin, toolkit::Observer& observer)
{
    Origin alone = origin;
    alone.settings = occlusion_alone(origin.settings);
    return make_map(alone, observer);
}

toolkit::Picture make_relit(toolkit::Picture const& map, std::string const& name, Modes mode,
                            Lighting const& lighting, toolkit::DecodedImage const* albedo,
                            toolkit::Observer& observer)
{
    toolkit::RelightJob job;
    job.files.input = name;
    job.light = lighting.light;
    job.look = {mode, lighting.exposure, lighting.weights, lighting.ambient};
    toolkit::PreparedInput input = prepare_image(toolkit::DecodedImage({map}), {name, name, 0}, observer);
    toolkit::Picture colours;
    if (albedo != nullptr) {
        toolkit::check_same_size(lighting.albedo, {albedo->width(), albedo->height()}, "the map",
                                 {map.width, map.height});
        colours = albedo->picture();
    }
    return std::move(make(job, std::move(input), std::move(colours), {map.type}, observer).front());
}

toolkit::Settings occlusion_alone(toolkit::Settings settings)
{
    settings.light = false;
    settings.occlusion = true;
    return settings;
}

toolkit::Settings settings_for(Show show, toolkit::Settings const& settings)
{
    unsigned const users = show == Show::kSource ? 0U
                           : show == Show::kNormals
                               ? toolkit::kForNormal | toolkit::kForHeights
                               : toolkit::kForMap | toolkit::kForHeights | toolkit::kForRelight;
    toolkit::Settings counting = toolkit::kDefaults;
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        bool const counts =
            show != Show::kSource && (row.users == toolkit::kForPresets || (row.users & users) != 0);
        if (counts) {
            std::visit([&](auto field) { counting.*field = settings.*field; }, row.field);
        }
    }
    return show == Show::kOcclusion ? occlusion_alone(counting) : counting;
}

} // namespace umbrix_desktop
