// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/depth.h"

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

    bool operator==(StackLayer const&) const = default;
};

/// Layers from the lowest to the uppermost.
struct StackDescription {
    float normal_scale = 1;
    std::vector<StackLayer> layers;
    std::optional<SampleType> save_depth; ///< Of all results. Empty: what their formats hold as a rule.

    bool operator==(StackDescription const&) const = default;
};

} // namespace umbrixlib::toolkit
