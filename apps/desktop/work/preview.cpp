// SPDX-License-Identifier: MIT
#include "work/preview.h"

#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace umbrix_desktop {

namespace {

using toolkit::Picture;
using toolkit::Settings;

constexpr int kNormalRim = 2; ///< More than the texel on each side that a normal is made of.
constexpr std::size_t kMostOfPart = std::size_t{1} << 20U; ///< Of a part.

/// A texel that none is higher than in @p picture, whose heights are 0 to 1.
std::size_t highest_of(Picture const& picture, toolkit::Kind kind, std::string const& name)
{
    bool const normals = kind == toolkit::Kind::kNormalMap;
    if (normals && !picture.has_alpha()) {
        return 0; // all are equal
    }
    Picture const heights = toolkit::in_floats(toolkit::channel_of(
        picture, normals ? toolkit::HeightChannel::kAlpha : toolkit::HeightChannel::kMean, name));
    auto const samples = heights.samples<float>();
    return static_cast<std::size_t>(std::ranges::max_element(samples) - samples.begin());
}

/// The settings for a part, that are those for all of the picture but for the borders and the scales.
Settings settled(Origin const& whole, Ground const& ground)
{
    Settings settings = toolkit::in_unit(whole.settings, ground.unit);
    settings.height_range = ground.range;
    settings.h_scale = toolkit::h_scale_of(settings);
    return settings;
}

toolkit::DecodedImage image_of(Picture picture, Ground const& ground)
{
    picture.attributes = ground.attributes;
    return toolkit::DecodedImage({std::move(picture)});
}

/// Whether a texel of a result depends on those around it alone.
bool is_local(Settings const& settings)
{
    return settings.gaussian == 0.0f && settings.detail <= 1.0f && settings.b_radius < 1.0f &&
           settings.h_smooth == 0.0f && settings.smooth == 0.0f && settings.h_brightness == 0.0f;
}

/// The visible texels and a rim. Where the picture does not repeat, the part ends where it does.
Cut with_rim(Cut const& visible, int rim, int width, int height, Settings const& settings)
{
    int left = visible.left - rim;
    int right = visible.left + visible.width + rim;
    int bottom = visible.bottom - rim;
    int top = visible.bottom + visible.height + rim;
    if (!(settings.tile && settings.h_tile)) {
        left = std::max(left, 0);
        right = std::min(right, width);
    }
    if (!(settings.tile && settings.v_tile)) {
        bottom = std::max(bottom, 0);
        top = std::min(top, height);
    }
    return {left, bottom, right - left, top - bottom};
}

Part light_part(Origin const& whole, Ground const& ground, Cut const& visible)
{
    Settings settings = settled(whole, ground);
    settings.n_scale = toolkit::n_scale_of(settings, whole.image.width());
    Cut const cut = with_rim(visible, kNormalRim, whole.image.width(), whole.image.height(), settings);
    settings.tile = false;
    return {image_of(cut_out(whole.image.picture(), cut), ground),
            settings,
            {visible.left - cut.left, visible.bottom - cut.bottom, visible.width, visible.height}};
}

/// Where a span of @p length begins that holds @p first .. @p last, within 0 .. @p size.
int begin_of_span(int first, int length, int size)
{
    return std::min(first, size - length);
}

std::optional<Part> occlusion_part(Origin const& whole, Ground const& ground, Cut const& visible)
{
    int const width = whole.image.width();
    int const height = whole.image.height();
    Settings settings = settled(whole, ground);
    double const reach = std::ceil(static_cast<double>(settings.radius) * width + 0.5);
    int const rim = static_cast<int>(std::min(reach, 1e6)) + kNormalRim;
    int const first_column = visible.left - rim;
    int const first_row = visible.bottom - rim;
    int const columns = visible.width + 2 * rim + 1; // one for the highest
    int const rows = visible.height + 2 * rim;
    if (first_column < 0 || first_row < 0 || first_column + columns - 1 > width ||
        first_row + rows > height) {
        return std::nullopt;
    }
    int share = 1;
    while (width % (2 * share) == 0 && height % (2 * share) == 0 && width / (2 * share) >= columns &&
           height / (2 * share) >= rows) {
        share *= 2;
    }
    Cut const cut{begin_of_span(first_column, width / share, width),
                  begin_of_span(first_row, height / share, height), width / share, height / share};
    if (share == 1 ||
        static_cast<std::size_t>(cut.width) * static_cast<std::size_t>(cut.height) > kMostOfPart) {
        return std::nullopt;
    }
    settings.n_scale = toolkit::n_scale_of(settings, width);
    *settings.h_scale *= static_cast<float>(share);
    settings.radius *= static_cast<float>(share);
    settings.tile = false;

    Picture picture = cut_out(whole.image.picture(), cut);
    int const far_column = first_column > cut.left ? 0 : cut.width - 1;
    Cut const highest{static_cast<int>(ground.highest % static_cast<std::size_t>(width)),
                      static_cast<int>(ground.highest / static_cast<std::size_t>(width)), 1, 1};
    Picture const texel = cut_out(whole.image.picture(), highest);
    std::ranges::copy(texel.bytes,
                      picture.bytes.begin() + far_column * static_cast<std::ptrdiff_t>(texel.bytes.size()));
    return Part{image_of(std::move(picture), ground),
                settings,
                {visible.left - cut.left, visible.bottom - cut.bottom, visible.width, visible.height}};
}

} // namespace

