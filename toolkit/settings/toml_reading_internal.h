// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

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
    [[noreturn]] void refuse(Fault fault, std::string const& what, std::string const& remedy = {}) const;

    /// The same for a value that is not a right one.
    [[noreturn]] void refuse(std::string const& what, std::string const& remedy) const;

    /// The value as a text, or a Failure with @p remedy.
    std::string text(std::string const& remedy) const;

    /// The same for a choice whose words may be whole numbers, with or without quotes.
    std::string word(std::string const& remedy) const;

    /// The value as a finite number in @p minimum..@p maximum, or a Failure.
    double number(double minimum, double maximum) const;
};

/// Parses TOML. A Failure with @p fault names @p subject, the line and the column.
toml::table parse_toml(std::string_view text, std::string const& subject, Fault fault);

/// Reads and parses a file. A Failure if it is not there or cannot be read; one with @p fault if it is no
/// TOML or too large to be @p what.
toml::table parse_toml_file(std::filesystem::path const& file, std::string const& what, Fault fault);

} // namespace umbrixlib::toolkit
