// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/stack_description.h"

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What a stack file says, and what its user ought to know about it.
struct StackFile {
    StackDescription description;
    std::vector<std::string> notes; ///< Each begins with the layer and the key.
};

/// Reads a stack description in TOML. Relative names of pictures count from the folder of @p file. A Failure
/// names the layer and the key at fault, or the line and the column of what is no TOML.
StackFile read_stack_file(std::filesystem::path const& file);

/// Throws a Failure unless there is a file for each layer.
void check_layer_files(StackDescription const& description);

} // namespace umbrixlib::toolkit
