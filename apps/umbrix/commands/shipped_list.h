// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/say.h"
#include "toolkit_names.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace umbrix_cli {

inline constexpr char const* kJsonHelp = "Write one JSON object instead of text";

/// Lists what is shipped under names: presets, profiles.
/// @param kind What JSON calls them: "presets".
/// @param read Reads one of a name; it has a description.
template <typename Read>
void list_shipped(char const* kind, std::vector<std::string_view> const& names, bool json, Read&& read)
{
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (std::string_view const name : names) {
        std::string const description = read(std::string(name)).description;
        if (json) {
            all.push_back({{"name", name}, {"description", description}});
        } else {
            say("{:10} {}", name, description);
        }
    }
    if (json) {
        say_json({{kind, all}}, 2);
    }
}

} // namespace umbrix_cli
