// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/settings/stack_record.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/library_run.h"
#include "toolkit/tasks/map_picture.h"
#include "toolkit/tasks/prepared_input.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

namespace {

/// A layer whose picture the library can read.
struct ReadyLayer {
    StackLayer const* description;
    std::string file;
};

struct ReadyStack {
    int width = 0; ///< Of the first layer, and so of all pictures.
    int height = 0;
    std::vector<ReadyLayer> layers;
};

void note_other_size(PreparedInput const& picture, ReadyStack const& stack)
{
    bool const smaller = picture.width < stack.width || picture.height < stack.height;
    bool const larger = picture.width > stack.width || picture.height > stack.height;
    send_note({fmt::format("its size is {} x {} and that of the first layer {} x {}, so it {}{}{}",
                           picture.width, picture.height, stack.width, stack.height, smaller ? "repeats" : "",
                           smaller && larger ? " and " : "", larger ? "is cut off" : "")});
}

/// Whether the layer counts. A normal layer of another size than the first layer's would be left out by the
/// library without a word, and if it were the last one, the result would be saved at its size.
bool fits(StackLayer const& layer, PreparedInput const& picture, ReadyStack const& stack)
{
    if (picture.width == stack.width && picture.height == stack.height) {
        return true;
    }
    if (layer.is_normal_map) {
        send_note(
            {fmt::format("its size is {} x {} and that of the first layer {} x {}, so this normal layer "
                         "is left out",
                         picture.width, picture.height, stack.width, stack.height)});
        return false;
    }
    note_other_size(picture, stack);
    return true;
}

void check_outputs(Job const& job, ReadyStack const& stack)
{
    for (StackOutput const* output : {&job.stack.normals, &job.stack.heights, &job.stack.map}) {
        if (!output->file.empty()) {
            send_file(output->name);
            check_size(*output_format(output->file), stack.width, stack.height);
        }
    }
    if (!job.stack.map.file.empty()) {
        send_file(job.stack.description.layers.front().file_label());
        check_relief_size(job.settings, stack.width, stack.height);
    }
}

/// Decodes the layers one by one; the library gets uncompressed TGA files of 24 bits. All checks that need
/// the size of the pictures are made as soon as it is known.
ReadyStack read_layers(Job const& job)
{
    ReadyStack stack;
    for (StackLayer const& layer : job.stack.description.layers) {
        send_file(layer.file_label());
        Job decoding = job;
        decoding.input = layer.file;
        PreparedInput const picture = prepare_input(decoding);
        if (!layer.is_normal_map && picture.guess.kind == Kind::kNormalMap) {
            send_note({"this looks like a normal map (" + picture.guess.reason +
                       "); its brightness is taken for heights"});
        }
        if (stack.layers.empty()) {
            stack.width = picture.width;
            stack.height = picture.height;
            check_outputs(job, stack);
        } else if (!fits(layer, picture, stack)) {
            continue;
        }
        std::string const name = fmt::format("layer{}.tga", stack.layers.size());
        std::string const file = (std::filesystem::path(job.scratch) / name).string();
        write_source(file, picture.has_alpha ? without_alpha(picture.picture) : picture.picture);
        stack.layers.push_back({&layer, file});
    }
    send_file("");
    return stack;
}

/// The library's descriptions of the layers.
LinkedList<n_layer> records_of(ReadyStack const& stack, Job const& job)
{
    LinkedList<n_layer> records;
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        StackLayer const* const next =
            i + 1 < stack.layers.size() ? stack.layers[i + 1].description : nullptr;
        n_layer record = record_of(*stack.layers[i].description, next, job.stack.description.normal_scale,
                                   n_scale_of(job.settings, stack.width));
        record.filename = stack.layers[i].file;
        records.Add(record);
    }
    return records;
}

void fill(NLayers& library_stack, ReadyStack const& stack)
{
    for (ReadyLayer const& layer : stack.layers) {
        if (layer.description->is_normal_map) {
            library_stack.AddNormalLayer(layer.file.c_str());
        } else {
            library_stack.AddLayer(layer.file.c_str());
        }
    }
}

struct Blended {
    Picture normals;
    Picture heights;
};

/// The library saves TGA files, whatever the outputs are called: its own way with ".vtf" names loses a row of
/// normals, and gives whole heights on one thread only.
Blended blend(Job const& job, ReadyStack const& stack)
{
    std::filesystem::path const folder(job.scratch);
    std::string const normals = (folder / "normals.tga").string();
    std::string const heights = (folder / "heights.tga").string();
    run_library([&](std::string* status, int* progress) {
        *status = kBlendingLayers;
        LinkedList<n_layer> records = records_of(stack, job);
        NLayers library_stack(&records);
        fill(library_stack, stack);
        *progress = 250;
        library_stack.BlendLayers();
        *progress = 750;
        return library_stack.SaveResult(normals.c_str()) && library_stack.SaveHeight(heights.c_str());
    });
    return {read_result(normals, stack.width, stack.height, 3),
            read_result(heights, stack.width, stack.height, 3)};
}

/// The blended normals with the blended heights in the alpha.
Picture with_alpha(Blended const& blended)
{
    Picture result = make_picture(blended.normals.width, blended.normals.height, 4);
    for (std::size_t i = 0; i < result.texels(); ++i) {
        std::copy_n(blended.normals.texel(i), 3, result.texel(i));
        result.texel(i)[3] = blended.heights.texel(i)[0];
    }
    return result;
}

void note_layers_without_normals(ReadyStack const& stack)
{
    for (std::size_t i = 1; i < stack.layers.size(); ++i) {
        StackLayer const& layer = *stack.layers[i].description;
        if (layer.blend == 0) {
            send_file(layer.label + ": blend");
            send_note({"the map has nothing of the normals of this layer", NoteKind::kNormalsLeftOut});
            send_file("");
        }
    }
}

/// The map as the library itself makes it with layers. Their heights take the place of the picture's.
Picture make_map_from_layers(Job const& job, ReadyStack const& stack)
{
    note_layers_without_normals(stack);
    LinkedList<n_layer> records = records_of(stack, job);
    NLayers library_stack(&records);
    fill(library_stack, stack);
    umbrix_options options = options_for(job.settings, Kind::kHeightMap, stack.width);
    options.blend_height = true;
    return make_umbrix_map(make_picture(stack.width, stack.height, 3), options, job.scratch, &records,
                           &library_stack, job.graphics);
}

Picture make_map(Job const& job, ReadyStack const& stack, Blended const& blended)
{
    if (job.stack.map_from_layers) {
        return make_map_from_layers(job, stack);
    }
    umbrix_options const options = options_for(job.settings, Kind::kNormalMap, stack.width);
    return make_umbrix_map(with_alpha(blended), options, job.scratch, nullptr, nullptr, job.graphics);
}

void write_output(StackOutput const& output, Picture const& picture)
{
    send_file(output.name);
    write_picture(output.file, *output_format(output.file), picture);
    send_file("");
}

} // namespace

nlohmann::json run_stack_task(Job const& job)
{
    ReadyStack const stack = read_layers(job);
    if (job.graphics.device) {
        open_device(job.graphics);
    }
    send_phase(Phase::kMaking);
    Blended const blended = blend(job, stack);
    if (!job.stack.map.file.empty()) {
        write_output(job.stack.map, make_map(job, stack, blended));
    }
    write_output(job.stack.normals, blended.normals);
    if (!job.stack.heights.file.empty()) {
        write_output(job.stack.heights, blended.heights);
    }
    return {{"width", stack.width}, {"height", stack.height}, {"layers", stack.layers.size()}};
}

} // namespace umbrixlib::toolkit
