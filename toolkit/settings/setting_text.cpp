// SPDX-License-Identifier: MIT
#include "toolkit/settings/setting_text.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/suggestion.h"
#include "toolkit/base/text.h"
#include "toolkit/base/whole.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <optional>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

/// Takes a text into the member of the settings that the row is about.
class TextTaker {
public:
    TextTaker(SettingRow const& row, Settings& settings, std::string const& text)
        : row_(row), settings_(settings), text_(text)
    {
    }

    void operator()(bool Settings::*field) const
    {
        if (text_ != "true" && text_ != "false") {
            refuse(fmt::format("'{}' is neither true nor false", text_));
        }
        settings_.*field = text_ == "true";
    }

    void operator()(int Settings::*field) const
    {
        double const value = number();
        if (!is_whole(value)) {
            refuse(fmt::format("{} is not a whole number", text_));
        }
        settings_.*field = static_cast<int>(value);
    }

    void operator()(float Settings::*field) const { settings_.*field = static_cast<float>(number()); }

    void operator()(std::optional<float> Settings::*field) const
    {
        settings_.*field = text_ == "auto" ? std::nullopt : std::optional(static_cast<float>(number()));
    }

    void operator()(HeightRange Settings::*) const { take_form(); }
    void operator()(InvalidTexels Settings::*) const { take_form(); }

    template <typename Choice>
    void operator()(Choice Settings::*) const
    {
        auto const names = choices(row_);
        auto const found = std::ranges::find(names, text_);
        if (found == names.end()) {
            refuse(fmt::format("'{}' is not a {}", text_, row_.name),
                   fmt::format("give {}", fmt::join(names, ", ")));
        }
        choose(row_, settings_, static_cast<int>(found - names.begin()));
    }

private:
    [[noreturn]] void refuse(std::string const& what, std::string const& remedy = {}) const
    {
        throw Failure(Fault::kWrongValue, row_.name, what, remedy);
    }

    void take_form() const
    {
        if (!take_text(row_, settings_, text_)) {
            refuse(fmt::format("'{}' is not {}", text_, form_of(row_)));
        }
    }

    double number() const
    {
        std::optional<double> const value = number_in(text_);
        if (!value) {
            refuse(fmt::format("'{}' is not a number", text_));
        }
        if (*value < row_.minimum || *value > row_.maximum) {
            refuse(fmt::format("{} is out of range", text_),
                   fmt::format("give {} to {}", row_.minimum, row_.maximum));
        }
        return *value;
    }

    SettingRow const& row_;
    Settings& settings_;
    std::string const& text_;
};

} // namespace

SettingRow const& setting_called(std::string_view name)
{
    std::string words(name);
    std::ranges::replace(words, '_', '-');
    std::vector<std::string_view> known;
    for (SettingRow const& row : setting_table()) {
        if (words == row.name) {
            return row;
        }
        known.emplace_back(row.name);
    }
    std::string_view const meant = meant_by(words, known);
    throw Failure(Fault::kUnknownKey, std::string(name), "there is no such setting",
                  meant.empty() ? "" : fmt::format("perhaps {} is meant", meant));
}

void set_from_text(SettingRow const& row, Settings& settings, std::string const& text)
{
    std::visit(TextTaker(row, settings, text), row.field);
}

} // namespace umbrixlib::toolkit
