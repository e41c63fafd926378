// SPDX-License-Identifier: MIT
#include "toolkit/base/suggestion.h"

#include "toolkit/base/text.h"

#include <algorithm>
#include <numeric>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kLongestWord = 64;

/// How many letters have to be put in, taken out or changed (V. Levenshtein, 1965). Dashes are underscores.
std::size_t distance(std::string_view from, std::string_view to)
{
    auto const letter = [](char c) { return c == '-' ? '_' : c; };
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            std::size_t const changed = diagonal + (letter(from[i - 1]) == letter(to[j - 1]) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

} // namespace

std::string_view meant_by(std::string_view word, std::vector<std::string_view> const& known)
{
    std::string_view best;
    if (word.size() > kLongestWord) {
        return best;
    }
    std::size_t least = word.size() / 3 + 1; // more differing letters make another word
    std::string const lower = lower_case(word);
    for (std::string_view const candidate : known) {
        std::size_t const letters = distance(lower, candidate);
        if (letters < least || (letters == least && best.empty())) {
            least = letters;
            best = candidate;
        }
    }
    return best;
}

} // namespace umbrixlib::toolkit
