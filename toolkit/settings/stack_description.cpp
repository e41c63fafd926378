// SPDX-License-Identifier: MIT
#include "toolkit/settings/stack_description.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

// Called by the JSON library as it meets the parts of a StackJob.
static void to_json(nlohmann::json& fields, StackLayer const& layer)
{
    fields = {{"label", layer.label},
              {"file", layer.file},
              {"is_normal_map", layer.is_normal_map},
              {"blend", layer.blend},
              {"opacity", layer.opacity},
              {"n_scale", layer.n_scale ? nlohmann::json(*layer.n_scale) : nlohmann::json(nullptr)},
              {"detail", layer.detail},
              {"gaussian", layer.gaussian},
              {"depth", layer.depth},
              {"edge_a", layer.edge_a},
              {"edge_b", layer.edge_b}};
}

static void from_json(nlohmann::json const& fields, StackLayer& layer)
{
    fields.at("label").get_to(layer.label);
    fields.at("file").get_to(layer.file);
    fields.at("is_normal_map").get_to(layer.is_normal_map);
    fields.at("blend").get_to(layer.blend);
    fields.at("opacity").get_to(layer.opacity);
    if (!fields.at("n_scale").is_null()) {
        layer.n_scale = fields.at("n_scale").get<float>();
    }
    fields.at("detail").get_to(layer.detail);
    fields.at("gaussian").get_to(layer.gaussian);
    fields.at("depth").get_to(layer.depth);
    fields.at("edge_a").get_to(layer.edge_a);
    fields.at("edge_b").get_to(layer.edge_b);
}

static void to_json(nlohmann::json& fields, StackOutput const& output)
{
    fields = {{"file", output.file}, {"name", output.name}};
}

static void from_json(nlohmann::json const& fields, StackOutput& output)
{
    fields.at("file").get_to(output.file);
    fields.at("name").get_to(output.name);
}

void to_json(nlohmann::json& fields, StackJob const& job)
{
    fields = {{"normal_scale", job.description.normal_scale},
              {"layers", job.description.layers},
              {"normals", job.normals},
              {"heights", job.heights},
              {"map", job.map},
              {"map_from_layers", job.map_from_layers}};
}

void from_json(nlohmann::json const& fields, StackJob& job)
{
    fields.at("normal_scale").get_to(job.description.normal_scale);
    fields.at("layers").get_to(job.description.layers);
    fields.at("normals").get_to(job.normals);
    fields.at("heights").get_to(job.heights);
    fields.at("map").get_to(job.map);
    fields.at("map_from_layers").get_to(job.map_from_layers);
}

} // namespace umbrixlib::toolkit
