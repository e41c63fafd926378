// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/settings/stack_record.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/library_run.h"
#include "toolkit/tasks/map_picture.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <fmt/format.h>
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

void note_other_size(StackLayer const& layer, PreparedInput const& picture, ReadyStack const& stack,
                     Observer& observer)
{
    bool const smaller = picture.width < stack.width || picture.height < stack.height;
    bool const larger = picture.width > stack.width || picture.height > stack.height;
    observer.note(
        layer.file_label(),
        {fmt::format("its size is {} x {} and that of the first layer {} x {}, so it {}{}{}", picture.width,
                     picture.height, stack.width, stack.height, smaller ? "repeats" : "",
                     smaller && larger ? " and " : "", larger ? "is cut off" : "")});
}

/// Whether the layer counts. A normal layer of another size than the first layer's would be left out by the
/// library without a word, and if it were the last one, the result would be saved at its size.
bool fits(StackLayer const& layer, PreparedInput const& picture, ReadyStack const& stack, Observer& observer)
{
    if (picture.width == stack.width && picture.height == stack.height) {
        return true;
    }
    if (layer.is_normal_map) {
        observer.note(
            layer.file_label(),
            {fmt::format("its size is {} x {} and that of the first layer {} x {}, so this normal layer "
                         "is left out",
                         picture.width, picture.height, stack.width, stack.height)});
        return false;
    }
    note_other_size(layer, picture, stack, observer);
    return true;
}

void check_outputs(StackJob const& job, ReadyStack const& stack)
{
    for (Output const* output : {&job.normals, &job.heights, &job.map}) {
        if (!output->file.empty()) {
            check_size(*output_format(output->file), output->name, stack.width, stack.height);
        }
    }
    if (!job.map.file.empty()) {
        check_relief_size(job.settings, job.description.layers.front().file_label(), stack.width,
                          stack.height);
    }
}

/// Decodes the layers one by one; the library gets uncompressed TGA files of 24 bits. All checks that need
/// the size of the pictures are made as soon as it is known.
ReadyStack read_layers(StackJob const& job, Observer& observer)
{
    ReadyStack stack;
    for (StackLayer const& layer : job.description.layers) {
        PreparedInput const picture =
            prepare_input({layer.file, layer.file_label(), job.max_texels}, observer);
        if (!layer.is_normal_map && picture.guess.kind == Kind::kNormalMap) {
            observer.note(layer.file_label(), {"this looks like a normal map (" + picture.guess.reason +
                                               "); its brightness is taken for heights"});
        }
        if (stack.layers.empty()) {
            stack.width = picture.width;
            stack.height = picture.height;
            check_outputs(job, stack);
        } else if (!fits(layer, picture, stack, observer)) {
            continue;
        }
        std::string const name = fmt::format("layer{}.tga", stack.layers.size());
        std::string const file = (std::filesystem::path(job.scratch) / name).string();
        write_source(file, picture.has_alpha ? without_alpha(picture.picture) : picture.picture);
        stack.layers.push_back({&layer, file});
    }
    return stack;
}

/// The library's descriptions of the layers.
LinkedList<n_layer> records_of(ReadyStack const& stack, StackJob const& job)
{
    LinkedList<n_layer> records;
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        StackLayer const* const next =
            i + 1 < stack.layers.size() ? stack.layers[i + 1].description : nullptr;
        n_layer record = record_of(*stack.layers[i].description, next, job.description.normal_scale,
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
Blended blend(StackJob const& job, ReadyStack const& stack, Observer& observer)
{
    std::filesystem::path const folder(job.scratch);
    std::string const normals = (folder / "normals.tga").string();
    std::string const heights = (folder / "heights.tga").string();
    run_library(job.file, observer, [&](std::string* status, int* progress) {
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

void note_layers_without_normals(ReadyStack const& stack, Observer& observer)
{
    for (std::size_t i = 1; i < stack.layers.size(); ++i) {
        StackLayer const& layer = *stack.layers[i].description;
        if (layer.blend == 0) {
            observer.note(layer.label + ": blend",
                          {"the map has nothing of the normals of this layer", NoteKind::kNormalsLeftOut});
        }
    }
}

/// The map as the library itself makes it with layers. Their heights take the place of the picture's.
Picture make_map_from_layers(StackJob const& job, ReadyStack const& stack, Observer& observer)
{
    note_layers_without_normals(stack, observer);
    LinkedList<n_layer> records = records_of(stack, job);
    NLayers library_stack(&records);
    fill(library_stack, stack);
    umbrix_options options = options_for(job.settings, Kind::kHeightMap, stack.width);
    options.blend_height = true;
    return make_umbrix_map(make_picture(stack.width, stack.height, 3), job.file, options, job.scratch,
                           observer, &records, &library_stack, job.graphics);
}

Picture make_map(StackJob const& job, ReadyStack const& stack, Blended const& blended, Observer& observer)
{
    if (job.map_from_layers) {
        return make_map_from_layers(job, stack, observer);
    }
    umbrix_options const options = options_for(job.settings, Kind::kNormalMap, stack.width);
    return make_umbrix_map(with_alpha(blended), job.file, options, job.scratch, observer, nullptr, nullptr,
                           job.graphics);
}

void write_output(Output const& output, Picture const& picture, Observer& observer)
{
    write_picture(output.file, *output_format(output.file), output.name, picture, observer);
}

} // namespace

StackReport run(StackJob const& job, Observer& observer)
{
    ReadyStack const stack = read_layers(job, observer);
    if (job.graphics.device) {
        open_device(job.graphics, job.file, observer);
    }
    observer.begin(Phase::kMaking, job.file);
    Blended const blended = blend(job, stack, observer);
    if (!job.map.file.empty()) {
        write_output(job.map, make_map(job, stack, blended, observer), observer);
    }
    write_output(job.normals, blended.normals, observer);
    if (!job.heights.file.empty()) {
        write_output(job.heights, blended.heights, observer);
    }
    return {stack.width, stack.height, stack.layers.size()};
}

} // namespace umbrixlib::toolkit
