// SPDX-License-Identifier: MIT
#include "toolkit/settings/toml_reading.h"

#include "toolkit/base/failure.h"

#include <cmath>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <optional>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = 1024 * 1024;

std::string content_of(fs::path const& file, std::string const& what, std::string const& advice)
{
    std::error_code error;
    fs::file_status const status = fs::status(file, error);
    if (!fs::exists(status)) {
        throw Failure(file.string(),
                      status.type() == fs::file_type::not_found ? "there is no such file" : error.message(),
                      "check the name");
    }
    if (!fs::is_regular_file(status)) {
        throw Failure(file.string(), fs::is_directory(status) ? "it is a folder" : "it is not a plain file",
                      "name " + what);
    }
    if (fs::file_size(file, error) > kLargestFile) {
        throw Failure(file.string(), "it is too large for " + what, advice);
    }
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) {
        throw Failure(file.string(), "it cannot be read", "check its access rights");
    }
    return content;
}

} // namespace

void TomlEntry::refuse(std::string const& what, std::string const& advice) const
{
    throw Failure(fmt::format("{} (line {})", subject, node.source().begin.line), what, advice);
}

std::string TomlEntry::text(std::string const& advice) const
{
    std::optional<std::string> const value = node.value_exact<std::string>();
    if (!value) {
        refuse("it is not a text in quotes", advice);
    }
    return *value;
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

toml::table parse_toml(std::string_view text, std::string const& subject, std::string const& advice)
{
    try {
        return toml::parse(text);
    } catch (toml::parse_error const& error) {
        toml::source_position const at = error.source().begin;
        throw Failure(fmt::format("{}: line {}, column {}", subject, at.line, at.column),
                      std::string(error.description()), advice);
    }
}

toml::table parse_toml_file(fs::path const& file, std::string const& what, std::string const& advice)
{
    return parse_toml(content_of(file, what, advice), file.string(), advice);
}

} // namespace umbrixlib::toolkit
