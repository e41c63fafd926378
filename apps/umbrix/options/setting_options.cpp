// SPDX-License-Identifier: MIT
#include "options/setting_options.h"

#include "options/preset_option.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/settings/setting_text.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <optional>

namespace umbrix_cli {

namespace {

void parse(SettingRow const& row, Settings& settings, std::string const& text)
{
    try {
        set_from_text(row, settings, text);
    } catch (Failure const& failure) {
        std::string const advice = failure.remedy.empty() ? "" : fmt::format("; {}", failure.remedy);
        throw CLI::ValidationError(fmt::format("--{}", row.name),
                                   fmt::format("{}{}", failure.what(), advice));
    }
}

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
    std::function<void(std::string const&)> const take = [&settings, &row](std::string const& text) {
        parse(row, settings, text);
    };
    command.add_option_function<std::string>(fmt::format("--{}", row.name), take, describe(row))
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
