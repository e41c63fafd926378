// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"

#include <span>
#include <string>
#include <variant>

namespace umbrixlib::toolkit {

/// The member of `Settings` that a row is about.
using SettingsField =
    std::variant<bool Settings::*, int Settings::*, float Settings::*, std::optional<float> Settings::*,
                 Modes Settings::*, std::optional<Kind> Settings::*, NormalY Settings::*,
                 std::optional<SampleType> Settings::*, HeightChannel Settings::*, HeightRange Settings::*,
                 InvalidTexels Settings::*, CurvaturePart Settings::*>;

/// The tasks that a setting counts in. Those of kForPresets alone are keys of a preset that each front end
/// asks for in its own words: what the input is, where green points in it, and how the result is saved.
/// kForHeights: all that read heights, but for the jobs of a work list, whose fields are the library's.
/// kForHeight: the one that makes heights of normals. kForBent: the one that makes bent normals and occlusion
/// maps. kForHorizon: that of horizon maps.
enum SettingUser : unsigned {
    kForPresets = 0,
    kForMap = 1,
    kForNormal = 2,
    kForRelight = 4,
    kForFit = 8,
    kForHeights = 16,
    kForHeight = 32,
    kForCurvature = 64,
    kForCheck = 128,
    kForBent = 256,
    kForHorizon = 512
};

inline constexpr unsigned kForAny = ~0U; ///< Any task.

/// One setting of a run. The table of them yields the options and the help of a command line, the keys of
/// presets, and the job that a worker is sent.
struct SettingRow {
    char const* name;  ///< Words joined by '-'.
    char const* group; ///< Heading that it stands under.
    SettingsField field;
    double minimum; ///< Of a number, and `maximum`; both allowed.
    double maximum;
    char const* unit; ///< Of a number, as it follows the range: " texels, 0 is off".
    unsigned users;   ///< Sum of SettingUser.
    char const* help; ///< One sentence without a full stop.
};

/// Every setting of a run, in the order of the help.
std::span<SettingRow const> setting_table();

/// The name of @p mode, or its number.
std::string name_of_mode(Modes mode);

/// The words for the values of a row that is neither a number nor a flag; empty for the others.
std::span<char const* const> choices(SettingRow const& row);

/// How the value of a row that is a text is written, for messages: "auto, none or two numbers: 0,4". Empty
/// for the others.
char const* form_of(SettingRow const& row);

/// Takes the value of such a row in; false if @p text has not its form.
bool take_text(SettingRow const& row, Settings& settings, std::string const& text);

/// Takes the choice of that number in.
void choose(SettingRow const& row, Settings& settings, int choice);

/// What the row's setting is, as one would type it: 0.05, auto, projection. A flag is true or false.
std::string value_text(SettingRow const& row, Settings const& settings);

/// Throws a Failure about @p subject unless all numbers are in the ranges of their rows. For settings that
/// came from elsewhere than the command line.
void check_ranges(Settings const& settings, std::string const& subject);

} // namespace umbrixlib::toolkit