Ground ground_of(Origin const& whole, toolkit::Observer& observer)
{
    toolkit::PreparedInput input = prepare_image(whole.image, {whole.name, whole.name, 0}, observer);
    toolkit::Attributes const told_attributes = input.picture.attributes;
    Ground ground;
    ground.kind = whole.kind.value_or(input.guess.kind);
    toolkit::HeightReading const asked = height_reading_of(whole.settings);
    if (ground.kind == toolkit::Kind::kHeightMap) {
        toolkit::ToldHeights const told = toolkit::told_heights(told_attributes, asked);
        ground.unit = told.unit;
        ground.range =
            take_for_heights(input, told.reading, whole.name, observer).value_or(told.reading.range);
    } else {
        ground.normal_y = whole.normal_y ? whole.normal_y : toolkit::green_of(told_attributes);
        bool const vectors = !toolkit::is_whole(input.picture.type) &&
                             (toolkit::value_of(told_attributes, "coding").empty()
                                  ? has_vectors(input.picture)
                                  : toolkit::value_of(told_attributes, "coding") == "-1..1");
        ground.attributes = {{"coding", vectors ? "-1..1" : "0..1"}};
        ground.range = take_for_normals(input, asked, whole.name, observer).value_or(asked.range);
    }
    ground.highest = highest_of(input.picture, ground.kind, whole.name);
    return ground;
}

std::optional<Part> exact_part(Origin const& whole, Ground const& ground, Cut const& visible, bool occlusion)
{
    if (!is_local(whole.settings)) {
        return std::nullopt;
    }
    return occlusion ? occlusion_part(whole, ground, visible) : light_part(whole, ground, visible);
}

int reduction_of(int width, int height)
{
    return (std::max(width, height) + kPreviewSide - 1) / kPreviewSide;
}

Part reduced_part(Origin const& whole, Ground const& ground, int factor)
{
    Settings settings = settled(whole, ground);
    auto const times = static_cast<float>(factor);
    if (settings.n_scale) {
        *settings.n_scale /= times;
    }
    for (float Settings::*const texels : {&Settings::gaussian, &Settings::detail, &Settings::b_radius,
                                          &Settings::h_smooth, &Settings::smooth}) {
        settings.*texels /= times;
    }
    Picture picture = box_reduced(whole.image.picture(), factor);
    Cut const all{0, 0, picture.width, picture.height};
    return {image_of(std::move(picture), ground), settings, all};
}

} // namespace umbrix_desktop
