// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

/// DevIL checks neither the size line nor the runs of a Radiance HDR picture: with damaged ones it writes
/// behind its buffers, which ends in another picture each time, or not at all.
/// @throws Failure about @p subject, if @p file is such a picture and its rows are not what its size asks
/// for.
void refuse_hdr_with_damaged_rows(std::filesystem::path const& file, std::string const& subject);

} // namespace umbrixlib::toolkit
