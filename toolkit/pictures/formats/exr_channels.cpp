// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/exr_channels.h"

#include "toolkit/base/text.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <map>
#include <optional>

namespace umbrixlib::toolkit {

namespace {

/// Channels of one layer by what follows the last dot of their names, in lower case.
using Layer = std::map<std::string, std::size_t>;

std::map<std::string, Layer> layers_of(std::vector<std::string> const& names)
{
    std::map<std::string, Layer> layers;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::size_t const dot = names[i].rfind('.');
        bool const in_layer = dot != std::string::npos;
        layers[in_layer ? names[i].substr(0, dot) : ""].emplace(
            lower_case(in_layer ? names[i].substr(dot + 1) : names[i]), i);
    }
    return layers;
}

/// The picture in a layer; nothing if its channels have other names.
std::vector<std::size_t> picture_in(Layer const& layer)
{
    using Names = std::vector<char const*>;
    for (Names const& names : {Names{"r", "g", "b"}, Names{"x", "y", "z"}, Names{"y"}}) {
        if (!std::all_of(names.begin(), names.end(), [&](auto name) { return layer.contains(name); })) {
            continue;
        }
        std::vector<std::size_t> taken;
        for (char const* const name : names) {
            taken.push_back(layer.at(name));
        }
        if (layer.contains("a")) {
            taken.push_back(layer.at("a"));
        }
        return taken;
    }
    return {};
}

bool has_chroma(Layer const& layer)
{
    return layer.contains("ry") || layer.contains("by");
}

/// The one channel that there is, with A if there is that too.
std::vector<std::size_t> only_channel(std::vector<std::string> const& names)
{
    if (names.size() == 1) {
        return {0};
    }
    if (names.size() == 2 && (names[0] == "A" || names[1] == "A")) {
        return names[0] == "A" ? std::vector<std::size_t>{1, 0} : std::vector<std::size_t>{0, 1};
    }
    return {};
}

std::string list_of(std::vector<std::string> const& names)
{
    constexpr std::size_t kMostNames = 6;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
        list += fmt::format("{}{}", i == 0 ? "" : ", ", names[i]);
    }
    return names.size() > kMostNames ? fmt::format("{} and {} more", list, names.size() - kMostNames) : list;
}

} // namespace

ExrChannels choose_channels(std::vector<std::string> const& names, ExrChannelsRefused& refused)
{
    std::map<std::string, Layer> const layers = layers_of(names);
    if (std::any_of(layers.begin(), layers.end(), [](auto const& layer) {
            return has_chroma(layer.second) && !layer.second.contains("r");
        })) {
        refused = {"it is an OpenEXR picture of luminance and chroma", "save it with channels R, G and B"};
        return {};
    }
    if (auto const plain = layers.find(""); plain != layers.end()) {
        if (std::vector<std::size_t> taken = picture_in(plain->second); !taken.empty()) {
            return {std::move(taken), ""};
        }
    }
    ExrChannels found;
    for (auto const& [name, layer] : layers) {
        std::vector<std::size_t> taken = picture_in(layer);
        if (!taken.empty() && !found.taken.empty()) {
            refused = {"it is an OpenEXR picture of several layers", "save one of them alone"};
            return {};
        }
        if (!taken.empty()) {
            found = {std::move(taken), name};
        }
    }
    if (found.taken.empty()) {
        found.taken = only_channel(names);
    }
    if (found.taken.empty()) {
        refused = {fmt::format("it is an OpenEXR picture with the channels {}", list_of(names)),
                   "save it with R, G and B, or with Y"};
    }
    return found;
}

} // namespace umbrixlib::toolkit
