// SPDX-License-Identifier: MIT
#include "options/setting_options.h"

#include "options/preset_option.h"
#include "toolkit/base/text.h"
#include "toolkit/base/whole.h"
#include "toolkit/settings/defaults.h"

#include <CLI/Error.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace umbrix_cli {

namespace {

/// Parses @p text into one member of @p settings.
class Parse {
public:
    Parse(SettingRow const& row, Settings& settings, std::string const& text)
        : row_(row), settings_(settings), text_(text)
    {
    }

    void operator()(bool Settings::*) const {} // a flag: CLI11 sets it

    void operator()(int Settings::*field) const
    {
        double const value = number();
        if (!is_whole(value)) {
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
    void operator()(std::optional<umbrixlib::SampleType> Settings::*) const { parse_choice(); }
    void operator()(HeightChannel Settings::*) const { parse_choice(); }
    void operator()(CurvaturePart Settings::*) const { parse_choice(); }
    void operator()(HeightRange Settings::*) const { parse_text(); }
    void operator()(InvalidTexels Settings::*) const { parse_text(); }

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

    void parse_text() const
    {
        if (!take_text(row_, settings_, text_)) {
            throw CLI::ValidationError(option(), fmt::format("'{}' is not {}", text_, form_of(row_)));
        }
    }

    double number() const { return parse_number(option(), text_, row_.minimum, row_.maximum); }

    SettingRow const& row_;
    Settings& settings_;
    std::string const& text_;
};

std::string default_text(SettingRow const& row)
{
    if (auto const* flag = std::get_if<bool Settings::*>(&row.field)) {
        return kDefaults.**flag ? "on" : "off";
    }
    return value_text(row, kDefaults);
}

char const* value_name(SettingRow const& row)
{
    if (!choices(row).empty()) {
        return std::holds_alternative<HeightChannel Settings::*>(row.field) ? "CHANNEL" : "MODE";
    }
    if (std::holds_alternative<HeightRange Settings::*>(row.field)) {
        return "LO,HI";
    }
    return std::holds_alternative<int Settings::*>(row.field) ? "N" : "X";
}

void declare(CLI::App& command, Settings& settings, SettingRow const& row)
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

std::string describe(SettingRow const& row)
{
    if (std::holds_alternative<bool Settings::*>(row.field)) {
        return fmt::format("{} [default {}]", row.help, default_text(row));
    }
    if (auto const names = choices(row); !names.empty()) {
        return fmt::format("{} [{}; default {}]", row.help, fmt::join(names, ", "), default_text(row));
    }
    if (char const* const form = form_of(row); *form != '\0') {
        return fmt::format("{} [{}; default {}]", row.help, form, default_text(row));
    }
    return fmt::format("{} [{} to {}{}; default {}]", row.help, row.minimum, row.maximum, row.unit,
                       default_text(row));
}

void declare_options(CLI::App& command, Settings& settings, unsigned users)
{
    declare_preset(command, settings);
    declare_rows(command, settings, users);
}

void declare_rows(CLI::App& command, Settings& settings, unsigned users)
{
    for (SettingRow const& row : setting_table()) {
        if ((row.users & users) != 0) {
            declare(command, settings, row);
        }
    }
}

double parse_number(std::string const& option, std::string const& text, double minimum, double maximum)
{
    std::optional<double> const value = number_in(text);
    if (!value) {
        throw CLI::ValidationError(option, fmt::format("'{}' is not a number", text));
    }
    if (*value < minimum || *value > maximum) {
        throw CLI::ValidationError(option,
                                   fmt::format("{} is out of range; give {} to {}", text, minimum, maximum));
    }
    return *value;
}

} // namespace umbrix_cli
