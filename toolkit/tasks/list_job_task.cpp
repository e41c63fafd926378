// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_settings.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/lost_light.h"
#include "toolkit/tasks/runs/map_picture.h"
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

namespace {

/// The library's record for a job of a list: the fields that the list holds, and around them what every run
/// of the tool has.
umbrix_options options_of_job(umbrix_data const& record, int width)
{
    umbrix_options options = options_for(settings_of(record), kind_of(record), width);
#define UMBRIX_COPY(type, name, offset) options.name = record.name;
    UMBRIX_DATA_FIELDS(UMBRIX_COPY, UMBRIX_COPY)
#undef UMBRIX_COPY
    return options;
}

/// Decodes the layers into @p stack, whose records are @p layers.
void read_layers(ListJob const& job, LinkedList<n_layer>& layers, NLayers& stack, Observer& observer)
{
    for (n_layer const& layer : job.layers) {
        PreparedInput picture =
            prepare_input({layer.filename, layer.filename, job.files.max_texels}, observer);
        take_for_heights(picture, job.reading, layer.filename, observer);
        layers.Add(layer);
        stack.AddLayer(picture.picture.view());
    }
}

} // namespace

ListReport run(ListJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    Settings const settings = settings_of(job.data);
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    if (kind_of(job.data) == Kind::kNormalMap) {
        take_for_normals(input, job.reading, files.input, observer);
    } else {
        take_for_heights(input, job.reading, files.input, observer);
    }
    check_relief_size(settings, files.input, input.width, input.height);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kLight, files.output.name);
    LinkedList<n_layer> layers;
    NLayers stack(&layers, InMemory{});
    read_layers(job, layers, stack, observer);
    if (job.graphics.device) {
        open_device(job.graphics, files.input, observer);
    }
    observer.begin(Phase::kMaking, files.input);
    bool const has_layers = layers.count > 0;
    Picture map = make_umbrix_map({input.picture,
                                   files.input,
                                   options_of_job(job.data, input.width),
                                   as,
                                   {},
                                   has_layers ? &layers : nullptr,
                                   has_layers ? &stack : nullptr,
                                   job.graphics},
                                  observer);
    Picture const no_samples{input.width, input.height, 3, {}};
    note_lost_light(
        map, files.input,
        {has_layers ? no_samples : input.picture, settings, kind_of(job.data), false, job.graphics},
        observer);
    map.attributes = attributes_of_map("list", settings);
    write_picture(files.output.file, format, files.output.name, map, files.output.saving.compression,
                  observer);
    return {map.width, map.height, kind_of(job.data)};
}

} // namespace umbrixlib::toolkit
