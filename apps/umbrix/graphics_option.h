// SPDX-License-Identifier: MIT
#pragma once

#include "settings.h"

#include <CLI/App.hpp>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace umbrix_cli {

/// Whether a map is made on a graphics processor, and how.
struct Graphics {
    std::optional<int> device; ///< Number of the device; empty: on the processor.
    bool match_cpu = false;    ///< Heights are turned and scaled to those of a map made on the processor.
};

void to_json(nlohmann::json& fields, Graphics const& graphics);
void from_json(nlohmann::json const& fields, Graphics& graphics);

/// Adds --gpu [N] and --match-cpu to @p command, which then writes @p graphics. Returns --gpu.
CLI::Option* declare_graphics(CLI::App& command, Graphics& graphics);

/// Throws a Failure if the settings leave nothing to match a map of the processor with.
void check_graphics_usage(Graphics const& graphics, Settings const& settings);

/// The words of a command line, with the number that may follow --gpu tied to it, or 0 if none does: an
/// option whose value may be missing would take the name of a picture for it.
std::vector<std::string> with_device_numbers(std::vector<std::string> const& words);

} // namespace umbrix_cli
