// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/lists/list_job.h"
#include "toolkit/lists/list_settings.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/map_picture.h"
#include "toolkit/tasks/prepared_input.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

namespace {

/// The library's record for a job of a list: the fields that the list holds, and around them what every run
/// of the tool has.
umbrix_options options_of_job(umbrix_node const& record, int width)
{
    umbrix_options options = options_for(settings_of(record), kind_of(record), width);
#define UMBRIX_COPY(type, name, offset) options.name = record.name;
    UMBRIX_DATA_FIELDS(UMBRIX_COPY, UMBRIX_COPY)
#undef UMBRIX_COPY
    return options;
}

/// Decodes the layers into pictures that the library can read, and names those in the descriptions.
void read_layers(Job const& job, LinkedList<n_layer>& layers)
{
    int number = 0;
    for (auto* each = layers.head; each != nullptr; each = each->next) {
        send_file(each->data.filename);
        Job decoding = job;
        decoding.input = each->data.filename;
        PreparedInput const picture = prepare_input(decoding);
        std::string const file =
            (std::filesystem::path(job.scratch) / fmt::format("layer{}.tga", number++)).string();
        write_source(file, picture.has_alpha ? without_alpha(picture.picture) : picture.picture);
        each->data.filename = file;
    }
    send_file("");
}

} // namespace

nlohmann::json run_list_job_task(Job const& job)
{
    umbrix_node record = unpack_list_job(job.list_job);
    Settings const settings = settings_of(record);
    PreparedInput input = prepare_input(job);
    check_relief_size(settings, input.width, input.height);
    OutputFormat const& format = *output_format(job.output);
    check_size(format, input.width, input.height);
    read_layers(job, record.layers);
    if (job.graphics.device) {
        open_device(job.graphics);
    }
    send_phase(Phase::kMaking);
    NLayers stack(&record.layers);
    for (auto const* each = record.layers.head; each != nullptr; each = each->next) {
        stack.AddLayer(each->data.filename.c_str());
    }
    bool const has_layers = record.layers.count > 0;
    Picture const map =
        make_umbrix_map(std::move(input.picture), options_of_job(record, input.width), job.scratch,
                        has_layers ? &record.layers : nullptr, has_layers ? &stack : nullptr, job.graphics);
    write_picture(job.output, format, map);
    return {{"width", map.width}, {"height", map.height}, {"kind", kind_of(record)}};
}

} // namespace umbrixlib::toolkit
