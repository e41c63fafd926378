// SPDX-License-Identifier: MIT
#include "example_textures.h"

#include "textures_internal.h"

#include <array>
#include <stdexcept>
#include <string>

namespace umbrixlib::examples {
namespace {

struct Recipe {
    Texture texture;
    double (*height)(Point);
};

constexpr std::array kRecipes{
    Recipe{{"cobbles", 0.05}, cobbles}, Recipe{{"bricks", 0.02}, bricks},   Recipe{{"cloth", 0.025}, cloth},
    Recipe{{"dunes", 0.04}, dunes},     Recipe{{"terrain", 0.15}, terrain}, Recipe{{"noise", 0.1}, noise},
};

constexpr auto kTextures = [] {
    std::array<Texture, kRecipes.size()> all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = kRecipes[i].texture;
    }
    return all;
}();

Recipe const& recipe(std::string_view name)
{
    auto const found =
        std::ranges::find(kRecipes, name, [](Recipe const& each) { return each.texture.name; });
    if (found == kRecipes.end()) {
        throw std::invalid_argument("no texture is called " + std::string(name));
    }
    return *found;
}

} // namespace

std::span<Texture const> textures()
{
    return kTextures;
}

Texture const& texture(std::string_view name)
{
    return recipe(name).texture;
}

std::vector<float> heights(std::string_view name, int side)
{
    auto const height = recipe(name).height;
    if (side < 1) {
        throw std::invalid_argument("a texture needs a side of at least 1");
    }
    std::vector<double> raw;
    raw.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            raw.push_back(height({(x + 0.5) / side, (y + 0.5) / side}));
        }
    }
    auto const [lowest, highest] = std::ranges::minmax(raw);
    double const range = highest > lowest ? highest - lowest : 1.0;
    std::vector<float> result;
    result.reserve(raw.size());
    for (double const each : raw) {
        result.push_back(static_cast<float>((each - lowest) / range));
    }
    return result;
}

} // namespace umbrixlib::examples
