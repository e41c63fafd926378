// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/base/suggestion.h"
#include "toolkit/base/utf8.h"
#include "toolkit/settings/named_toml_internal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

namespace {

bool names_file(std::string const& name)
{
    return name.find('/') != std::string::npos || name.ends_with(kTomlExtension);
}

toml::table read_shipped_toml(std::string const& name, NamedToml const& kind)
{
    for (ShippedText const& each : kind.shipped) {
        if (name == each.name) {
            return parse_toml(each.text, name, kind.not_written_so);
        }
    }
    auto const names = names_of(kind.shipped);
    std::string_view const meant = meant_by(name, names);
    throw Failure(kind.unknown_name, name, fmt::format("'{}' is not a shipped {}", name, kind.what),
                  fmt::format("{}; the shipped ones are {}, and the name of a file ends in {}",
                              meant.empty() ? "check the name" : fmt::format("perhaps {} is meant", meant),
                              fmt::join(names, ", "), kTomlExtension));
}

} // namespace

toml::table read_named_toml(std::string const& name, NamedToml const& kind)
{
    return names_file(name) ? parse_toml_file(name, fmt::format("a {}", kind.what), kind.not_written_so)
                            : read_shipped_toml(name, kind);
}

std::vector<std::string_view> names_of(std::span<ShippedText const> shipped)
{
    std::vector<std::string_view> names;
    for (ShippedText const& each : shipped) {
        names.emplace_back(each.name);
    }
    return names;
}

std::string description_in(TomlEntry const& entry)
{
    std::string text = entry.text("give one line of text");
    if (has_control_characters(text)) {
        entry.refuse("it has line breaks or other control characters", "give one line of text");
    }
    return text;
}

std::string toml_text(std::string const& text)
{
    nlohmann::json const value = text; // JSON writes a text as TOML does
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string description_line(std::string const& description)
{
    return description.empty() ? "" : fmt::format("{} = {}\n", kDescriptionKey, toml_text(description));
}

void refuse_key(TomlEntry const& entry, std::string_view key, std::vector<std::string_view> const& known,
                NamedToml const& kind)
{
    std::string_view const meant = meant_by(key, known);
    if (meant.empty()) {
        entry.refuse(kind.not_written_so, "there is no such key");
    }
    entry.refuse(Fault::kUnknownKey, "there is no such key", fmt::format("perhaps {} is meant", meant));
}

} // namespace umbrixlib::toolkit
