// SPDX-License-Identifier: MIT
#pragma once

#include "graphics_option.h"
#include "interrupts.h"
#include "settings.h"

#include <filesystem>
#include <string>

namespace umbrix_cli {

/// What `umbrix batch --plain` hands to the library.
struct PlainWalk {
    std::filesystem::path folder;
    std::string search;
    bool recurse = false;
    Settings settings{};
    Kind kind = Kind::kHeightMap;
    Graphics graphics;
};

/// The name of the file whose presence in a worker's scratch folder asks the library's walk to stop.
inline constexpr char const* kStopRequest = "stop";

/// Has a worker run the library's own folder batch. It replaces what is there and does not tell what became
/// of each file. After the first interrupt the file at work is finished, and Interrupted thrown.
void run_plain_walk(PlainWalk const& walk, Interrupts const& interrupts);

} // namespace umbrix_cli
