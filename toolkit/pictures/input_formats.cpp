// SPDX-License-Identifier: MIT
#include "toolkit/pictures/input_formats.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/devil/devil_formats.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

// Those that are read, but not written.
constexpr std::array<std::string_view, 4> kReadOnly{".pnm", ".vda", ".icb", ".vst"};
constexpr std::array<std::string_view, 13> kReadByDevilOnly{
    ".dib", ".pdd", ".gif", ".dcx", ".iff", ".fit", ".fits", ".pic", ".pix", ".ras", ".sun", ".xpm", ".pcd"};

bool is_among(std::span<std::string_view const> all, std::string const& extension)
{
    return std::find(all.begin(), all.end(), extension) != all.end();
}

} // namespace

bool is_called_like_a_picture(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    return output_format(file) != nullptr || is_among(kReadOnly, extension) ||
           (devil_decoder() != nullptr && is_among(kReadByDevilOnly, extension));
}

} // namespace umbrixlib::toolkit
