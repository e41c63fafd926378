// SPDX-License-Identifier: MIT
#include "document/command_text.h"

#include "toolkit/base/depth.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/suggestion.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/settings/setting_text.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <variant>

namespace umbrix_desktop {

namespace {

using toolkit::Failure;
using toolkit::Fault;
using toolkit::Kind;
using toolkit::NormalY;
using toolkit::SettingRow;
using toolkit::Settings;

constexpr unsigned kUsers = toolkit::kForMap | toolkit::kForHeights;
constexpr char const* kKindOptions[] = {"--height-map", "--normal-map"};

/// Those that leave the map as it is, and whether a value follows.
struct PassedOver {
    std::string_view option;
    bool has_value;
};
constexpr PassedOver kPassedOver[] = {
    {"-o", true},        {"--output", true},      {"--overwrite", false},  {"--progress", true},
    {"--timeout", true}, {"--max-texels", true},  {"-v", false},           {"--verbose", false},
    {"--profile", true}, {"--no-sandbox", false}, {"--compression", true},
};

bool is_flag(SettingRow const& row)
{
    return std::holds_alternative<bool Settings::*>(row.field);
}

void add_option(std::string& line, SettingRow const& row, Settings const& settings)
{
    std::string const value = value_text(row, settings);
    if (value == value_text(row, toolkit::kDefaults)) {
        return;
    }
    if (is_flag(row)) {
        line += fmt::format(" --{}{}", value == "true" ? "" : "no-", row.name);
    } else {
        // After a space a minus would begin another option.
        line += fmt::format(" --{}{}{}", row.name, value.starts_with('-') ? '=' : ' ', shell_quoted(value));
    }
}

/// Takes the words of a line in.
class LineReader {
public:
    LineReader(std::vector<std::string> words, State const& before) : words_(std::move(words)), state_(before)
    {
        state_.settings = toolkit::kDefaults;
        state_.source.clear();
    }

    State read()
    {
        take_name_of_tool();
        take_preset(); // which options come before, wherever it stands
        for (bool options_end = false; at_ < words_.size();) {
            std::string const word = words_[at_++];
            if (word == "--" && !options_end) {
                options_end = true;
            } else if (!options_end && word.size() > 1 && word.starts_with('-')) {
                take_option(word);
            } else {
                take_source(word);
            }
        }
        if (state_.source.empty()) {
            refuse("umbrix map", "it names no picture", "give one behind it");
        }
        return state_;
    }

private:
    [[noreturn]] static void refuse(std::string const& subject, std::string const& what,
                                    std::string const& remedy, Fault fault = Fault::kWrongValue)
    {
        throw Failure(fault, subject, what, remedy);
    }

    void take_name_of_tool()
    {
        std::string_view const tool = words_.empty() ? "" : std::string_view(words_[0]);
        bool const named = tool == "umbrix" || tool.ends_with("/umbrix");
        if (!named || words_.size() < 2 || words_[1] != "map") {
            refuse("the line", "it does not begin with umbrix map", "paste a line that does");
        }
        at_ = 2;
    }

    void take_preset()
    {
        for (std::size_t i = at_; i < words_.size() && words_[i] != "--"; ++i) {
            if (words_[i] == "--preset" && i + 1 < words_.size()) {
                state_.settings = toolkit::read_preset(words_[i + 1]).settings;
            } else if (words_[i].starts_with("--preset=")) {
                state_.settings = toolkit::read_preset(words_[i].substr(9)).settings;
            }
        }
    }

    void take_source(std::string const& word)
    {
        if (!state_.source.empty()) {
            refuse(word, fmt::format("the line names {} as the picture already", state_.source),
                   "name one picture");
        }
        state_.source = word;
    }

    void take_option(std::string const& word)
    {
        std::size_t const equals = word.find('=');
        name_ = word.substr(0, equals);
        given_ = equals == std::string::npos ? std::nullopt : std::optional(word.substr(equals + 1));
        auto const* const passed = std::ranges::find(kPassedOver, name_, &PassedOver::option);
        if (passed != std::end(kPassedOver)) {
            if (passed->has_value) {
                value();
            }
        } else if (name_ == "--preset") {
            value();
        } else if (name_ == kKindOptions[0] || name_ == kKindOptions[1]) {
            state_.settings.kind = name_ == kKindOptions[0] ? Kind::kHeightMap : Kind::kNormalMap;
        } else if (name_ == "--normal-y") {
            take("normal-y");
        } else if (name_ == "--depth") {
            take("save-depth");
        } else {
            take_setting();
        }
    }

    void take_setting()
    {
        for (SettingRow const& row : toolkit::setting_table()) {
            if ((row.users & kUsers) == 0) {
                continue;
            }
            if (name_ == fmt::format("--{}", row.name)) {
                return is_flag(row) ? set(row, given_.value_or("true")) : set(row, value());
            }
            if (is_flag(row) && name_ == fmt::format("--no-{}", row.name)) {
                return set(row, "false");
            }
        }
        refuse_unknown();
    }

    [[noreturn]] void refuse_unknown() const
    {
        for (char const* const other : {"--gpu", "--match-cpu", "--compare-cpu", "--round", "--dither"}) {
            if (name_ == other) {
                refuse(name_, "the window makes no such map", "leave it out");
            }
        }
        std::vector<std::string> names;
        for (SettingRow const& row : toolkit::setting_table()) {
            names.push_back(fmt::format("--{}", row.name));
        }
        std::vector<std::string_view> const known(names.begin(), names.end());
        std::string_view const meant = toolkit::meant_by(name_, known);
        refuse(name_, "umbrix map has no such option",
               meant.empty() ? "leave it out" : fmt::format("perhaps {} is meant", meant),
               Fault::kUnknownKey);
    }

    void take(std::string_view setting) { set(toolkit::setting_called(setting), value()); }

    void set(SettingRow const& row, std::string const& text)
    {
        try {
            toolkit::set_from_text(row, state_.settings, text);
        } catch (Failure const& failure) {
            refuse(name_, failure.what(), failure.remedy, failure.fault);
        }
    }

    /// What follows the option, in its word or in the next one.
    std::string value()
    {
        if (given_) {
            return *given_;
        }
        if (at_ == words_.size()) {
            refuse(name_, "its value is missing", "give it behind the option");
        }
        return words_[at_++];
    }

    std::vector<std::string> words_;
    State state_;
    std::size_t at_ = 0;
    std::string name_;                 ///< Of the option at work.
    std::optional<std::string> given_; ///< What stands behind its equals sign.
};

} // namespace

std::string command_of(State const& state)
{
    Settings const& settings = state.settings;
    std::string const& source = state.source;
    std::string line =
        fmt::format("umbrix map {}", shell_quoted(source.starts_with('-') ? "./" + source : source));
    if (settings.kind) {
        line += fmt::format(" {}", kKindOptions[static_cast<int>(*settings.kind)]);
    }
    // A height map has no green, and the option beside it would be refused.
    if (settings.normal_y != toolkit::kDefaults.normal_y && settings.kind != Kind::kHeightMap) {
        line += fmt::format(" --normal-y {}", settings.normal_y == NormalY::kUp ? "up" : "down");
    }
    if (settings.save_depth) {
        line += fmt::format(" --depth {}", toolkit::name_of(*settings.save_depth));
    }
    for (SettingRow const& row : toolkit::setting_table()) {
        if ((row.users & kUsers) != 0) {
            add_option(line, row, settings);
        }
    }
    return line;
}

State state_of_command(std::string_view line, State const& before)
{
    return LineReader(shell_words(line), before).read();
}

} // namespace umbrix_desktop
