// SPDX-License-Identifier: MIT
#include "toolkit/pictures/input_formats.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/output_format.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

/// Those that are read, but not written.
constexpr std::array<std::string_view, 17> kReadOnly{".dib", ".pdd", ".pnm", ".vda", ".icb",  ".vst",
                                                     ".gif", ".dcx", ".iff", ".fit", ".fits", ".pic",
                                                     ".pix", ".ras", ".sun", ".xpm", ".pcd"};

} // namespace

bool is_called_like_a_picture(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    return output_format(file) != nullptr ||
           std::find(kReadOnly.begin(), kReadOnly.end(), extension) != kReadOnly.end();
}

} // namespace umbrixlib::toolkit
