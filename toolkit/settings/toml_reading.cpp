// SPDX-License-Identifier: MIT
#include "toolkit/settings/toml_reading_internal.h"

#include "toolkit/files/preflight.h"
#include "toolkit/settings/toml_depth.h"

#include <cmath>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <optional>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = 1024 * 1024;
constexpr std::size_t kDeepest = 16; ///< Four levels are in use.

std::string content_of(fs::path const& file, std::string const& what, Fault fault)
{
    check_plain_file(file, what);
    std::error_code error;
    if (fs::file_size(file, error) > kLargestFile) {
        throw Failure(fault, file.string(), "it is too large for " + what);
    }
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) {
        throw Failure(Fault::kUnreadable, file.string(), "it cannot be read");
    }
    return content;
}

} // namespace

void TomlEntry::refuse(Fault fault, std::string const& what, std::string const& remedy) const
{
    throw Failure(fault, fmt::format("{} (line {})", subject, node.source().begin.line), what, remedy);
}

void TomlEntry::refuse(std::string const& what, std::string const& remedy) const
{
    refuse(Fault::kWrongValue, what, remedy);
}

std::string TomlEntry::text(std::string const& remedy) const
{
    std::optional<std::string> const value = node.value_exact<std::string>();
    if (!value) {
        refuse("it is not a text in quotes", remedy);
    }
    return *value;
}

std::string TomlEntry::word(std::string const& remedy) const
{
    auto const whole = node.value_exact<std::int64_t>();
    return whole ? fmt::format("{}", *whole) : text(remedy);
}

double TomlEntry::number(double minimum, double maximum) const
{
    std::optional<double> const value = node.is_number() ? node.value<double>() : std::nullopt;
    if (!value || !std::isfinite(*value)) {
        refuse("it is not a number", fmt::format("give {} to {}", minimum, maximum));
    }
    if (*value < minimum || *value > maximum) {
        refuse(fmt::format("{} is out of range", *value), fmt::format("give {} to {}", minimum, maximum));
    }
    return *value;
}

toml::table parse_toml(std::string_view text, std::string const& subject, Fault fault)
{
    if (auto const line = line_nested_deeper(text, kDeepest)) {
        throw Failure(fault, fmt::format("{}: line {}", subject, *line),
                      fmt::format("it nests more than {} levels deep", kDeepest));
    }
    try {
        return toml::parse(text);
    } catch (toml::parse_error const& error) {
        toml::source_position const at = error.source().begin;
        throw Failure(fault, fmt::format("{}: line {}, column {}", subject, at.line, at.column),
                      std::string(error.description()));
    }
}

toml::table parse_toml_file(fs::path const& file, std::string const& what, Fault fault)
{
    return parse_toml(content_of(file, what, fault), file.string(), fault);
}

} // namespace umbrixlib::toolkit
