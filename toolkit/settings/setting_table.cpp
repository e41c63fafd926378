// SPDX-License-Identifier: MIT
#include "toolkit/settings/setting_table.h"

#include "toolkit/base/depth.h"
#include "toolkit/base/failure.h"
#include "toolkit/base/overloaded.h"
#include "toolkit/settings/defaults.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr char const* kInput = "Input";
constexpr char const* kRead = "Heights as they are read, in this order";
constexpr char const* kLight = "Light";
constexpr char const* kRelief = "Relief";
constexpr char const* kOcclusion = "Occlusion";
constexpr char const* kBorders = "Borders";
constexpr char const* kSky = "Sky";
constexpr char const* kCurvature = "Curvature";
constexpr char const* kHeights = "Grading of the heights, in this order";
constexpr char const* kResult = "Grading of the map, in this order";
constexpr char const* kSaving = "Saving";

constexpr double kMaxSigma = 1000.0;

constexpr SettingRow kTable[] = {
    {"kind", kInput, &Settings::kind, 0, 0, "", kForPresets,
     "What `map` takes its input for; auto looks at the picture and its name"},
    {"normal-y", kInput, &Settings::normal_y, 0, 0, "", kForPresets,
     "Where green points in a normal map: up (OpenGL) or down (DirectX)"},

    {"height-from", kRead, &Settings::height_from, 0, 0, "", kForHeights,
     "What of a coloured height map is the height: the mean of its colours, one channel, or luma (Rec. 709)"},
    {"replace-invalid", kRead, &Settings::replace_invalid, 0, 0, "", kForHeights | kForHeight,
     "What takes the place of NaN and infinite samples; without, a picture that has any is refused"},
    {"height-range", kRead, &Settings::height_range, 0, 0, "", kForHeights | kForHeight,
     "What heights become 0 and 1, beyond which they are cut; auto: the picture's own lowest and highest. "
     "Whole numbers are 0 to 1 already"},
    {"invert", kRead, &Settings::invert, 0, 0, "", kForHeights,
     "Turn the heights over: what is dark is high, as in maps of depth"},

    {"light", kLight, &Settings::light, 0, 0, "", kForMap,
     "Put the light of the three directions into the map"},
    {"generate-normal", kLight, &Settings::generate_normal, 0, 0, "", kForMap,
     "Make the normals from the heights in a normal map's alpha, too; a height map's always are"},
    {"mode", kLight, &Settings::mode, 0, 0, "", kForMap | kForRelight | kForCheck,
     "Light of a normal: its projection, the same with unit basis vectors, that cut at 0 and with flat "
     "ground "
     "at full light, or that cut at 0 and squared"},
    {"height-in-alpha", kLight, &Settings::height_in_alpha, 0, 0, "", kForMap,
     "Put the heights, as they were read, into the map's alpha"},

    {"relief", kRelief, &Settings::relief, 0, 10, " image widths",
     kForMap | kForNormal | kForHeight | kForCurvature | kForBent | kForHorizon,
     "How high a height of 1 reaches"},
    {"h-scale", kRelief, &Settings::h_scale, 0, 10, " image widths", kForMap | kForBent | kForHorizon,
     "The same for occlusion and horizons alone; auto is the relief"},
    {"n-scale", kRelief, &Settings::n_scale, -1e6, 1e6, "", kForMap | kForNormal | kForHeight | kForCurvature,
     "Strength of the normals: slope where the heights differ by 1 over two texels; auto fits the height "
     "scale"},
    {"gaussian", kRelief, &Settings::gaussian, 0, kMaxSigma, " texels, 0 is off",
     kForMap | kForNormal | kForFit | kForCurvature, "Sigma of the blur before normals are made"},
    {"detail", kRelief, &Settings::detail, 0, 100, " texels, up to 1 is off", kForMap | kForNormal | kForFit,
     "Radius of the bilateral filter before normals are made; `normal` runs it without using its result"},

    {"occlusion", kOcclusion, &Settings::occlusion, 0, 0, "", kForMap,
     "Darken what the relief hides from the three directions"},
    {"rays", kOcclusion, &Settings::rays, 1, 10000, " per direction", kForMap,
     "Rays that look for the relief"},
    {"radius", kOcclusion, &Settings::radius, 0, 4, " image widths", kForMap | kForBent | kForHorizon,
     "How far rays reach and climb, and how far from a texel horizons are looked for"},
    {"alpha-limit", kOcclusion, &Settings::alpha_limit, 0, 180, " degrees", kForMap,
     "Full width of a bundle of rays in elevation"},
    {"theta-limit", kOcclusion, &Settings::theta_limit, 0, 180, " degrees", kForMap,
     "Full width of a bundle of rays in azimuth"},
    {"tile", kBorders, &Settings::tile, 0, 0, "",
     kForMap | kForNormal | kForHeight | kForCurvature | kForBent | kForHorizon | kForCheck,
     "The texture repeats, for normals and occlusion; switches the next two"},
    {"h-tile", kBorders, &Settings::h_tile, 0, 0, "",
     kForMap | kForNormal | kForHeight | kForCurvature | kForBent | kForHorizon | kForCheck,
     "It repeats sideways"},
    {"v-tile", kBorders, &Settings::v_tile, 0, 0, "",
     kForMap | kForNormal | kForHeight | kForCurvature | kForBent | kForHorizon | kForCheck,
     "It repeats up and down"},

    {"directions", kSky, &Settings::directions, 4, 1024, " around", kForBent,
     "Directions in which the horizon is looked for"},

    {"curvature-part", kCurvature, &Settings::curvature_part, 0, 0, "", kForCurvature,
     "What is shown: ridges light and hollows dark on grey, hollows dark on white, or ridges light on black"},
    {"curvature-radius", kCurvature, &Settings::curvature_radius, 0.00001, 10, " image widths", kForCurvature,
     "Radius of the ball that is white all over, and black seen from within; auto: a hundredth of the texels "
     "is bent more"},

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

    {"save-depth", kSaving, &Settings::save_depth, 0, 0, "", kForPresets,
     "Samples of what is written; auto is what the format holds as a rule"},
};

