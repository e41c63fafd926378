// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {
}

/// The command line speaks the toolkit's words without its name.
namespace umbrix_cli {

using namespace umbrixlib::toolkit;

} // namespace umbrix_cli
