// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// @file
/// JSON in which names of files survive. A name is bytes and JSON is text: a byte that is no UTF-8 stands as
/// one of \udc80 to \udcff, which is what Python's surrogateescape makes of it.

namespace umbrixlib::toolkit {

/// What becomes of characters that a terminal obeys or hides.
enum class Unseen {
    kAsTheyAre,
    kAsNumbers, ///< \u202e. The text means the same.
};

/// @p value as JSON. Its strings are any bytes; numbers that JSON has no word for become null.
/// @param indent Spaces for each level; below 0: all in one line.
std::string to_json_text(nlohmann::ordered_json const& value, int indent = -1,
                         Unseen unseen = Unseen::kAsTheyAre);

/// Reads JSON. Its strings have the bytes that stood as \udc80 to \udcff. What is no JSON is discarded.
nlohmann::json from_json_text(std::string_view text);

} // namespace umbrixlib::toolkit
