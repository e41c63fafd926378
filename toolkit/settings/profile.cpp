// SPDX-License-Identifier: MIT
#include "toolkit/settings/profile.h"

#include "toolkit/base/depth.h"
#include "toolkit/base/text.h"
#include "toolkit/base/utf8.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/settings/named_toml_internal.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iterator>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr NamedToml kProfiles{"profile", kShippedProfiles, Fault::kNoProfile, Fault::kUnknownProfile};

constexpr char const* kGreen = "normal_y";
constexpr char const* kFormat = "format";
constexpr char const* kSuffix = "suffix";
constexpr char const* kDepth = "depth";
constexpr char const* kAutoDepth = "auto";
constexpr char const* kChannels[] = {"R", "G", "B", "A"};

constexpr char const* kRoughness = "roughness";
constexpr char const* kSmoothness = "smoothness";

/// A map of a material that shipped profiles put into channels. Own ones may have any other.
struct MaterialMap {
    char const* name;
    char const* other_name; ///< Taken for the same.
    double neutral;         ///< What a channel has when no such map is given.
};

constexpr MaterialMap kMaterialMaps[] = {
    {"occlusion", "ao", 1.0},       {kRoughness, "rough", 1.0},    {kSmoothness, "gloss", 0.0},
    {"metallic", "metalness", 0.0}, {"detail", "detailmask", 1.0},
};

/// The one name of a map that may have two.
std::string_view proper_name(std::string_view map)
{
    auto const* const found = std::ranges::find(kMaterialMaps, map, &MaterialMap::other_name);
    return found == std::end(kMaterialMaps) ? map : found->name;
}

NormalY green_in(TomlEntry const& entry)
{
    constexpr char const* kRemedy = "give \"up\" or \"down\"";
    std::string const text = entry.text(kRemedy);
    if (text != "up" && text != "down") {
        entry.refuse(fmt::format("'{}' is neither up nor down", text), kRemedy);
    }
    return text == "up" ? NormalY::kUp : NormalY::kDown;
}

std::string format_in(TomlEntry const& entry)
{
    std::string const remedy = fmt::format("give one of {}", output_extensions());
    std::string const text = lower_case(entry.text(remedy));
    OutputFormat const* const format = output_format("x" + text);
    if (format == nullptr || format->heights_only || text != format->extension) {
        entry.refuse(fmt::format("maps cannot be written as '{}'", text), remedy);
    }
    return text;
}

std::string suffix_in(TomlEntry const& entry)
{
    std::string const remedy = "give what is put after the name: \"_N\"";
    std::string text = entry.text(remedy);
    if (text.empty() || text.find('/') != std::string::npos || has_control_characters(text)) {
        entry.refuse("it is no part of a name of a file", remedy);
    }
    return text;
}

std::optional<SampleType> depth_in(TomlEntry const& entry)
{
    std::string const remedy =
        fmt::format("give \"{}\", \"{}\"", kAutoDepth, fmt::join(kDepthNames, "\", \""));
    std::string const text = entry.word(remedy);
    std::optional<SampleType> const depth = depth_called(text);
    if (!depth && text != kAutoDepth) {
        entry.refuse(fmt::format("'{}' is not known", text), remedy);
    }
    return depth;
}

/// The name of a map of a material, which stands before an equals sign on the command line.
std::string map_in(TomlEntry const& entry)
{
    std::string const remedy = "give letters and digits, other than r, g, b and a alone: \"roughness\"";
    std::string const text = entry.text(remedy);
    bool const is_word = std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
    });
    bool const is_channel =
        std::ranges::any_of(kChannels, [&](std::string_view channel) { return lower_case(channel) == text; });
    if (!is_word || is_channel) {
        entry.refuse(fmt::format("'{}' is no name of a map", text), remedy);
    }
    return std::string(proper_name(text));
}

/// Takes in what a profile says of one kind of pictures.
void take_kind(toml::table const& table, std::string const& subject, ProfileMap map, Profile& profile)
{
    ProfileFile& file = profile.files[static_cast<std::size_t>(map)];
    for (auto const& [key, node] : table) {
        std::string_view const name = key.str();
        TomlEntry const entry{fmt::format("{}.{}", subject, name), node};
        auto const* const channel = std::ranges::find(kChannels, name);
        if (name == kSuffix) {
            file.suffix = suffix_in(entry);
        } else if (name == kDepth) {
            file.depth = depth_in(entry);
        } else if (map == ProfileMap::kPacked && channel != std::end(kChannels)) {
            profile.channels[static_cast<std::size_t>(channel - kChannels)] = map_in(entry);
        } else {
            refuse_key(entry, name, {kSuffix, kDepth}, kProfiles);
        }
    }
}

