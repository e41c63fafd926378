// SPDX-License-Identifier: MIT
#include "options/kind_option.h"

#include "terminal/complaint.h"

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

} // namespace umbrix_cli
