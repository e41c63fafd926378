// SPDX-License-Identifier: MIT
#pragma once

namespace umbrix_cli {

/// Brings out what was printed. A Complaint if not all of it could be: the disk is full, or nobody reads any
/// more.
void finish_standard_output();

} // namespace umbrix_cli
