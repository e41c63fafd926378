// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// The word among @p known that @p word was probably meant to be: few letters differ. Empty if there is none.
std::string_view meant_by(std::string_view word, std::vector<std::string_view> const& known);

} // namespace umbrixlib::toolkit
