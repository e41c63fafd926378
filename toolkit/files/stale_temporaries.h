// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Removes the OutputFiles in @p folder that were left by processes of this machine and user that were
/// killed. Those of processes at work stay, and so does everything else.
void remove_stale_outputs(std::filesystem::path const& folder);

/// The same in the folder of @p target, for who is about to write that; that it may be a link is seen
/// through.
void remove_leftovers_beside(std::filesystem::path const& target);

} // namespace umbrixlib::toolkit
