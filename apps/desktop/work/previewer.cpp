// SPDX-License-Identifier: MIT
#include "work/previewer.h"

#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/prepared_input.h"

#include <algorithm>
#include <utility>

namespace umbrix_desktop {

namespace {

using Shows = std::array<bool, kShows>;

bool wants(Shows const& shows, Show show)
{
    return shows[index_of(show)];
}

/// The settings that the ground follows from.
toolkit::Settings reading_of(Origin const& origin)
{
    toolkit::Settings reading = toolkit::kDefaults;
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        if ((row.users & toolkit::kForHeights) != 0) {
            std::visit([&](auto field) { reading.*field = origin.settings.*field; }, row.field);
        }
    }
    reading.kind = origin.kind;
    reading.normal_y = origin.settings.normal_y;
    return reading;
}

SharedPicture preview_of(toolkit::Picture const& made, Cut const& cut)
{
    auto picture = cut_out(made, cut);
    picture.attributes = made.attributes;
    return std::make_shared<toolkit::Picture const>(std::move(picture));
}

} // namespace

Cut cut_of(std::optional<Area> const& visible, int width, int height)
{
    if (!visible) {
        return {0, 0, width, height};
    }
    int const left = std::clamp(visible->left, 0, width);
    int const right = std::clamp(visible->left + visible->width, left, width);
    int const top = std::clamp(visible->top, 0, height);
    int const end = std::clamp(visible->top + visible->height, top, height);
    return left == right || top == end ? Cut{0, 0, width, height}
                                       : Cut{left, height - end, right - left, end - top};
}

Area area_of(Cut const& cut, int height)
{
    return {cut.left, height - cut.bottom - cut.height, cut.width, cut.height};
}

Ground const& Previewer::ground_for(Origin const& origin, Decoded const& source, toolkit::Observer& observer)
{
    toolkit::Settings const reading = reading_of(origin);
    if (!known_ || known_->source != source || known_->settings != reading) {
        known_.reset();
        Ground ground = ground_of(origin, observer);
        known_ = Known{source, reading, std::move(ground)};
    }
    return known_->ground;
}

void Previewer::keep_what_stays(MadeShows::Basis const& basis)
{
    if (known_ && known_->source != basis.source) {
        known_.reset();
    }
    if (last_map_ && last_map_->key.source != basis.source) {
        last_map_.reset();
    }
}

Previewer::Preview Previewer::make(MadeShows::Basis const& basis, Shows const& shows,
                                   toolkit::Observer& observer)
{
    Wish const& wish = basis.wish;
    toolkit::DecodedImage const& image = *basis.source;
    Origin const whole = origin_of(image, wish.source, wish.settings);
    bool const makes_map = wants(shows, Show::kMap) || wants(shows, Show::kRelit);
    check_map_settings(makes_map ? wish.settings : occlusion_alone(wish.settings));
    Ground const& ground = ground_for(whole, basis.source, observer);
    Cut const all{0, 0, image.width(), image.height()};
    Cut const visible = cut_of(wish.visible, image.width(), image.height());
    bool const occlusion = wants(shows, Show::kOcclusion) || (makes_map && wish.settings.occlusion);
    std::optional<Part> part;
    if (visible.width <= kPreviewSide && visible.height <= kPreviewSide) {
        part = exact_part(whole, ground, visible, occlusion);
    }
    bool const reduced = !part;
    int const factor = reduction_of(image.width(), image.height());
    if (reduced) {
        part.emplace(reduced_part(whole, ground, factor));
    }

    Preview preview;
    Cut const shown = reduced ? all : visible;
    preview.area = area_of(shown, image.height());
    Origin const origin{part->image, wish.source, part->settings, ground.kind, ground.normal_y};
    auto const put = [&](Show show, toolkit::Picture const& made) {
        preview.pictures[index_of(show)] = preview_of(made, part->cut);
    };
    if (wants(shows, Show::kSource)) {
        put(Show::kSource, part->image.picture());
    }
    if (wants(shows, Show::kNormals)) {
        put(Show::kNormals, ground.kind == toolkit::Kind::kNormalMap ? part->image.picture()
                                                                     : make_normals(origin, observer));
    }
    if (makes_map) {
        PartKey const key{basis.source, preview.area, reduced};
        toolkit::Settings const settings = settings_for(Show::kMap, wish.settings);
        if (!last_map_ || last_map_->key != key || last_map_->settings != settings) {
            last_map_.reset();
            last_map_ = LastMap{key, settings, preview_of(make_map(origin, observer), part->cut)};
        }
        preview.pictures[index_of(Show::kMap)] = wants(shows, Show::kMap) ? last_map_->map : nullptr;
    }
    if (wants(shows, Show::kRelit)) {
        std::optional<toolkit::DecodedImage> albedo;
        if (basis.albedo) {
            toolkit::check_same_size(wish.lighting.albedo, {basis.albedo->width(), basis.albedo->height()},
                                     "the map", {image.width(), image.height()});
            albedo.emplace(toolkit::DecodedFile{reduced ? box_reduced(basis.albedo->picture(), factor)
                                                        : cut_out(basis.albedo->picture(), visible)});
        }
        preview.pictures[index_of(Show::kRelit)] = std::make_shared<toolkit::Picture const>(
            make_relit(*last_map_->map, wish.source, wish.settings.mode, wish.lighting,
                       albedo ? &*albedo : nullptr, observer));
    }
    if (wants(shows, Show::kOcclusion)) {
        put(Show::kOcclusion, make_occlusion(origin, observer));
    }
    return preview;
}

} // namespace umbrix_desktop
