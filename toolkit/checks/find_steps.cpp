// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_steps.h"

#include "toolkit/pictures/analysis/channel_ranges.h"

#include <array>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Of 16-bit terrain and of our own maps 0.4 % lie on such steps, as chance has it; of what was 8 bits
/// before, all do, and of a picture into which such a part was pasted, that part.
constexpr double kMostOnSteps = 0.1;

/// A mask, or the occlusion of a few rays, has as few levels in any depth.
constexpr std::size_t kFewLevels = 33;

/// Heights of so many texels have more levels than 8 bits unless they came from there: 16-bit terrain of that
/// size has 11,000. Fewer than this many levels are drawn.
constexpr std::size_t kManyTexels = 128 * 128;
constexpr std::size_t kDrawnLevels = 65;

constexpr std::size_t kLevelsOf8Bits = 256;

/// What samples of 16 bits are.
class WordLevels {
public:
    WordLevels(Picture const& picture)
    {
        auto const words = picture.samples<std::uint16_t>();
        auto const step = static_cast<std::size_t>(picture.channels);
        std::size_t const colours = step < 3 ? 1 : 3;
        for (std::size_t i = 0; i < words.size(); i += step) {
            for (std::size_t c = 0; c < colours; ++c) {
                ++counts_[words[i + c]];
            }
        }
    }

    std::size_t levels() const { return static_cast<std::size_t>(kAll - std::ranges::count(counts_, 0U)); }

    /// The share on multiples of @p apart, and how many of these occur. Flat ground and the ends lie on such
    /// steps in sound pictures, too, and do not count.
    std::pair<double, std::size_t> on_steps(std::size_t apart) const
    {
        std::size_t all = 0;
        std::size_t on = 0;
        std::size_t levels = 0;
        for (std::size_t level = 1; level + 1 < kAll; ++level) {
            if (counts_[level] == 0 || level == kAll / 2 || level == kAll / 2 - 1) {
                continue;
            }
            all += counts_[level];
            on += level % apart == 0 ? counts_[level] : 0;
            levels += level % apart == 0 ? 1 : 0;
        }
        return {all > 0 ? static_cast<double>(on) / static_cast<double>(all) : 0.0, levels};
    }

private:
    static constexpr std::size_t kAll = 65536;

    std::vector<std::size_t> counts_ = std::vector<std::size_t>(kAll);
};

void find_in_words(Picture const& picture, PictureKind kind, Findings& findings)
{
    WordLevels const words(picture);
    for (std::size_t const apart : {std::size_t{257}, std::size_t{256}}) {
        auto const [share, levels] = words.on_steps(apart);
        if (share > kMostOnSteps && levels >= kFewLevels) {
            findings.push_back(
                {"eight-bit-steps",
                 fmt::format("{:.3g} % of its samples of 16 bits are multiples of {}, as 8 bits "
                             "give them",
                             100.0 * share, apart),
                 0, share});
            return;
        }
    }
    std::size_t const levels = words.levels();
    if (kind == PictureKind::kHeights && levels <= kLevelsOf8Bits && levels >= kDrawnLevels &&
        picture.texels() >= kManyTexels) {
        findings.push_back({"eight-bit-steps",
                            fmt::format("its 16 bits have {} levels, no more than 8 bits have", levels), 0,
                            1.0});
    }
}

} // namespace

void find_steps(Picture const& picture, PictureKind kind, Findings& findings)
{
    if (picture.type == SampleType::kUint16) {
        find_in_words(picture, kind, findings);
    } else if (picture.type != SampleType::kUint8 && has_8_bit_steps(picture) &&
               channel_ranges(picture).front().levels >= kFewLevels) {
        findings.push_back(
            {"eight-bit-steps", "its floats are all multiples of 1/255, as 8 bits give them", 0, 1.0});
    }
}

} // namespace umbrixlib::toolkit
