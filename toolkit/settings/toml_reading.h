// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <toml++/toml.h>

namespace umbrixlib::toolkit {

/// A TOML value and the words that say where it stands.
struct TomlEntry {
    std::string subject; ///< "stack.toml: layer 2: opacity".
    toml::node const& node;

    /// Throws a Failure about the value and its line.
    [[noreturn]] void refuse(std::string const& what, std::string const& advice) const;

    /// The value as a text, or a Failure with @p advice.
    std::string text(std::string const& advice) const;

    /// The value as a finite number in @p minimum..@p maximum, or a Failure.
    double number(double minimum, double maximum) const;
};

/// Parses TOML. A Failure names @p subject, the line and the column, and gives @p advice.
toml::table parse_toml(std::string_view text, std::string const& subject, std::string const& advice);

/// Reads and parses a file. A Failure if it is not there, cannot be read, or is too large to be @p what.
toml::table parse_toml_file(std::filesystem::path const& file, std::string const& what,
                            std::string const& advice);

} // namespace umbrixlib::toolkit
