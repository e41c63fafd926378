// SPDX-License-Identifier: MIT
#include "toolkit/pictures/analysis/channel_ranges.h"

#include <bit>
#include <cmath>
#include <limits>
#include <unordered_set>

namespace umbrixlib::toolkit {

namespace {

std::vector<std::string> channel_names(Picture const& picture)
{
    std::vector<std::string> names = picture.channels < 3 ? std::vector<std::string>{"grey"}
                                                          : std::vector<std::string>{"red", "green", "blue"};
    if (picture.has_alpha()) {
        names.emplace_back("alpha");
    }
    return names;
}

/// Tells numbers apart, up to kMostLevels of them.
class Levels {
public:
    void add(double number)
    {
        if (seen_.size() < kMostLevels && number != last_) {
            seen_.insert(std::bit_cast<std::uint64_t>(number + 0.0)); // -0 is 0
            last_ = number;
        }
    }
    std::size_t count() const { return seen_.size(); }

private:
    std::unordered_set<std::uint64_t> seen_;
    double last_ = std::numeric_limits<double>::quiet_NaN(); ///< Neighbours are often the same.
};

template <typename Sample>
ChannelRange range_of(std::span<Sample const> samples, std::size_t first, std::size_t step)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    ChannelRange range{{}, kInfinity, -kInfinity};
    Levels levels;
    std::size_t valid = 0;
    for (std::size_t i = first; i < samples.size(); i += step) {
        double const number = to_number(samples[i]);
        if (!std::isfinite(number)) {
            ++range.invalid;
            continue;
        }
        range.minimum = std::min(range.minimum, number);
        range.maximum = std::max(range.maximum, number);
        range.mean += number;
        levels.add(number);
        ++valid;
    }
    range.mean /= static_cast<double>(valid);
    range.levels = levels.count();
    return range;
}

/// Whether all colours of @p samples are such numbers.
template <typename Sample, typename Is>
bool all_colours(std::span<Sample const> samples, int channels, Is&& is)
{
    auto const step = static_cast<std::size_t>(channels);
    std::size_t const colours = step < 3 ? 1 : 3;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (i % step < colours && !is(samples[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

std::vector<ChannelRange> channel_ranges(Picture const& picture)
{
    std::vector<ChannelRange> ranges;
    for (std::string const& name : channel_names(picture)) {
        with_samples(picture, [&](auto samples) {
            ranges.push_back(range_of(samples, ranges.size(), static_cast<std::size_t>(picture.channels)));
        });
        ranges.back().name = name;
    }
    return ranges;
}

bool has_8_bit_steps(Picture const& picture)
{
    auto const all_floats = [&](auto samples, double tolerance) {
        return all_colours(samples, picture.channels, [tolerance](auto sample) {
            double const steps = to_number(sample) * 255.0;
            return steps >= 0.0 && steps <= 255.0 && std::abs(steps - std::round(steps)) <= tolerance;
        });
    };
    switch (picture.type) {
    case SampleType::kUint16: {
        auto const words = picture.samples<std::uint16_t>();
        return all_colours(words, picture.channels, [](std::uint16_t word) { return word % 257 == 0; }) ||
               all_colours(words, picture.channels, [](std::uint16_t word) { return word % 256 == 0; });
    }
    case SampleType::kHalf:
        return all_floats(picture.samples<Half>(), 255.0 / 4096.0);
    case SampleType::kFloat:
        return all_floats(picture.samples<float>(), 1e-4);
    default:
        return false;
    }
}

} // namespace umbrixlib::toolkit
