// SPDX-License-Identifier: MIT
#include "option_table.h"

#include "defaults.h"
#include "failure.h"
#include "preset_option.h"

#include <CLI/Error.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

constexpr char const* kInput = "Input";
constexpr char const* kLight = "Light";
constexpr char const* kRelief = "Relief";
constexpr char const* kOcclusion = "Occlusion";
constexpr char const* kHeights = "Grading of the heights, in this order";
constexpr char const* kResult = "Grading of the map, in this order";

constexpr double kMaxSigma = 1000.0;

constexpr OptionRow kTable[] = {
    {"kind", kInput, &Settings::kind, 0, 0, "", kForPresets,
     "What `map` takes its input for; auto looks at the picture and its name"},
    {"normal-y", kInput, &Settings::normal_y, 0, 0, "", kForPresets,
     "Where green points in a normal map: up (OpenGL) or down (DirectX)"},

    {"light", kLight, &Settings::light, 0, 0, "", kForMap,
     "Put the light of the three directions into the map"},
    {"generate-normal", kLight, &Settings::generate_normal, 0, 0, "", kForMap,
     "Make the normals from the heights in a normal map's alpha, too; a height map's always are"},
    {"mode", kLight, &Settings::mode, 0, 0, "", kForMap | kForRelight,
     "Light of a normal: its projection, the same with unit basis vectors, that cut at 0 and with flat "
     "ground "
     "at full light, or that cut at 0 and squared"},
    {"height-in-alpha", kLight, &Settings::height_in_alpha, 0, 0, "", kForMap,
     "Put the heights, as they were read, into the map's alpha"},

    {"relief", kRelief, &Settings::relief, 0, 10, " image widths", kForMap | kForNormal,
     "How high a height of 1 reaches"},
    {"h-scale", kRelief, &Settings::h_scale, 0, 10, " image widths", kForMap,
     "The same for the occlusion alone; auto is the relief"},
    {"n-scale", kRelief, &Settings::n_scale, -1e6, 1e6, "", kForMap | kForNormal,
     "Strength of the normals: slope where the heights differ by 1 over two texels; auto fits the height "
     "scale"},
    {"gaussian", kRelief, &Settings::gaussian, 0, kMaxSigma, " texels, 0 is off",
     kForMap | kForNormal | kForFit, "Sigma of the blur before normals are made"},
    {"detail", kRelief, &Settings::detail, 0, 100, " texels, up to 1 is off", kForMap | kForNormal | kForFit,
     "Radius of the bilateral filter before normals are made; `normal` runs it without using its result"},

    {"occlusion", kOcclusion, &Settings::occlusion, 0, 0, "", kForMap,
     "Darken what the relief hides from the three directions"},
    {"rays", kOcclusion, &Settings::rays, 1, 10000, " per direction", kForMap,
     "Rays that look for the relief"},
    {"radius", kOcclusion, &Settings::radius, 0, 4, " image widths", kForMap,
     "How far the rays reach and climb"},
    {"alpha-limit", kOcclusion, &Settings::alpha_limit, 0, 180, " degrees", kForMap,
     "Full width of a bundle of rays in elevation"},
    {"theta-limit", kOcclusion, &Settings::theta_limit, 0, 180, " degrees", kForMap,
     "Full width of a bundle of rays in azimuth"},
    {"tile", kOcclusion, &Settings::tile, 0, 0, "", kForMap, "The texture repeats; switches the next two"},
    {"h-tile", kOcclusion, &Settings::h_tile, 0, 0, "", kForMap, "It repeats sideways"},
    {"v-tile", kOcclusion, &Settings::v_tile, 0, 0, "", kForMap, "It repeats up and down"},

    {"b-radius", kHeights, &Settings::b_radius, 0, 100, " texels, below 1 is off", kForMap,
     "Radius of the bilateral filter"},
    {"h-contrast", kHeights, &Settings::h_contrast, -1, 1, ", 0 is off", kForMap, "Contrast"},
    {"h-min", kHeights, &Settings::h_min, 0, 255, ", 0 is off", kForMap, "Lower limit"},
    {"h-max", kHeights, &Settings::h_max, 0, 255, ", 255 is off", kForMap, "Upper limit"},
    {"h-brightness", kHeights, &Settings::h_brightness, -1, 1, ", 0 is off", kForMap, "Brightness"},
    {"h-smooth", kHeights, &Settings::h_smooth, 0, kMaxSigma, " texels, 0 is off", kForMap,
     "Sigma of the blur"},

    {"contrast", kResult, &Settings::contrast, -1, 1, ", 0 is off", kForMap, "Contrast"},
    {"min", kResult, &Settings::min, 0, 255, ", 0 is off", kForMap, "Lower limit"},
    {"max", kResult, &Settings::max, 0, 255, ", 255 is off", kForMap, "Upper limit"},
    {"brightness", kResult, &Settings::brightness, -1, 1, ", 0 is off", kForMap, "Brightness"},
    {"smooth", kResult, &Settings::smooth, 0, kMaxSigma, " texels, 0 is off", kForMap, "Sigma of the blur"},
};

