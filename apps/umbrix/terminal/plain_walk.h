// SPDX-License-Identifier: MIT
#pragma once

#include "options/graphics_option.h"
#include "terminal/interrupts.h"
#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

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

/// Has a worker run the library's own folder batch. It replaces what is there and does not tell what became
/// of each file. After the first interrupt the file at work is finished, and Stopped thrown.
void run_plain_walk(PlainWalk const& walk, Interrupts const& interrupts);

} // namespace umbrix_cli
