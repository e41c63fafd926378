// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// One layer of a stack, as its user describes it.
struct StackLayer {
    std::string label; ///< What messages call it: "stack.toml: layer 2".
    std::string file;
    bool is_normal_map = false;
    int blend = 0;                ///< How it joins what lies below it, in the library's numbers.
    float opacity = 100;          ///< Strength of that, per cent.
    std::optional<float> n_scale; ///< Empty: the one that fits the relief.
    float detail = 0;
    float gaussian = 0;
    float depth = 0;
    float edge_a = 0;
    float edge_b = 0;

    /// What messages call its picture.
    std::string file_label() const { return label + ": file: " + file; }
};

/// Layers from the lowest to the uppermost.
struct StackDescription {
    float normal_scale = 1;
    std::vector<StackLayer> layers;
};

/// A picture to be made: the temporary file that is written, empty if the picture is not wanted, and what
/// messages call it.
struct StackOutput {
    std::string file;
    std::string name;
};

/// What a worker is told about a stack.
struct StackJob {
    StackDescription description;
    StackOutput normals;
    StackOutput heights;
    StackOutput map;
    bool map_from_layers = false; ///< The map is made by the library's own way with layers.
};

void to_json(nlohmann::json& fields, StackJob const& job);
void from_json(nlohmann::json const& fields, StackJob& job);

} // namespace umbrixlib::toolkit
