// SPDX-License-Identifier: MIT
#pragma once

#include "variants.h"

namespace umbrixlib::test {

/// The tables of a documents' page, in Markdown: for each format how many files are taken, how exactly, and
/// what kinds these are; all refusals; all remarks.
std::string format_table(std::vector<Variant> const& variants, std::vector<Result> const& results);

} // namespace umbrixlib::test
