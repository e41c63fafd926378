// SPDX-License-Identifier: MIT
#include "toolkit/tasks/job.h"

#include "toolkit/settings/settings_json.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

std::vector<std::uint8_t> pack(Job const& job)
{
    nlohmann::json fields{
        {"task", job.task},
        {"input", job.input},
        {"output", job.output},
        {"scratch", job.scratch},
        {"max_texels", job.max_texels},
        {"settings", to_json(job.settings)},
        {"kind", nullptr},
        {"normal_y", job.normal_y},
        {"graphics", job.graphics},
        {"compare_cpu", job.compare_cpu},
        {"azimuth_degrees", job.azimuth_degrees},
        {"elevation_degrees", job.elevation_degrees},
        {"directions", job.directions},
        {"cell", job.cell},
        {"exposure", job.exposure},
        {"list_job", job.list_job},
        {"search", job.search},
        {"recurse", job.recurse},
        {"normals", job.normals},
        {"fit_gaussian", job.fit_gaussian},
        {"stack", job.stack},
    };
    if (job.kind) {
        fields["kind"] = *job.kind;
    }
    // Not as text: a file name need not be UTF-8.
    return nlohmann::json::to_cbor(fields);
}

Job unpack_job(std::vector<std::uint8_t> const& bytes)
{
    nlohmann::json const fields = nlohmann::json::from_cbor(bytes);
    Job job;
    fields.at("task").get_to(job.task);
    fields.at("input").get_to(job.input);
    fields.at("output").get_to(job.output);
    fields.at("scratch").get_to(job.scratch);
    fields.at("max_texels").get_to(job.max_texels);
    job.settings = settings_from_json(fields.at("settings"));
    if (!fields.at("kind").is_null()) {
        job.kind = fields.at("kind").get<Kind>();
    }
    fields.at("normal_y").get_to(job.normal_y);
    fields.at("graphics").get_to(job.graphics);
    fields.at("compare_cpu").get_to(job.compare_cpu);
    fields.at("azimuth_degrees").get_to(job.azimuth_degrees);
    fields.at("elevation_degrees").get_to(job.elevation_degrees);
    fields.at("directions").get_to(job.directions);
    fields.at("cell").get_to(job.cell);
    fields.at("exposure").get_to(job.exposure);
    fields.at("list_job").get_to(job.list_job);
    fields.at("search").get_to(job.search);
    fields.at("recurse").get_to(job.recurse);
    fields.at("normals").get_to(job.normals);
    fields.at("fit_gaussian").get_to(job.fit_gaussian);
    fields.at("stack").get_to(job.stack);
    return job;
}

} // namespace umbrixlib::toolkit
