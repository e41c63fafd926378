// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Throws a Failure unless @p file is a whole work list: of the version that can be read, with as many jobs
/// and layers as it speaks of, no text cut short by a zero byte, and nothing behind the last job.
void check_list(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
