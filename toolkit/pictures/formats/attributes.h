// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// One thing that a picture tells of how it was made: "mode" and "projection".
struct Attribute {
    std::string key;   ///< Small letters, digits and '-', at most 32.
    std::string value; ///< Printable ASCII, at most 200 letters.

    bool operator==(Attribute const&) const = default;
};

/// All of it; the first key is "umbrix". A file keeps them as one text: PNG in an iTXt chunk, TIFF in its
/// description, OpenEXR in a string.
using Attributes = std::vector<Attribute>;

/// No text of a file is longer.
inline constexpr std::size_t kMostAttributeText = 4096;

/// The value of @p key; empty if there is none.
std::string value_of(Attributes const& attributes, std::string_view key);

/// Changes the value of @p key, or adds it. A picture that tells nothing of itself stays so.
void set_value(Attributes& attributes, std::string_view key, std::string_view value);

/// A line for each: "mode: projection".
std::string attribute_text(Attributes const& attributes);

/// What attribute_text() gave; empty for all other texts, which anyone may have put into a file.
Attributes parse_attributes(std::string_view text);

} // namespace umbrixlib::toolkit
