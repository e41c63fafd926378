// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/huffman_code.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kMostBits = 15; ///< Of a code in Deflate.

/// Depths of the leaves of a Huffman tree; @p counts rise.
std::vector<unsigned> depths_of(std::vector<std::uint64_t> counts)
{
    std::size_t const leaves = counts.size();
    std::vector<std::size_t> parent(2 * leaves - 1);
    counts.reserve(parent.size());
    std::size_t leaf = 0;
    std::size_t joint = leaves; // joints rise, too: each is at the end
    auto const least = [&] {
        return leaf < leaves && (joint == counts.size() || counts[leaf] <= counts[joint]) ? leaf++ : joint++;
    };
    while (counts.size() < parent.size()) {
        std::size_t const first = least();
        std::size_t const second = least();
        parent[first] = parent[second] = counts.size();
        counts.push_back(counts[first] + counts[second]);
    }
    std::vector<unsigned> depths(parent.size());
    for (std::size_t i = parent.size() - 1; i-- > 0;) {
        depths[i] = depths[parent[i]] + 1;
    }
    depths.resize(leaves);
    return depths;
}

std::array<std::uint32_t, kMostBits + 1> numbers_of_lengths(std::span<std::uint8_t const> lengths)
{
    std::array<std::uint32_t, kMostBits + 1> numbers{};
    for (std::uint8_t const length : lengths) {
        numbers[length] += length > 0 ? 1U : 0U;
    }
    return numbers;
}

} // namespace

std::vector<std::uint8_t> code_lengths(std::span<std::uint32_t const> counts, unsigned limit)
{
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] > 0) {
            used.push_back(i);
        }
    }
    std::ranges::stable_sort(used, {}, [&](std::size_t symbol) { return counts[symbol]; });
    std::vector<std::uint8_t> lengths(counts.size());
    if (used.size() == 1) {
        lengths[used[0]] = 1;
    }
    if (used.size() < 2) {
        return lengths;
    }
    std::vector<std::uint64_t> rising;
    for (std::size_t const symbol : used) {
        rising.push_back(counts[symbol]);
    }
    std::vector<unsigned> depths = depths_of(rising);
    while (std::ranges::max(depths) > limit) {
        for (std::uint64_t& count : rising) {
            count = (count + 1) / 2;
        }
        depths = depths_of(rising);
    }
    for (std::size_t i = 0; i < used.size(); ++i) {
        lengths[used[i]] = static_cast<std::uint8_t>(depths[i]);
    }
    return lengths;
}

std::vector<std::uint16_t> codes_of(std::span<std::uint8_t const> lengths)
{
    auto const numbers = numbers_of_lengths(lengths);
    std::array<std::uint32_t, kMostBits + 1> next{};
    for (std::size_t bits = 1; bits <= kMostBits; ++bits) {
        next[bits] = (next[bits - 1] + numbers[bits - 1]) << 1U;
    }
    std::vector<std::uint16_t> codes(lengths.size());
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        std::uint32_t const code = lengths[i] > 0 ? next[lengths[i]]++ : 0;
        for (unsigned bit = 0; bit < lengths[i]; ++bit) {
            codes[i] = static_cast<std::uint16_t>(codes[i] << 1U | (code >> bit & 1U));
        }
    }
    return codes;
}

bool is_prefix_code(std::span<std::uint8_t const> lengths)
{
    auto const numbers = numbers_of_lengths(lengths);
    std::uint32_t taken = 0;
    for (std::size_t bits = 1; bits <= kMostBits; ++bits) {
        taken += numbers[bits] << (kMostBits - bits);
    }
    return taken <= 1U << kMostBits;
}

} // namespace umbrixlib::toolkit
