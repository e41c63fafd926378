// SPDX-License-Identifier: MIT
#include "toolkit/pictures/address_space.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/settings/stack_record.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/runs/lost_light.h"
#include "toolkit/tasks/runs/map_picture.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <umbrixlib.h>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

void note_other_size(StackLayer const& layer, PreparedInput const& picture, LayerPictures const& stack,
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
bool fits(StackLayer const& layer, PreparedInput const& picture, LayerPictures const& stack,
          Observer& observer)
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

/// How the samples of an output are saved; empty if the picture is not wanted.
std::optional<SavedAs> samples_of(Output const& output, PictureKind kind)
{
    return output.file.empty()
               ? std::nullopt
               : std::optional(saved_as(output.saving, *output_format(output.file), kind, output.name));
}

void check_outputs(StackJob const& job, LayerPictures const& stack)
{
    for (auto const& [output, kind] :
         {std::pair(&job.normals, PictureKind::kNormals), std::pair(&job.heights, PictureKind::kHeights),
          std::pair(&job.map, PictureKind::kLight)}) {
        if (!output->file.empty()) {
            check_size(*output_format(output->file), output->name, stack.width, stack.height);
            samples_of(*output, kind);
        }
    }
    if (!job.map.file.empty()) {
        check_relief_size(job.settings, job.description.layers.front().file_label(), stack.width,
                          stack.height);
    }
}

/// All layers are in memory at once: their pictures, and the normals and heights that are made of them.
void check_memory(StackJob const& job, PreparedInput const& first)
{
    constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;
    std::size_t const of_one =
        first.picture.bytes.size() + first.picture.texels() * (sizeof(float3) + sizeof(float));
    double const needed = static_cast<double>(of_one) * static_cast<double>(job.description.layers.size());
    if (needed > machine_memory()) {
        throw Failure(
            Fault::kTooManyLayers, job.file,
            fmt::format("{} layers of {} x {} take {:.0f} GiB of memory, and the machine has {:.0f}",
                        job.description.layers.size(), first.width, first.height, needed / kGibibyte,
                        machine_memory() / kGibibyte));
    }
}

void take_layer(StackLayer const& layer, PreparedInput& picture, HeightReading const& reading,
                Observer& observer)
{
    std::string const name = layer.file_label();
    if (layer.is_normal_map) {
        take_for_normals(picture, {}, name, observer); // a layer of normals has no heights
        return;
    }
    if (auto const range = take_for_heights(picture, reading, name, observer)) {
        observer.note(name, {fmt::format("its heights from {:.6g} to {:.6g} are taken for 0 to 1", range->low,
                                         range->high)});
    }
}

/// The library's descriptions of the layers.
LinkedList<n_layer> records_of(LayerPictures const& stack, StackJob const& job)
{
    LinkedList<n_layer> records;
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        StackLayer const* const next =
            i + 1 < stack.layers.size() ? stack.layers[i + 1].description : nullptr;
        records.Add(record_of(*stack.layers[i].description, next, job.description.normal_scale,
                              n_scale_of(job.settings, stack.width)));
    }
    return records;
}

void fill(NLayers& library_stack, LayerPictures const& stack)
{
    for (LayerPicture const& layer : stack.layers) {
        if (layer.description->is_normal_map) {
            library_stack.AddNormalLayer(layer.picture.view());
        } else {
            library_stack.AddLayer(layer.picture.view());
        }
    }
}

/// What the library blends, texel by texel.
struct Blended {
    std::vector<float3> normals;
    std::vector<float> heights; ///< None if nothing needs them.
};

bool needs_heights(StackJob const& job, StackOutputs const& outputs)
{
    return outputs.heights || (outputs.map && !job.map_from_layers);
}

std::vector<float> blended_heights(NLayers& library_stack, std::size_t texels)
{
    float* blended = new float[texels](); // which the stack may put another in the place of
    library_stack.BlendHeightMap(blended);
    std::unique_ptr<float[]> const owner(blended);
    return {blended, blended + texels};
}

