// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// A visitor of a variant, put together from one callable for each kind.
template <typename... Bodies>
struct Overloaded : Bodies... {
    using Bodies::operator()...;
};
template <typename... Bodies>
Overloaded(Bodies...) -> Overloaded<Bodies...>; // clang 14 does not find it by itself

} // namespace umbrixlib::toolkit
