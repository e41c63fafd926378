// SPDX-License-Identifier: MIT
#include "options/kind_option.h"

#include "terminal/complaint.h"

#include <CLI/Error.hpp>
#include <array>
#include <fmt/format.h>
#include <functional>
#include <utility>

namespace umbrix_cli {

void declare_kind(CLI::App& command, std::optional<Kind>& kind)
{
    auto* const height = command.add_flag_callback(
        "--height-map", [&kind] { kind = Kind::kHeightMap; }, "The input is a height map [default: guess]");
    auto* const normal = command.add_flag_callback(
        "--normal-map", [&kind] { kind = Kind::kNormalMap; }, "The input is a normal map [default: guess]");
    height->excludes(normal)->group("Input");
    normal->group("Input");
}

void check_normal_y_usage(std::optional<NormalY> normal_y, std::optional<Kind> kind)
{
    if (normal_y && kind == Kind::kHeightMap) {
        throw UsageError("--normal-y", "a height map has no green to point anywhere", "leave it out");
    }
}

CLI::Option* declare_picture_kind(CLI::App& command, std::optional<PictureKind>& kind,
                                  std::string const& what)
{
    std::function<void(std::string const&)> const parse = [&kind](std::string const& text) {
        constexpr std::array<std::pair<char const*, PictureKind>, 3> kKinds{
            {{"normal", PictureKind::kNormals},
             {"height", PictureKind::kHeights},
             {"umbrix", PictureKind::kLight}}};
        for (auto const& [name, value] : kKinds) {
            if (text == name) {
                kind = value;
                return;
            }
        }
        throw CLI::ValidationError("--kind", fmt::format("'{}' is not one of normal, height, umbrix", text));
    };
    return command
        .add_option_function<std::string>(
            "--kind", parse,
            fmt::format(
                "{} [normal, height, umbrix; default: as the file tells, or its name, or else a guess]",
                what))
        ->type_name("KIND");
}

} // namespace umbrix_cli