Blended blend(StackJob const& job, LayerPictures const& stack, StackOutputs const& outputs,
              Observer& observer)
{
    Blended blended;
    run_in_memory(job.file, observer, [&](RunControl& control) {
        control.enter(kBlendingLayers);
        LinkedList<n_layer> records = records_of(stack, job);
        NLayers library_stack(&records, InMemory{borders_of(job.settings)});
        fill(library_stack, stack);
        library_stack.BlendLayers();
        auto const texels = static_cast<std::size_t>(library_stack.GetResultSize());
        blended.normals.assign(library_stack.GetResult(), library_stack.GetResult() + texels);
        if (needs_heights(job, outputs) && !control.stopping()) {
            control.enter(kBlendingHeights);
            blended.heights = blended_heights(library_stack, texels);
        }
        return control.stopping() ? Outcome::kStopped : Outcome::kDone;
    });
    return blended;
}

/// The blended normals with the blended heights, stretched to their full range, in the alpha.
Picture source_in_bytes(LayerPictures const& stack, Blended const& blended)
{
    Picture const normals = saved_normals(blended.normals.data(), stack.width, stack.height);
    Picture const heights = saved_heights(blended.heights.data(), stack.width, stack.height);
    Picture result = make_picture(normals.width, normals.height, 4);
    for (std::size_t i = 0; i < result.texels(); ++i) {
        std::copy_n(normals.texel(i), 3, result.texel(i));
        result.texel(i)[3] = heights.texel(i)[0];
    }
    return result;
}

/// The same, with the vectors themselves.
Picture source_in_floats(LayerPictures const& stack, Blended const& blended)
{
    std::vector<float> heights = blended.heights;
    stretch_heights(heights.data(), static_cast<std::ptrdiff_t>(heights.size()));
    Picture result = make_picture(stack.width, stack.height, 4, SampleType::kFloat);
    result.kind = PictureKind::kNormals;
    float* to = result.samples<float>().data();
    for (std::size_t i = 0; i < heights.size(); ++i) {
        float3 const& normal = blended.normals[i];
        for (float const value : {normal.x, normal.y, normal.z, heights[i]}) {
            *to++ = value;
        }
    }
    return result;
}

void note_layers_without_normals(LayerPictures const& stack, Observer& observer)
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
Picture make_map_from_layers(StackJob const& job, LayerPictures const& stack, SavedAs const& as,
                             Observer& observer)
{
    note_layers_without_normals(stack, observer);
    LinkedList<n_layer> records = records_of(stack, job);
    NLayers library_stack(&records, InMemory{borders_of(job.settings)});
    fill(library_stack, stack);
    umbrix_options options = options_for(job.settings, Kind::kHeightMap, stack.width);
    options.blend_height = true;
    Picture const no_samples{stack.width, stack.height, 3, {}};
    Picture map = make_umbrix_map(
        {no_samples, job.file, options, as, borders_of(job.settings), &records, &library_stack, job.graphics},
        observer);
    note_lost_light(map, job.file, {no_samples, job.settings, Kind::kHeightMap, false, job.graphics},
                    observer);
    return map;
}

/// Whether the settings' relief makes the normals of all layers.
bool normals_follow_relief(LayerPictures const& stack)
{
    return std::ranges::none_of(stack.layers, [](LayerPicture const& layer) {
        return layer.description->n_scale.has_value() || layer.description->is_normal_map;
    });
}

