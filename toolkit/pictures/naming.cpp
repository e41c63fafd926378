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
constexpr std::array<std::string_view, 5> kNormalWords{"normal", "normals", "normalmap", "nrm", "nor"};
constexpr std::array<std::string_view, 8> kHeightWords{"height", "heights", "heightmap", "displacement",
                                                       "disp",   "bump",    "depth",     "elevation"};

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
    if (contains(kHeightWords, lower) || (last && lower == "h")) {
        return Kind::kHeightMap;
    }
    return std::nullopt;
}

} // namespace

fs::path default_output(fs::path const& input, std::string const& suffix)
{
    std::string stem = input.stem().string();
    std::string const lower = lower_case(stem);
    for (std::string_view const tag : kTags) {
        if (lower.size() > tag.size() && lower.ends_with(tag)) {
            stem.erase(stem.size() - tag.size());
            break;
        }
    }
    OutputFormat const* const format = output_format(input);
    bool const keeps = format != nullptr && format->lossless && !format->powers_of_two;
    return input.parent_path() / (stem + suffix + (keeps ? input.extension().string() : ".png"));
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

} // namespace umbrixlib::toolkit
