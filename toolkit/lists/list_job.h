// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// A job of a work list as bytes, for a worker and for telling whether a job has changed.
std::vector<std::uint8_t> pack_list_job(umbrix_node const& job);
umbrix_node unpack_list_job(std::vector<std::uint8_t> const& bytes);

/// The layers of a job, from the lowest to the uppermost.
std::vector<n_layer> layers_of(umbrix_node const& job);

/// A job with neither source nor stack object.
umbrix_node node_of(umbrix_data const& data, std::vector<n_layer> const& layers);

} // namespace umbrixlib::toolkit
