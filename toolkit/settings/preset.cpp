// SPDX-License-Identifier: MIT
#include "toolkit/settings/preset.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/utf8.h"
#include "toolkit/base/whole.h"
#include "toolkit/files/preflight.h"
#include "toolkit/settings/named_toml_internal.h"
#include "toolkit/settings/setting_table.h"

#include <algorithm>
#include <fmt/format.h>
#include <type_traits>

namespace umbrixlib::toolkit {

namespace {

constexpr NamedToml kPresets{"preset", kShippedPresets, Fault::kNoPreset, Fault::kUnknownPreset};

/// Takes the value of one key into the settings.
class Take {
public:
    Take(SettingRow const& row, TomlEntry const& entry, Settings& settings)
        : row_(row), entry_(entry), settings_(settings)
    {
    }

    void operator()(bool Settings::*field) const
    {
        std::optional<bool> const value = entry_.node.value_exact<bool>();
        if (!value) {
            entry_.refuse("it is neither true nor false", "give one of these, without quotes");
        }
        settings_.*field = *value;
    }

    void operator()(int Settings::*field) const
    {
        double const value = number();
        if (!is_whole(value)) {
            entry_.refuse(fmt::format("{} is not a whole number", value),
                          fmt::format("give {} to {}", row_.minimum, row_.maximum));
        }
        settings_.*field = static_cast<int>(value);
    }

    void operator()(float Settings::*field) const { settings_.*field = static_cast<float>(number()); }

    void operator()(std::optional<float> Settings::*field) const
    {
        if (!entry_.node.is_string()) {
            settings_.*field = static_cast<float>(number());
        } else if (entry_.text("") == "auto") {
            settings_.*field = std::nullopt;
        } else {
            entry_.refuse("it is neither a number nor \"auto\"",
                          fmt::format("give {} to {}, or \"auto\"", row_.minimum, row_.maximum));
        }
    }

    void operator()(HeightRange Settings::*) const { take_text(); }
    void operator()(InvalidTexels Settings::*) const { take_text(); }

    template <typename Choice>
    void operator()(Choice Settings::*) const
    {
        auto const names = choices(row_);
        std::string const remedy = fmt::format("give \"{}\"", fmt::join(names, "\", \""));
        bool const has_numbers = std::is_same_v<Choice, std::optional<SampleType>>;
        std::string const text = has_numbers ? entry_.word(remedy) : entry_.text(remedy);
        auto const found = std::find(names.begin(), names.end(), text);
        if (found == names.end()) {
            entry_.refuse(fmt::format("'{}' is not known", text), remedy);
        }
        choose(row_, settings_, static_cast<int>(found - names.begin()));
    }

private:
    void take_text() const
    {
        std::string const remedy = fmt::format("give {}, in quotes", form_of(row_));
        std::string const text = entry_.text(remedy);
        if (!toolkit::take_text(row_, settings_, text)) {
            entry_.refuse(fmt::format("'{}' is not known", text), remedy);
        }
    }

    double number() const { return entry_.number(row_.minimum, row_.maximum); }

    SettingRow const& row_;
    TomlEntry const& entry_;
    Settings& settings_;
};

[[noreturn]] void refuse_preset_key(TomlEntry const& entry, std::string_view key)
{
    std::vector<std::string> keys;
    for (SettingRow const& row : setting_table()) {
        keys.push_back(preset_key(row));
    }
    std::vector<std::string_view> known{kDescriptionKey};
    known.insert(known.end(), keys.begin(), keys.end());
    refuse_key(entry, key, known, kPresets);
}

Preset preset_from(toml::table const& table, std::string const& subject)
{
    Preset preset;
    auto const rows = setting_table();
    for (auto const& [key, node] : table) {
        TomlEntry const entry{fmt::format("{}: {}", subject, key.str()), node};
        std::string_view const name = key.str(); // clang 14 captures no structured binding
        auto const row = std::find_if(rows.begin(), rows.end(),
                                      [&](SettingRow const& each) { return preset_key(each) == name; });
        if (key == kDescriptionKey) {
            preset.description = description_in(entry);
        } else if (row == rows.end()) {
            refuse_preset_key(entry, key.str());
        } else {
            std::visit(Take(*row, entry, preset.settings), row->field);
        }
    }
    return preset;
}

} // namespace

std::string preset_key(SettingRow const& row)
{
    std::string key = row.name;
    std::replace(key.begin(), key.end(), '-', '_');
    return key;
}

std::string preset_value(SettingRow const& row, Settings const& settings)
{
    std::string const text = value_text(row, settings);
    bool const word = !choices(row).empty() || *form_of(row) != '\0' || text == "auto";
    if (text == "-0") {
        return "-0.0"; // without a point it would be a whole number, and the sign lost
    }
    return word ? fmt::format("\"{}\"", text) : text;
}

std::vector<std::string_view> shipped_presets()
{
    return names_of(kShippedPresets);
}

Preset read_preset(std::string const& name)
{
    return preset_from(read_named_toml(name, kPresets), name);
}

std::string preset_text(Preset const& preset)
{
    std::string text = description_line(preset.description);
    std::string_view group;
    for (SettingRow const& row : setting_table()) {
        if (group != row.group) {
            group = row.group;
            text += fmt::format("{}# {}\n", text.empty() ? "" : "\n", group);
        }
        text += fmt::format("{} = {}\n", preset_key(row), preset_value(row, preset.settings));
    }
    return text;
}

bool is_one_line(std::string_view text)
{
    return !has_control_characters(text);
}

void check_preset_output(std::string const& file, bool overwrite)
{
    if (!file.ends_with(kTomlExtension)) {
        throw Failure(Fault::kPresetName, file, fmt::format("its name does not end in {}", kTomlExtension));
    }
    check_output_file(file, overwrite);
}

} // namespace umbrixlib::toolkit