[[noreturn]] void refuse_profile_key(TomlEntry const& entry, std::string_view name)
{
    std::vector<std::string_view> known{kDescriptionKey, kGreen, kFormat};
    known.insert(known.end(), std::begin(kProfileMapNames), std::end(kProfileMapNames));
    refuse_key(entry, name, known, kProfiles);
}

void check_depths(Profile const& profile, std::string const& subject)
{
    OutputFormat const& format = *output_format("x" + profile.format);
    for (std::size_t i = 0; i < kProfileMaps; ++i) {
        std::optional<SampleType> const depth = profile.files[i].depth;
        if (depth && !format.holds(*depth)) {
            throw Failure(
                Fault::kWrongValue, fmt::format("{}: {}", subject, kProfileMapNames[i]),
                fmt::format("{} files have no samples of depth {}", format.extension, name_of(*depth)),
                "give another depth, or another format");
        }
    }
}

void check_channels(Profile const& profile, std::string const& subject)
{
    auto const& channels = profile.channels;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        auto const place = channels[i].empty() ? std::nullopt : place_of(profile, channels[i]);
        if (place && place->channel != i) {
            throw Failure(
                Fault::kWrongValue, fmt::format("{}: packed.{}", subject, kChannels[i]),
                fmt::format("{} has a place already, in {}", channels[i], kChannels[place->channel]),
                "leave one out");
        }
    }
}

Profile profile_from(toml::table const& table, std::string const& subject)
{
    Profile profile;
    for (auto const& [key, node] : table) {
        std::string_view const name = key.str();
        TomlEntry const entry{fmt::format("{}: {}", subject, name), node};
        auto const* const map = std::ranges::find(kProfileMapNames, name);
        if (name == kDescriptionKey) {
            profile.description = description_in(entry);
        } else if (name == kGreen) {
            profile.normal_y = green_in(entry);
        } else if (name == kFormat) {
            profile.format = format_in(entry);
        } else if (map == std::end(kProfileMapNames)) {
            refuse_profile_key(entry, name);
        } else if (toml::table const* const inner = node.as_table()) {
            take_kind(*inner, entry.subject, static_cast<ProfileMap>(map - kProfileMapNames), profile);
        } else {
            entry.refuse("it is no table", fmt::format("begin it with [{}]", name));
        }
    }
    check_depths(profile, subject);
    check_channels(profile, subject);
    return profile;
}

} // namespace

double neutral_value(std::string_view map)
{
    auto const* const found = std::ranges::find(kMaterialMaps, proper_name(map), &MaterialMap::name);
    return found == std::end(kMaterialMaps) ? 0.0 : found->neutral;
}

std::optional<ChannelPlace> place_of(Profile const& profile, std::string_view map)
{
    std::string_view const name = proper_name(map);
    std::string_view const opposite = name == kRoughness    ? kSmoothness
                                      : name == kSmoothness ? kRoughness
                                                            : "";
    for (auto const& [wanted, invert] : {std::pair(name, false), std::pair(opposite, true)}) {
        auto const found = std::ranges::find(profile.channels, wanted);
        if (!wanted.empty() && found != profile.channels.end()) {
            return ChannelPlace{static_cast<std::size_t>(found - profile.channels.begin()), invert};
        }
    }
    return std::nullopt;
}

std::vector<std::string_view> shipped_profiles()
{
    return names_of(kShippedProfiles);
}

Profile read_profile(std::string const& name)
{
    return profile_from(read_named_toml(name, kProfiles), name);
}

std::string profile_text(Profile const& profile)
{
    std::string text =
        fmt::format("{}{} = \"{}\"\n{} = \"{}\"\n", description_line(profile.description), kGreen,
                    profile.normal_y == NormalY::kUp ? "up" : "down", kFormat, profile.format);
    for (std::size_t i = 0; i < kProfileMaps; ++i) {
        ProfileFile const& file = profile.files[i];
        text += fmt::format("\n[{}]\n{} = {}\n{} = \"{}\"\n", kProfileMapNames[i], kSuffix,
                            toml_text(file.suffix), kDepth, file.depth ? name_of(*file.depth) : kAutoDepth);
    }
    for (std::size_t i = 0; i < profile.channels.size(); ++i) { // of the last table, which is that of packed
        if (!profile.channels[i].empty()) {
            text += fmt::format("{} = \"{}\"\n", kChannels[i], profile.channels[i]);
        }
    }
    return text;
}

} // namespace umbrixlib::toolkit