constexpr char const* kModeNames[] = {"projection", "unit", "flat", "squared"};
constexpr char const* kKindNames[] = {"auto", "height", "normal"};
constexpr char const* kDirectionNames[] = {"up", "down"};

template <typename... Bodies>
struct Overloaded : Bodies... {
    using Bodies::operator()...;
};
template <typename... Bodies>
Overloaded(Bodies...) -> Overloaded<Bodies...>; // clang 14 does not find it by itself

/// Parses @p text into one member of @p settings.
class Parse {
public:
    Parse(OptionRow const& row, Settings& settings, std::string const& text)
        : row_(row), settings_(settings), text_(text)
    {
    }

    void operator()(bool Settings::*) const {} // a flag: CLI11 sets it

    void operator()(int Settings::*field) const
    {
        double const value = number();
        if (value != std::floor(value)) {
            throw CLI::ValidationError(option(), fmt::format("{} is not a whole number", text_));
        }
        settings_.*field = static_cast<int>(value);
    }

    void operator()(float Settings::*field) const { settings_.*field = static_cast<float>(number()); }

    void operator()(std::optional<float> Settings::*field) const
    {
        settings_.*field = text_ == "auto" ? std::nullopt : std::optional(static_cast<float>(number()));
    }

    void operator()(Modes Settings::*) const { parse_choice(); }
    void operator()(std::optional<Kind> Settings::*) const { parse_choice(); }
    void operator()(NormalY Settings::*) const { parse_choice(); }

private:
    std::string option() const { return fmt::format("--{}", row_.name); }

    void parse_choice() const
    {
        auto const names = choices(row_);
        auto const found = std::find(names.begin(), names.end(), text_);
        if (found == names.end()) {
            throw CLI::ValidationError(
                option(), fmt::format("'{}' is not a {}; give {}", text_, row_.name, fmt::join(names, ", ")));
        }
        choose(row_, settings_, static_cast<int>(found - names.begin()));
    }

    double number() const { return parse_number(option(), text_, row_.minimum, row_.maximum); }

    OptionRow const& row_;
    Settings& settings_;
    std::string const& text_;
};

std::string default_text(OptionRow const& row)
{
    if (auto const* flag = std::get_if<bool Settings::*>(&row.field)) {
        return kDefaults.**flag ? "on" : "off";
    }
    return value_text(row, kDefaults);
}

char const* value_name(OptionRow const& row)
{
    if (!choices(row).empty()) {
        return "MODE";
    }
    return std::holds_alternative<int Settings::*>(row.field) ? "N" : "X";
}

void declare(CLI::App& command, Settings& settings, OptionRow const& row)
{
    if (auto const* flag = std::get_if<bool Settings::*>(&row.field)) {
        command.add_flag(fmt::format("--{0},!--no-{0}", row.name), settings.**flag, describe(row))
            ->group(row.group);
        return;
    }
    std::function<void(std::string const&)> const parse = [&settings, &row](std::string const& text) {
        std::visit(Parse(row, settings, text), row.field);
    };
    command.add_option_function<std::string>(fmt::format("--{}", row.name), parse, describe(row))
        ->type_name(value_name(row))
        ->group(row.group);
}

} // namespace

std::span<OptionRow const> option_table()
{
    return kTable;
}

std::string describe(OptionRow const& row)
{
    if (std::holds_alternative<bool Settings::*>(row.field)) {
        return fmt::format("{} [default {}]", row.help, default_text(row));
    }
    if (auto const names = choices(row); !names.empty()) {
        return fmt::format("{} [{}; default {}]", row.help, fmt::join(names, ", "), default_text(row));
    }
    return fmt::format("{} [{} to {}{}; default {}]", row.help, row.minimum, row.maximum, row.unit,
                       default_text(row));
}

