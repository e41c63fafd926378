// SPDX-License-Identifier: MIT
#include "toolkit/pictures/input_formats.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

// Those that are read, but not written.
constexpr std::string_view kReadOnly[] = {".cur", ".dcx", ".dib", ".fit", ".fits", ".gif", ".icb",
                                          ".ico", ".pam", ".pdd", ".pic", ".pix",  ".pnm", ".psb",
                                          ".ras", ".sun", ".vda", ".vst", ".webp"};

bool is_among(std::span<std::string_view const> all, std::string const& extension)
{
    return std::find(all.begin(), all.end(), extension) != all.end();
}

} // namespace

bool is_called_like_a_picture(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    return output_format(file) != nullptr || is_among(kReadOnly, extension);
}

} // namespace umbrixlib::toolkit
