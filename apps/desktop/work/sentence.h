// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

#include <string>

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

/// What is wrong, and what helps: "brick.png: it is damaged; save it again in a program that opens it".
/// @param subject Of a failure that names none.
std::string sentence_of(toolkit::Failure const& failure, std::string const& subject = {});

} // namespace umbrix_desktop
