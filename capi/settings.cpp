// SPDX-License-Identifier: MIT
#include "capi/call_internal.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/setting_text.h"

#include <new>
#include <string>
#include <vector>

using namespace umbrix_capi;
using namespace umbrixlib::toolkit;

namespace {

umbrix_form form_of_row(SettingRow const& row)
{
    if (!choices(row).empty()) {
        return UMBRIX_CHOICE;
    }
    if (*form_of(row) != '\0') {
        return UMBRIX_TEXT;
    }
    return std::holds_alternative<bool Settings::*>(row.field)    ? UMBRIX_FLAG
           : std::holds_alternative<int Settings::*>(row.field)   ? UMBRIX_WHOLE
           : std::holds_alternative<float Settings::*>(row.field) ? UMBRIX_NUMBER
                                                                  : UMBRIX_AUTO;
}

/// Texts of a row that are made, and stand as long as the process.
struct RowTexts {
    std::string initial;
    std::vector<char const*> choices; ///< Ends with null.
};

std::vector<RowTexts> const& row_texts()
{
    static std::vector<RowTexts> const all = [] {
        std::vector<RowTexts> texts;
        for (SettingRow const& row : setting_table()) {
            auto const names = choices(row);
            texts.push_back({value_text(row, kDefaults), {names.begin(), names.end()}});
            texts.back().choices.push_back(nullptr);
        }
        return texts;
    }();
    return all;
}

std::vector<std::string> const& preset_names()
{
    static std::vector<std::string> const all = [] {
        auto const names = shipped_presets();
        return std::vector<std::string>(names.begin(), names.end());
    }();
    return all;
}

} // namespace

size_t umbrix_setting_count(void)
{
    return setting_table().size();
}

umbrix_code umbrix_setting_at(size_t index, umbrix_setting* setting)
{
    if (index >= setting_table().size()) {
        return UMBRIX_WRONG_ARGUMENT;
    }
    try {
        SettingRow const& row = setting_table()[index];
        RowTexts const& texts = row_texts()[index];
        umbrix_setting const filled{0,
                                    row.name,
                                    row.group,
                                    row.help,
                                    row.unit,
                                    texts.initial.c_str(),
                                    form_of_row(row),
                                    row.minimum,
                                    row.maximum,
                                    texts.choices.data(),
                                    row.users};
        return fill_record(setting, filled) ? UMBRIX_OK : UMBRIX_WRONG_ARGUMENT;
    } catch (std::bad_alloc const&) {
        return UMBRIX_NO_MEMORY;
    }
}

umbrix_settings* umbrix_settings_new(void)
{
    return new (std::nothrow) umbrix_settings;
}

umbrix_settings* umbrix_settings_copy(umbrix_settings const* settings)
{
    return settings != nullptr ? new (std::nothrow) umbrix_settings(*settings) : umbrix_settings_new();
}

void umbrix_settings_free(umbrix_settings* settings)
{
    delete settings;
}

umbrix_code umbrix_settings_set(umbrix_context* context, umbrix_settings* settings, char const* name,
                                char const* value)
{
    return call(context, [&](CallObserver&) {
        require(settings, "settings");
        require(name, "name");
        require(value, "value");
        set_from_text(setting_called(name), settings->values, value);
    });
}

umbrix_code umbrix_settings_get(umbrix_context* context, umbrix_settings const* settings, char const* name,
                                char const** value)
{
    return call(context, [&](CallObserver&) {
        require(settings, "settings");
        require(name, "name");
        require(value, "value");
        context->answer = value_text(setting_called(name), settings->values);
        *value = context->answer.c_str();
    });
}

umbrix_code umbrix_settings_preset(umbrix_context* context, umbrix_settings* settings, char const* name)
{
    return call(context, [&](CallObserver&) {
        require(settings, "settings");
        require(name, "name");
        settings->values = read_preset(name).settings;
    });
}

char const* umbrix_preset_at(size_t index)
{
    try {
        auto const& names = preset_names();
        return index < names.size() ? names[index].c_str() : nullptr;
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}
