// SPDX-License-Identifier: MIT
#include "toolkit/checks/mend_normals.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::toolkit {

namespace {

/// A shorter normal tells no direction.
constexpr double kLeastLength = 0.1;

void put(std::uint8_t& sample, double value)
{
    sample = static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}
void put(std::uint16_t& sample, double value)
{
    sample = static_cast<std::uint16_t>(std::lround(std::clamp(value, 0.0, 65535.0)));
}
void put(float& sample, double value)
{
    sample = static_cast<float>(value);
}
void put(Half& sample, double value)
{
    sample = to_half(static_cast<float>(value));
}

/// Calls @p change with the samples of each texel.
template <typename Change>
void for_each_texel(Picture& normals, Change const& change)
{
    auto const step = static_cast<std::size_t>(normals.channels);
    auto const walk = [&](auto samples) {
        for (std::size_t i = 0; i < samples.size(); i += step) {
            change(&samples[i]);
        }
    };
    switch (normals.type) {
    case SampleType::kUint16:
        return walk(normals.samples<std::uint16_t>());
    case SampleType::kHalf:
        return walk(normals.samples<Half>());
    case SampleType::kFloat:
        return walk(normals.samples<float>());
    default:
        return walk(normals.samples<std::uint8_t>());
    }
}

class Mending {
public:
    Mending(Picture& normals, NormalCode const& code) : normals_(normals), code_(code) {}

    void turn_green_over() const
    {
        double const sum_of_opposites = -2.0 * code_.offset / code_.scale;
        for_each_texel(normals_, [&](auto* texel) { put(texel[1], sum_of_opposites - to_number(texel[1])); });
    }

    void store_flat(MixedFlat const& flat) const
    {
        int const other = flat.kept == 127 ? 128 : 127;
        for_each_texel(normals_, [&](auto* texel) {
            if (flat.between_channels) { // the whole channel is off by a step
                put(texel[flat.channel], to_number(texel[flat.channel]) + flat.kept - other);
            } else if (is_flat(texel)) {
                put(texel[0], flat.kept);
                put(texel[1], flat.kept);
            }
        });
    }

    void make_blue() const
    {
        for_each_texel(normals_, [&](auto* texel) {
            double const x = component(texel[0]);
            double const y = component(texel[1]);
            put(texel[2], sample_of(std::sqrt(std::max(1.0 - x * x - y * y, 0.0))));
        });
    }

    void make_unit() const
    {
        for_each_texel(normals_, [&](auto* texel) {
            double const x = component(texel[0]);
            double const y = component(texel[1]);
            double const z = component(texel[2]);
            double const length = std::sqrt(x * x + y * y + z * z);
            if (std::isfinite(length) && is_off(length) && length >= kLeastLength) {
                put(texel[0], sample_of(x / length));
                put(texel[1], sample_of(y / length));
                put(texel[2], sample_of(z / length));
            }
        });
    }

private:
    /// Whether bytes are those of flat ground, but for the last step.
    static bool is_flat(auto const* texel)
    {
        auto const is_half = [](double sample) { return sample == 127.0 || sample == 128.0; };
        return is_half(to_number(texel[0])) && is_half(to_number(texel[1])) && to_number(texel[2]) >= 254.0;
    }

    template <typename Sample>
    double component(Sample sample) const
    {
        return to_number(sample) * code_.scale + code_.offset;
    }
    double sample_of(double component) const { return (component - code_.offset) / code_.scale; }

    Picture& normals_;
    NormalCode code_;
};

} // namespace

std::vector<std::string> mend_normals(Picture& normals, NormalCode const& code, NormalSums const& sums,
                                      Findings const& findings)
{
    Mending const mending(normals, code);
    std::vector<std::string> done;
    auto const mend = [&](char const* name, auto const& fix) {
        if (std::ranges::find(findings, name, &Finding::name) != findings.end()) {
            fix();
            done.emplace_back(name);
        }
    };
    mend("flat-value", [&] { mending.store_flat(*mixed_flat_of(sums, normals.texels())); });
    mend("green-direction", [&] { mending.turn_green_over(); });
    mend("blue-constant", [&] { mending.make_blue(); });
    mend("normal-length", [&] { mending.make_unit(); });
    return done;
}

} // namespace umbrixlib::toolkit