constexpr char const* kModeNames[] = {"projection", "unit", "flat", "squared"};
constexpr char const* kKindNames[] = {"auto", "height", "normal"};
constexpr char const* kDirectionNames[] = {"up", "down"};
constexpr char const* kDepthChoices[] = {"auto", kDepthNames[0], kDepthNames[1], kDepthNames[2],
                                         kDepthNames[3]};
constexpr char const* kPartNames[] = {"all", "cavity", "ridges"};

} // namespace

std::span<SettingRow const> setting_table()
{
    return kTable;
}

std::string name_of_mode(Modes mode)
{
    int const number = mode;
    return number >= 0 && number < 4 ? kModeNames[number] : fmt::format("{}", number);
}

std::span<char const* const> choices(SettingRow const& row)
{
    using Names = std::span<char const* const>;
    return std::visit(Overloaded{
                          [](auto) { return Names(); },
                          [](Modes Settings::*) { return Names(kModeNames); },
                          [](std::optional<Kind> Settings::*) { return Names(kKindNames); },
                          [](NormalY Settings::*) { return Names(kDirectionNames); },
                          [](std::optional<SampleType> Settings::*) { return Names(kDepthChoices); },
                          [](HeightChannel Settings::*) { return Names(kHeightChannelNames); },
                          [](CurvaturePart Settings::*) { return Names(kPartNames); },
                      },
                      row.field);
}

char const* form_of(SettingRow const& row)
{
    return std::visit(
        Overloaded{
            [](auto) { return ""; },
            [](HeightRange Settings::*) { return "auto, none or two numbers, the lower one first: 0,4"; },
            [](InvalidTexels Settings::*) { return "none or a number"; },
        },
        row.field);
}

bool take_text(SettingRow const& row, Settings& settings, std::string const& text)
{
    auto const take = [&]<typename Value>(Value Settings::*field, std::optional<Value> const& value) {
        settings.*field = value.value_or(settings.*field);
        return value.has_value();
    };
    return std::visit(
        Overloaded{
            [](auto) { return false; },
            [&](HeightRange Settings::*field) { return take(field, height_range_called(text)); },
            [&](InvalidTexels Settings::*field) { return take(field, invalid_texels_called(text)); },
        },
        row.field);
}

void choose(SettingRow const& row, Settings& settings, int choice)
{
    std::visit(
        Overloaded{
            [](auto) {},
            [&](Modes Settings::*field) { settings.*field = static_cast<Modes>(choice); },
            [&](std::optional<Kind> Settings::*field) {
                settings.*field = choice == 0 ? std::nullopt : std::optional(static_cast<Kind>(choice - 1));
            },
            [&](NormalY Settings::*field) { settings.*field = static_cast<NormalY>(choice); },
            [&](std::optional<SampleType> Settings::*field) {
                settings.*field = depth_called(kDepthChoices[choice]);
            },
            [&](HeightChannel Settings::*field) { settings.*field = static_cast<HeightChannel>(choice); },
            [&](CurvaturePart Settings::*field) { settings.*field = static_cast<CurvaturePart>(choice); },
        },
        row.field);
}

std::string value_text(SettingRow const& row, Settings const& settings)
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
                          [&](std::optional<SampleType> Settings::*field) {
                              auto const depth = settings.*field;
                              return std::string(depth ? name_of(*depth) : kDepthChoices[0]);
                          },
                          [&](HeightChannel Settings::*field) {
                              return std::string(kHeightChannelNames[static_cast<int>(settings.*field)]);
                          },
                          [&](CurvaturePart Settings::*field) {
                              return std::string(kPartNames[static_cast<int>(settings.*field)]);
                          },
                          [&](HeightRange Settings::*field) { return text_of(settings.*field); },
                          [&](InvalidTexels Settings::*field) { return text_of(settings.*field); },
                      },
                      row.field);
}

void check_ranges(Settings const& settings, std::string const& subject)
{
    for (SettingRow const& row : kTable) {
        auto const check = [&](double value) {
            if (!(value >= row.minimum && value <= row.maximum)) { // what is no number, too
                throw Failure(Fault::kSettingOutOfRange, subject,
                              fmt::format("its {} is {}, out of the range", row.name, value),
                              fmt::format("give {} to {}", row.minimum, row.maximum));
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

} // namespace umbrixlib::toolkit
