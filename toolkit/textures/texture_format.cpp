// SPDX-License-Identifier: MIT
#include "toolkit/textures/texture_format.h"

#include <algorithm>
#include <iterator>

namespace umbrixlib::toolkit {

namespace {

using enum TextureFormat;

/// Of one format, the form of one channel comes first.
constexpr TextureForm kForms[] = {
    {kBc4, 1, 4, 8, 80, "BC4"},
    {kBc5, 2, 4, 16, 83, "BC5"},
    {kBc7, 4, 4, 16, 98, "BC7"},
    {k8, 1, 1, 1, 61, "8-bit R"},
    {k8, 4, 1, 4, 28, "8-bit RGBA"},
    {k16, 1, 1, 2, 56, "16-bit R"},
    {k16, 4, 1, 8, 11, "16-bit RGBA"},
    {kHalf, 1, 1, 2, 54, "half-float R"},
    {kHalf, 4, 1, 8, 10, "half-float RGBA"},
};

} // namespace

std::optional<TextureFormat> texture_format_called(std::string_view name)
{
    auto const* const found = std::ranges::find(kTextureFormatNames, name);
    return found == std::end(kTextureFormatNames)
               ? std::nullopt
               : std::optional(static_cast<TextureFormat>(found - kTextureFormatNames));
}

TextureForm const& texture_form(TextureFormat format, int channels)
{
    auto const* const first = std::ranges::find(kForms, format, &TextureForm::format);
    auto const* const next = std::next(first);
    bool const has_more = next != std::end(kForms) && next->format == format;
    return channels > 1 && has_more ? *next : *first;
}

} // namespace umbrixlib::toolkit
