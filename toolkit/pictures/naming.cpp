// SPDX-License-Identifier: MIT
#include "toolkit/pictures/naming.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 4> kTags{"_n", "_normal", "_h", "_height"};
constexpr std::array<std::string_view, 7> kNormalWords{"normal", "normals",  "normalmap", "nrm",
                                                       "nor",    "normalgl", "normaldx"};
constexpr std::array<std::string_view, 11> kHeightWords{"height",   "heights", "heightmap", "displacement",
                                                        "displace", "disp",    "dsp",       "hgt",
                                                        "bump",     "depth",   "elevation"};

constexpr NameEnding heights(std::string_view text)
{
    return {text, Kind::kHeightMap, std::nullopt};
}

constexpr NameEnding normals(std::string_view text, std::optional<NormalY> green = std::nullopt)
{
    return {text, Kind::kNormalMap, green};
}

constexpr NameEnding kEndings[] = {
    heights("_displacement"),
    heights("_displace"),
    heights("_disp"),
    heights("_dsp"),
    heights("_height"),
    heights("_hgt"),
    heights("_h"),
    heights("_bump"),
    heights("_bmp"),
    heights("_depth"),
    normals("_normal"),
    normals("_nor"),
    normals("_nrm"),
    normals("_n"),
    normals("_normalgl", NormalY::kUp),
    normals("_normaldx", NormalY::kDown),
    normals("_nor_gl", NormalY::kUp),
    normals("_nor_dx", NormalY::kDown),
    {"_albedo", {}, {}},
    {"_basecolor", {}, {}},
    {"_diffuse", {}, {}},
    {"_diff", {}, {}},
    {"_color", {}, {}},
    {"_col", {}, {}},
    {"_ao", {}, {}},
    {"_occlusion", {}, {}},
    {"_rough", {}, {}},
    {"_roughness", {}, {}},
    {"_metal", {}, {}},
    {"_metallic", {}, {}},
    {"_metalness", {}, {}},
    {"_spec", {}, {}},
    {"_specular", {}, {}},
    {"_gloss", {}, {}},
    {"_mask", {}, {}},
    {"_maskmap", {}, {}},
    {"_opacity", {}, {}},
    {"_emissive", {}, {}},
    {"_orm", {}, {}},
    {"_arm", {}, {}},
    {"_curvature", {}, {}},
    {"_cavity", {}, {}},
    {"_bent", {}, {}},
    {"_horizon1", {}, {}},
    {"_horizon2", {}, {}},
};

/// @p stem without a resolution at its end: "_2k".
std::string_view without_resolution(std::string_view stem)
{
    if (!stem.ends_with('k')) {
        return stem;
    }
    std::size_t const last = stem.find_last_not_of("0123456789", stem.size() - 2);
    bool const has_digits = last != std::string_view::npos && last + 2 < stem.size();
    return has_digits && stem[last] == '_' ? stem.substr(0, last) : stem;
}

template <typename Words>
bool contains(Words const& words, std::string_view word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// Runs of letters. Everything else parts words, and so does a small letter before a capital one.
std::vector<std::string> words_of(std::string_view name)
{
    auto const small = [](char c) { return c >= 'a' && c <= 'z'; };
    auto const capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    std::vector<std::string> words;
    char before = ' ';
    for (char const c : name) {
        bool const letter = small(c) || capital(c);
        bool const starts = letter && (!(small(before) || capital(before)) || (small(before) && capital(c)));
        if (starts) {
            words.emplace_back();
        }
        if (letter) {
            words.back() += c;
        }
        before = c;
    }
    return words;
}

std::optional<Kind> kind_of_word(std::string const& word, bool last)
{
    std::string const lower = lower_case(word);
    if (contains(kNormalWords, lower) || (last && lower == "n")) {
        return Kind::kNormalMap;
    }
    if (contains(kHeightWords, lower) || (last && (lower == "h" || lower == "bmp"))) {
        return Kind::kHeightMap;
    }
    return std::nullopt;
}

} // namespace

fs::path default_output(fs::path const& input, std::string const& suffix, std::string const& extension)
{
    std::string stem = input.stem().string();
    std::string const lower = lower_case(stem);
    for (std::string_view const tag : kTags) {
        if (lower.size() > tag.size() && lower.ends_with(tag)) {
            stem.erase(stem.size() - tag.size());
            break;
        }
    }
    if (!extension.empty()) {
        return input.parent_path() / (stem + suffix + extension);
    }
    OutputFormat const* const format = output_format(input);
    bool const keeps =
        format != nullptr && format->lossless && !format->powers_of_two && !format->heights_only;
    return input.parent_path() / (stem + suffix + (keeps ? input.extension().string() : ".png"));
}

fs::path packed_output(fs::path const& input, std::string const& suffix, std::string const& extension)
{
    std::string stem = input.stem().string();
    NameEnding const* const ending = ending_of_name(input);
    if (ending != nullptr) {
        stem.erase(lower_case(stem).rfind(ending->text), ending->text.size());
    }
    return input.parent_path() / (stem + suffix + extension);
}

std::optional<NameHint> hint_of_name(fs::path const& file)
{
    std::vector<std::string> const words = words_of(file.stem().string());
    std::optional<NameHint> hint;
    for (std::string const& word : words) {
        auto const kind = kind_of_word(word, &word == &words.back());
        if (kind && hint && hint->kind != *kind) {
            return std::nullopt;
        }
        if (kind) {
            hint = NameHint{*kind, word};
        }
    }
    return hint;
}

NameEnding const* ending_of_name(fs::path const& file)
{
    std::string const lower = lower_case(file.stem().string());
    std::string_view const stem = without_resolution(lower);
    auto const* const found =
        std::ranges::find_if(kEndings, [&](NameEnding const& each) { return stem.ends_with(each.text); });
    return found == std::end(kEndings) ? nullptr : found;
}

} // namespace umbrixlib::toolkit
