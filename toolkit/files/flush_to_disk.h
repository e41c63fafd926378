// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Brings a file that was written to the disk; a delayed "no space left" shows here. False if that fails.
bool flush_to_disk(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
