// SPDX-License-Identifier: MIT
#include "toolkit/textures/store_rows.h"

#include "toolkit/textures/channel_blocks.h"
#include "toolkit/textures/colour_blocks.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

/// Channels of a level as shares of the largest whole number.
class Shares {
public:
    Shares(TextureLevel const& level, bool normals)
        : level_(level), channels_(static_cast<std::size_t>(level.channels)), colours_(normals ? 3 : 0)
    {
    }

    /// 0 to 1, and 0 for NaN. Beyond the last column and row these are repeated.
    float at(int x, int y, std::size_t channel) const
    {
        float const value = number_at(x, y, channel);
        float const share = channel < colours_ ? (value + 1.0f) / 2.0f : value;
        return share > 0.0f ? std::min(share, 1.0f) : 0.0f;
    }

    /// As it is.
    float number_at(int x, int y, std::size_t channel) const
    {
        if (channel >= channels_) {
            return 1.0f;
        }
        auto const column = static_cast<std::size_t>(std::min(x, level_.width - 1));
        auto const row = static_cast<std::size_t>(std::min(y, level_.height - 1));
        return level_.texels[row * level_.row_size() + column * channels_ + channel];
    }

private:
    TextureLevel const& level_;
    std::size_t channels_;
    std::size_t colours_; ///< Of which -1 is the least number.
};

/// Blocks of which each channel is packed by itself.
void store_channels(Shares const& shares, int row, TextureForm const& form, std::span<std::uint8_t> to)
{
    auto const channels = static_cast<std::size_t>(form.channels);
    auto const blocks = static_cast<int>(to.size() / form.block_size);
    ChannelBlocks group{};
    for (int first = 0; first < blocks; first += static_cast<int>(ChannelBlocks::kCount)) {
        for (std::size_t c = 0; c < channels; ++c) {
            for (std::size_t i = 0; i < ChannelBlocks::kTexels; ++i) {
                for (std::size_t block = 0; block < ChannelBlocks::kCount; ++block) {
                    int const x = 4 * (first + static_cast<int>(block)) + static_cast<int>(i % 4);
                    group.texels[i][block] = 255.0f * shares.at(x, 4 * row + static_cast<int>(i / 4), c);
                }
            }
            CodedChannels const coded = encode_channels(group);
            for (std::size_t block = 0; block < coded.size() && first + static_cast<int>(block) < blocks;
                 ++block) {
                std::size_t const place = (static_cast<std::size_t>(first) + block) * channels + c;
                std::ranges::copy(coded[block], to.begin() + static_cast<std::ptrdiff_t>(8 * place));
            }
        }
    }
}

/// Blocks of which all channels are packed together.
void store_colours(Shares const& shares, int row, TextureForm const& form, std::span<std::uint8_t> to)
{
    auto const blocks = static_cast<int>(to.size() / form.block_size);
    for (int x = 0; x < blocks; ++x) {
        ColourBlock block{};
        for (std::size_t i = 0; i < block.size(); ++i) {
            for (std::size_t c = 0; c < block[i].size(); ++c) {
                auto const place = static_cast<int>(i);
                block[i][c] = 255.0f * shares.at(4 * x + place % 4, 4 * row + place / 4, c);
            }
        }
        auto const first = static_cast<std::size_t>(x) * form.block_size;
        std::ranges::copy(encode_colours(block), to.begin() + static_cast<std::ptrdiff_t>(first));
    }
}

/// Samples one by one, the low byte first.
template <typename ToSample>
void store_samples(int width, TextureForm const& form, std::span<std::uint8_t> to, ToSample const& to_sample)
{
    auto const channels = static_cast<std::size_t>(form.channels);
    std::size_t const size = form.block_size / channels;
    auto byte = to.begin();
    for (int x = 0; x < width; ++x) {
        for (std::size_t c = 0; c < channels; ++c) {
            unsigned sample = to_sample(x, c);
            for (std::size_t i = 0; i < size; ++i, sample >>= 8U) {
                *byte++ = static_cast<std::uint8_t>(sample);
            }
        }
    }
}

} // namespace

void store_row(TextureLevel const& level, int row, TextureForm const& form, bool normals,
               std::span<std::uint8_t> to)
{
    Shares const shares(level, normals);
    auto const whole = [&](double full) {
        return [&shares, row, full](int x, std::size_t channel) {
            return static_cast<unsigned>(static_cast<double>(shares.at(x, row, channel)) * full + 0.5);
        };
    };
    switch (form.format) {
    case TextureFormat::kBc4:
    case TextureFormat::kBc5:
        return store_channels(shares, row, form, to);
    case TextureFormat::kBc7:
        return store_colours(shares, row, form, to);
    case TextureFormat::k8:
        return store_samples(level.width, form, to, whole(255.0));
    case TextureFormat::k16:
        return store_samples(level.width, form, to, whole(65535.0));
    case TextureFormat::kHalf:
        return store_samples(level.width, form, to, [&](int x, std::size_t channel) {
            return unsigned{to_half(shares.number_at(x, row, channel)).bits};
        });
    }
}

} // namespace umbrixlib::toolkit