Picture make_map(StackJob const& job, LayerPictures const& stack, Blended const& blended,
                 StackOutputs const& outputs, Observer& observer)
{
    if (job.map_from_layers) {
        return make_map_from_layers(job, stack, *outputs.map, observer);
    }
    umbrix_options const options = options_for(job.settings, Kind::kNormalMap, stack.width);
    Picture const source =
        outputs.map_of_bytes ? source_in_bytes(stack, blended) : source_in_floats(stack, blended);
    MapOrder order{source, job.file, options, *outputs.map, borders_of(job.settings)};
    order.graphics = job.graphics;
    Picture map = make_umbrix_map(order, observer);
    note_lost_light(map, job.file,
                    {source, job.settings, Kind::kNormalMap, normals_follow_relief(stack), job.graphics},
                    observer);
    return map;
}

/// Type of the samples that hold the most, among the layers of heights.
SampleType deepest_heights(LayerPictures const& stack)
{
    SampleType deepest = SampleType::kUint8;
    for (LayerPicture const& layer : stack.layers) {
        if (!layer.description->is_normal_map) {
            deepest = std::max(deepest, layer.type);
        }
    }
    return deepest;
}

void write_output(Output const& output, Picture const& picture, Observer& observer)
{
    if (!output.file.empty()) {
        write_picture(output.file, *output_format(output.file), output.name, picture,
                      output.saving.compression, observer);
    }
}

} // namespace

bool LayerPictures::are_bytes() const
{
    return std::ranges::all_of(layers,
                               [](LayerPicture const& layer) { return layer.type == SampleType::kUint8; });
}

void add_layer(StackJob const& job, StackLayer const& layer, PreparedInput picture, LayerPictures& stack,
               Observer& observer)
{
    if (!layer.is_normal_map) {
        note_normals_as_heights(layer.file_label(), picture.guess, observer);
    }
    if (stack.layers.empty()) {
        stack.width = picture.width;
        stack.height = picture.height;
        check_outputs(job, stack);
        check_memory(job, picture);
    } else if (!fits(layer, picture, stack, observer)) {
        return;
    }
    take_layer(layer, picture, height_reading_of(job.settings), observer);
    stack.layers.push_back({&layer, std::move(picture.picture), picture.type});
}

StackMade make(StackJob const& job, LayerPictures const& stack, StackOutputs const& outputs,
               Observer& observer)
{
    observer.begin(Phase::kMaking, job.file);
    Blended const blended = blend(job, stack, outputs, observer);
    StackMade made;
    if (outputs.map) {
        made.map = make_map(job, stack, blended, outputs, observer);
        made.map.attributes = attributes_of_map("stack", job.settings);
    }
    if (outputs.normals) {
        made.normals = saved_normals(blended.normals.data(), stack.width, stack.height, *outputs.normals);
        made.normals.attributes = attributes_of_normals("stack", NormalY::kUp, *outputs.normals);
    }
    if (outputs.heights) {
        note_narrowed_heights(deepest_heights(stack), *outputs.heights, job.file, observer);
        made.heights = saved_heights(blended.heights.data(), stack.width, stack.height, *outputs.heights);
        made.heights.attributes = attributes_of_heights("stack");
    }
    return made;
}

StackReport run(StackJob const& job, Observer& observer)
{
    LayerPictures stack;
    for (StackLayer const& layer : job.description.layers) {
        add_layer(job, layer, prepare_input({layer.file, layer.file_label(), job.max_texels}, observer),
                  stack, observer);
    }
    if (job.graphics.device) {
        open_device(job.graphics, job.file, observer);
    }
    StackOutputs const outputs{
        samples_of(job.normals, PictureKind::kNormals), samples_of(job.heights, PictureKind::kHeights),
        samples_of(job.map, PictureKind::kLight),
        stack.are_bytes() &&
            samples_of(job.map, PictureKind::kLight).value_or(SavedAs{SampleType::kFloat}).depth ==
                SampleType::kUint8};
    StackMade const made = make(job, stack, outputs, observer);
    write_output(job.map, made.map, observer);
    write_output(job.normals, made.normals, observer);
    write_output(job.heights, made.heights, observer);
    return {stack.width, stack.height, stack.layers.size()};
}

} // namespace umbrixlib::toolkit
