// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"
#include "toolkit/base/overloaded.h"
#include "toolkit/settings/setting_table.h"

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <string>
#include <vector>

/// @file
/// States with anything in each of their fields, the same ones for the same seed on every system.

namespace umbrix_desktop::test {

class RandomState {
public:
    explicit RandomState(unsigned seed) : random_(seed) {}

    /// From 0 to below @p count.
    std::size_t below(std::size_t count) { return random_() % count; }

    bool coin() { return below(2) == 1; }

    double number(double low, double high)
    {
        return low + (high - low) * static_cast<double>(random_()) / static_cast<double>(random_.max());
    }

    /// "", or a whole name with what shells and TOML take for something else.
    std::string name()
    {
        constexpr std::array<char const*, 12> kPieces = {"brick", " ",  "'",        "\"", "\\", "$HOME",
                                                         "*",     "\n", "\xC3\xA4", "-x", "#",  "/"};
        if (below(8) == 0) {
            return "";
        }
        std::string text = "/";
        for (std::size_t left = below(8); left > 0; --left) {
            text += kPieces[below(kPieces.size())];
        }
        return text;
    }

    /// Changes a setting to anything that its row allows.
    void change(toolkit::SettingRow const& row, toolkit::Settings& settings)
    {
        using toolkit::Settings;
        auto const real = [&] { return static_cast<float>(number(row.minimum, row.maximum)); };
        std::visit(toolkit::Overloaded{
                       [&](bool Settings::*field) { settings.*field = coin(); },
                       [&](int Settings::*field) {
                           auto const span = static_cast<std::size_t>(row.maximum - row.minimum) + 1;
                           settings.*field = static_cast<int>(row.minimum) + static_cast<int>(below(span));
                       },
                       [&](float Settings::*field) { settings.*field = real(); },
                       [&](std::optional<float> Settings::*field) {
                           settings.*field = coin() ? std::nullopt : std::optional(real());
                       },
                       [&](toolkit::HeightRange Settings::*field) {
                           using How = toolkit::HeightRange::How;
                           How const how = std::array{How::kAsIs, How::kOwn, How::kGiven}[below(3)];
                           settings.*field = {how};
                           if (how == How::kGiven) {
                               double const low = number(-10, 10);
                               settings.*field = {how, low, low + number(0.5, 10)};
                           }
                       },
                       [&](toolkit::InvalidTexels Settings::*field) {
                           settings.*field = {coin() ? std::nullopt : std::optional(number(-10, 10))};
                       },
                       [&](auto) { choose(row, settings, static_cast<int>(below(choices(row).size()))); },
                   },
                   row.field);
    }

    toolkit::StackLayer layer()
    {
        toolkit::StackLayer made;
        made.file = "/" + name() + "x";
        made.is_normal_map = coin();
        made.blend = static_cast<int>(below(4));
        made.opacity = real(0, 100);
        made.n_scale = coin() ? std::nullopt : std::optional(real(-1000, 1000));
        made.detail = real(0, 100);
        made.gaussian = real(0, 1000);
        made.depth = real(-100, 100);
        made.edge_a = real(-10, 10);
        made.edge_b = real(-10, 10);
        return made;
    }

    Show show() { return static_cast<Show>(below(kShows)); }

    /// The changes that there are; one is drawn, and makes another state as a rule.
    void change(State& state)
    {
        std::vector<std::function<void()>> ways{
            [&] { state.source = name(); },
            [&] { state.profile = name(); },
            [&] { state.lighting.light.azimuth_degrees = number(-180, 360); },
            [&] { state.lighting.light.elevation_degrees = number(0, 90); },
            [&] { state.lighting.exposure = number(0, 1); },
            [&] { state.lighting.ambient = number(0, 1); },
            [&] { state.lighting.weights = static_cast<toolkit::WeightRule>(below(3)); },
            [&] { state.lighting.albedo = name(); },
            [&] { state.layers.description.normal_scale = real(-10, 10); },
            [&] {
                state.layers.description.save_depth =
                    coin() ? std::nullopt : std::optional(static_cast<umbrixlib::SampleType>(below(4)));
            },
            [&] { add_layer(state.layers); },
            [&] { change_layers(state.layers); },
            [&] { state.view.left = show(); },
            [&] { state.view.right = show(); },
            [&] { state.view.arrangement = static_cast<Arrangement>(below(4)); },
            [&] { state.view.split = number(0, 1); },
            [&] { state.view.channel = static_cast<Channel>(below(5)); },
            [&] { state.view.zoom = coin() ? 0 : number(0.01, 64); },
            [&] { state.view.centre_x = number(-1, 2); },
            [&] { state.view.centre_y = number(-1, 2); },
            [&] { state.view.tiles = 1 + static_cast<int>(below(8)); },
        };
        auto const rows = toolkit::setting_table();
        std::size_t const drawn = below(ways.size() + rows.size());
        if (drawn < ways.size()) {
            ways[drawn]();
        } else {
            change(rows[drawn - ways.size()], state.settings);
        }
    }

    /// A state in which about all fields were changed.
    State state()
    {
        State made;
        for (int i = 0; i < 200; ++i) {
            change(made);
        }
        return made;
    }

private:
    float real(double low, double high) { return static_cast<float>(number(low, high)); }

    void add_layer(Layers& layers)
    {
        auto const at = static_cast<std::ptrdiff_t>(below(layers.shown.size() + 1));
        layers.description.layers.insert(layers.description.layers.begin() + at, layer());
        layers.shown.insert(layers.shown.begin() + at, coin());
    }

    void change_layers(Layers& layers)
    {
        std::size_t const count = layers.shown.size();
        if (count == 0) {
            return;
        }
        std::size_t const at = below(count);
        switch (below(4)) {
        case 0:
            layers.shown[at] = !layers.shown[at];
            break;
        case 1:
            layers.description.layers[at] = layer();
            break;
        case 2:
            std::swap(layers.description.layers[at], layers.description.layers[below(count)]);
            break;
        default:
            layers.description.layers.erase(layers.description.layers.begin() +
                                            static_cast<std::ptrdiff_t>(at));
            layers.shown.erase(layers.shown.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }

    std::mt19937 random_;
};

} // namespace umbrix_desktop::test
