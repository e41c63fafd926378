// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/shipped_texts.h"
#include "toolkit/settings/toml_reading_internal.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// TOML that users ask for by name: presets, profiles. Some are shipped, others are files of the user.
struct NamedToml {
    char const* what; ///< "preset".
    std::span<ShippedText const> shipped;
    Fault not_written_so; ///< A file is no TOML, or has a key that is unknown.
    Fault unknown_name;   ///< None that is shipped has the name.
};

/// How the name of a file ends.
inline constexpr char const* kTomlExtension = ".toml";

/// The key of the line that tells what it is for.
inline constexpr char const* kDescriptionKey = "description";

/// Reads the one called @p name. A name with a '/' in it or with kTomlExtension at its end is that of a file,
/// any other one that of a shipped text. A Failure if there is none, or it is no TOML.
toml::table read_named_toml(std::string const& name, NamedToml const& kind);

/// In the order of the alphabet.
std::vector<std::string_view> names_of(std::span<ShippedText const> shipped);

/// The value of kDescriptionKey. A Failure if it is not one line of text.
std::string description_in(TomlEntry const& entry);

/// A text in quotes, as TOML has it.
std::string toml_text(std::string const& text);

/// The line with that key and value, or nothing without a description.
std::string description_line(std::string const& description);

/// Throws a Failure about a key that is none of @p known.
[[noreturn]] void refuse_key(TomlEntry const& entry, std::string_view key,
                             std::vector<std::string_view> const& known, NamedToml const& kind);

} // namespace umbrixlib::toolkit