std::string name_of_mode(Modes mode)
{
    int const number = mode;
    return number >= 0 && number < 4 ? kModeNames[number] : fmt::format("{}", number);
}

std::span<char const* const> choices(OptionRow const& row)
{
    using Names = std::span<char const* const>;
    return std::visit(Overloaded{
                          [](auto) { return Names(); },
                          [](Modes Settings::*) { return Names(kModeNames); },
                          [](std::optional<Kind> Settings::*) { return Names(kKindNames); },
                          [](NormalY Settings::*) { return Names(kDirectionNames); },
                      },
                      row.field);
}

void choose(OptionRow const& row, Settings& settings, int choice)
{
    std::visit(Overloaded{
                   [](auto) {},
                   [&](Modes Settings::*field) { settings.*field = static_cast<Modes>(choice); },
                   [&](std::optional<Kind> Settings::*field) {
                       settings.*field =
                           choice == 0 ? std::nullopt : std::optional(static_cast<Kind>(choice - 1));
                   },
                   [&](NormalY Settings::*field) { settings.*field = static_cast<NormalY>(choice); },
               },
               row.field);
}

std::string value_text(OptionRow const& row, Settings const& settings)
{
    return std::visit(Overloaded{
                          [&](auto Settings::*field) { return fmt::format("{}", settings.*field); },
                          [&](std::optional<float> Settings::*field) {
                              return (settings.*field).has_value() ? fmt::format("{}", *(settings.*field))
                                                                   : "auto";
                          },
                          [&](Modes Settings::*field) { return std::string(kModeNames[settings.*field]); },
                          [&](std::optional<Kind> Settings::*field) {
                              auto const kind = settings.*field;
                              return std::string(kKindNames[kind ? static_cast<int>(*kind) + 1 : 0]);
                          },
                          [&](NormalY Settings::*field) {
                              return std::string(kDirectionNames[static_cast<int>(settings.*field)]);
                          },
                      },
                      row.field);
}

void declare_options(CLI::App& command, Settings& settings, OptionUser user)
{
    declare_preset(command, settings);
    for (OptionRow const& row : kTable) {
        if ((row.users & user) != 0) {
            declare(command, settings, row);
        }
    }
}

nlohmann::json to_json(Settings const& settings)
{
    nlohmann::json fields;
    for (OptionRow const& row : kTable) {
        std::visit(Overloaded{
                       [&](auto Settings::*field) { fields[row.name] = settings.*field; },
                       [&]<typename Value>(std::optional<Value> Settings::*field) {
                           fields[row.name] = (settings.*field).has_value()
                                                  ? nlohmann::json(*(settings.*field))
                                                  : nlohmann::json(nullptr);
                       },
                   },
                   row.field);
    }
    return fields;
}

Settings settings_from_json(nlohmann::json const& fields)
{
    Settings settings = kDefaults;
    for (OptionRow const& row : kTable) {
        nlohmann::json const& value = fields.at(row.name);
        std::visit(Overloaded{
                       [&](auto Settings::*field) { value.get_to(settings.*field); },
                       [&]<typename Value>(std::optional<Value> Settings::*field) {
                           settings.*field =
                               value.is_null() ? std::nullopt : std::optional(value.get<Value>());
                       },
                   },
                   row.field);
    }
    return settings;
}

void check_ranges(Settings const& settings, std::string const& subject)
{
    for (OptionRow const& row : kTable) {
        auto const check = [&](double value) {
            if (!(value >= row.minimum && value <= row.maximum)) { // what is no number, too
                throw Failure(subject, fmt::format("its {} is {}, out of the range", row.name, value),
                              fmt::format("give {} to {} with umbrix list set", row.minimum, row.maximum));
            }
        };
        std::visit(Overloaded{
                       [](auto) {},
                       [&](int Settings::*field) { check(settings.*field); },
                       [&](float Settings::*field) { check(static_cast<double>(settings.*field)); },
                       [&](std::optional<float> Settings::*field) {
                           if (settings.*field) {
                               check(static_cast<double>(*(settings.*field)));
                           }
                       },
                   },
                   row.field);
    }
}

double parse_number(std::string const& option, std::string const& text, double minimum, double maximum)
{
    double value = 0.0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) {
        throw CLI::ValidationError(option, fmt::format("'{}' is not a number", text));
    }
    if (value < minimum || value > maximum) {
        throw CLI::ValidationError(option,
                                   fmt::format("{} is out of range; give {} to {}", text, minimum, maximum));
    }
    return value;
}

} // namespace umbrix_cli
