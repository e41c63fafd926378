// SPDX-License-Identifier: MIT
#include "capi/texels_internal.h"
#include "toolkit/base/all_threads.h"

#include <cstdint>
#include <cstring>
#include <fmt/format.h>

using namespace umbrixlib::toolkit;

namespace umbrix_capi {

namespace {

constexpr int kLongestSide = 65535;
constexpr std::size_t kLeastLayout = offsetof(umbrix_layout, row_stride);

void check_number(int value, int least, int most, char const* name)
{
    if (value < least || value > most) {
        throw WrongArgument(fmt::format("layout: its {} is {}, not {} to {}", name, value, least, most));
    }
}

std::ptrdiff_t sample_bytes(umbrix_layout const& layout)
{
    return static_cast<std::ptrdiff_t>(sample_size(static_cast<SampleType>(layout.samples)));
}

/// Of a row whose texels lie side by side.
std::ptrdiff_t packed_row(umbrix_layout const& layout)
{
    return static_cast<std::ptrdiff_t>(layout.width) * layout.channels * sample_bytes(layout);
}

/// Where the samples of a picture lie, from the upper left one on, in bytes.
template <typename Byte>
struct Places {
    Byte* first;
    std::ptrdiff_t row;
    std::ptrdiff_t texel;
    std::ptrdiff_t channel;

    Places(Byte* texels, umbrix_layout const& layout)
        : first(texels), row(layout.row_stride), texel(layout.texel_stride), channel(layout.channel_stride)
    {
    }

    /// Of a Picture, whose bottom row is first.
    static Places of_picture(Byte* bytes, umbrix_layout const& layout)
    {
        std::ptrdiff_t const sample = sample_bytes(layout);
        std::ptrdiff_t const row = packed_row(layout);
        Places places(bytes + (layout.height - 1) * row, layout);
        places.row = -row;
        places.texel = layout.channels * sample;
        places.channel = sample;
        return places;
    }
};

template <typename Sample>
void copy_row(std::byte const* from, Places<std::byte const> const& source, std::byte* to,
              Places<std::byte> const& target, umbrix_layout const& layout)
{
    for (int x = 0; x < layout.width; ++x) {
        for (int c = 0; c < layout.channels; ++c) {
            std::memcpy(to + x * target.texel + c * target.channel,
                        from + x * source.texel + c * source.channel, sizeof(Sample));
        }
    }
}

/// Copies the picture that @p layout has the size of.
void copy(Places<std::byte const> const& source, Places<std::byte> const& target, umbrix_layout const& layout)
{
    std::ptrdiff_t const sample = sample_bytes(layout);
    std::ptrdiff_t const texel = layout.channels * sample;
    bool const packed = source.texel == texel && source.channel == sample && target.texel == texel &&
                        target.channel == sample;
    auto const copy_one = [&](std::ptrdiff_t y) {
        std::byte const* const from = source.first + y * source.row;
        std::byte* const to = target.first + y * target.row;
        if (packed) {
            std::memcpy(to, from, static_cast<std::size_t>(layout.width * texel));
        } else if (sample == 1) {
            copy_row<std::uint8_t>(from, source, to, target, layout);
        } else if (sample == 2) {
            copy_row<std::uint16_t>(from, source, to, target, layout);
        } else {
            copy_row<float>(from, source, to, target, layout);
        }
    };
    for_pieces(
        static_cast<std::size_t>(layout.height),
        [&](std::size_t first, std::size_t end) {
            for (std::size_t y = first; y < end; ++y) {
                copy_one(static_cast<std::ptrdiff_t>(y));
            }
        },
        static_cast<std::size_t>(layout.width));
}

} // namespace

umbrix_layout whole_layout(umbrix_layout const* given)
{
    umbrix_layout layout = record_of(given, kLeastLayout, "layout");
    check_number(layout.width, 1, kLongestSide, "width");
    check_number(layout.height, 1, kLongestSide, "height");
    check_number(layout.channels, 1, 4, "channels");
    check_number(value_in(layout.samples), UMBRIX_UINT8, UMBRIX_FLOAT, "samples");
    check_number(value_in(layout.kind), UMBRIX_UNKNOWN, UMBRIX_LIGHT, "kind");
    std::ptrdiff_t const sample = sample_bytes(layout);
    if (layout.channel_stride == 0) {
        layout.channel_stride = sample;
    }
    if (layout.texel_stride == 0) {
        layout.texel_stride = layout.channels * sample;
    }
    if (layout.row_stride == 0) {
        layout.row_stride = packed_row(layout);
    }
    layout.size = sizeof layout;
    return layout;
}

Picture fetch(void const* texels, umbrix_layout const& layout)
{
    Picture picture =
        make_picture(layout.width, layout.height, layout.channels, static_cast<SampleType>(layout.samples));
    auto* const bytes = reinterpret_cast<std::byte*>(picture.bytes.data());
    copy({static_cast<std::byte const*>(texels), layout}, Places<std::byte>::of_picture(bytes, layout),
         layout);
    return picture;
}

void store(Picture const& picture, void* texels, umbrix_layout const& layout)
{
    auto const* const bytes = reinterpret_cast<std::byte const*>(picture.bytes.data());
    copy(Places<std::byte const>::of_picture(bytes, layout), {static_cast<std::byte*>(texels), layout},
         layout);
}

} // namespace umbrix_capi
