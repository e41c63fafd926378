// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/self_description.h"

#include "toolkit/settings/defaults.h"
#include "toolkit/settings/setting_table.h"

#include <algorithm>
#include <fmt/format.h>
#include <initializer_list>

namespace umbrixlib::toolkit {

namespace {

Attributes begun(char const* maker, char const* kind)
{
    return {{"umbrix", maker}, {"version", UMBRIX_VERSION}, {"kind", kind}};
}

void add_settings(Attributes& attributes, std::initializer_list<std::string_view> names,
                  Settings const& settings)
{
    for (std::string_view const name : names) {
        auto const row = std::ranges::find(setting_table(), name, &SettingRow::name);
        set_value(attributes, name, value_text(*row, settings));
    }
}

} // namespace

Attributes attributes_of_map(char const* maker, Settings const& settings)
{
    Attributes attributes = begun(maker, "map");
    add_settings(attributes, {"mode", "light", "relief", "n-scale", "occlusion"}, settings);
    if (settings.occlusion) {
        add_settings(attributes, {"h-scale", "rays", "radius", "alpha-limit", "theta-limit"}, settings);
    }
    for (std::string_view const name : {"contrast", "min", "max", "brightness"}) {
        auto const row = std::ranges::find(setting_table(), name, &SettingRow::name);
        if (value_text(*row, settings) != value_text(*row, kDefaults)) {
            add_settings(attributes, {name}, settings); // the map has other light then than its normals give
        }
    }
    return attributes;
}

Attributes attributes_of_normals(char const* maker, NormalY green, SavedAs const& as)
{
    Attributes attributes = begun(maker, "normals");
    tell_normals(attributes, green, as);
    return attributes;
}

void tell_normals(Attributes& attributes, NormalY green, SavedAs const& as)
{
    set_value(attributes, "green", green == NormalY::kUp ? "up" : "down");
    set_value(attributes, "coding", coding_of_normals(as.depth));
    tell_rounding(attributes, as);
}

void tell_rounding(Attributes& attributes, SavedAs const& as)
{
    if (as.depth == SampleType::kUint8 && !as.as_the_library_does()) {
        set_value(attributes, "rounding", as.dither ? "dither" : "nearest");
    }
}

std::optional<NormalY> green_of(Attributes const& attributes)
{
    std::string const green = value_of(attributes, "green");
    return green == "up"     ? std::optional(NormalY::kUp)
           : green == "down" ? std::optional(NormalY::kDown)
                             : std::nullopt;
}

Attributes attributes_of_heights(char const* maker)
{
    return begun(maker, "heights");
}

Attributes attributes_of_curvature(char const* maker, Settings const& settings, double radius,
                                   SavedAs const& as)
{
    Attributes attributes = begun(maker, "curvature");
    add_settings(attributes, {"curvature-part"}, settings);
    set_value(attributes, "curvature-radius", fmt::format("{:.6g}", radius));
    if (settings.curvature_part == CurvaturePart::kAll) {
        set_value(attributes, "coding", coding_of_normals(as.depth));
    }
    return attributes;
}

Attributes attributes_of_sky(char const* maker, char const* kind, Settings const& settings)
{
    Attributes attributes = begun(maker, kind);
    add_settings(attributes, {"relief", "h-scale", "radius"}, settings);
    return attributes;
}

Attributes attributes_of_packed(char const* maker)
{
    return begun(maker, "packed");
}

Attributes attributes_of_light(char const* maker)
{
    return begun(maker, "light");
}

char const* coding_of_normals(SampleType type)
{
    return type == SampleType::kHalf || type == SampleType::kFloat ? "-1..1" : "0..1";
}

std::optional<Modes> mode_of(Attributes const& attributes)
{
    std::string const name = value_of(attributes, "mode");
    for (Modes const mode : {Modes_Projection, Modes_UnitBasis, Modes_FlatIsFull, Modes_Squared}) {
        if (name_of_mode(mode) == name) {
            return mode;
        }
    }
    return std::nullopt;
}

std::string kind_beside_map(Attributes const& attributes)
{
    std::string const kind = value_of(attributes, "kind");
    return kind == "normals"        ? "a normal map"
           : kind == "heights"      ? "a height map"
           : kind == "curvature"    ? "a curvature map"
           : kind == "bent normals" ? "a map of bent normals"
           : kind == "occlusion"    ? "an occlusion map"
           : kind == "packed"       ? "a packed picture"
           : kind == "light"        ? "a picture in a light"
                                    : "";
}

} // namespace umbrixlib::toolkit
