// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// A job of a work list as bytes, for a worker and for telling whether a job has changed.
std::vector<std::uint8_t> pack_list_job(umbrix_node const& job);
umbrix_node unpack_list_job(std::vector<std::uint8_t> const& bytes);

} // namespace umbrixlib::toolkit
