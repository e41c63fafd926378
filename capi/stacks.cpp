// SPDX-License-Identifier: MIT
#include "capi/pictures_internal.h"
#include "toolkit/base/failure.h"
#include "toolkit/tasks/makers.h"

#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <memory>
#include <utility>

using namespace umbrix_capi;
using namespace umbrixlib::toolkit;

namespace {

constexpr double kAny = 1e6;

float number(double value, double least, double most, char const* name)
{
    if (!(value >= least && value <= most)) { // what is no number, too
        throw WrongArgument(fmt::format("layer: its {} is {}, not {} to {}", name, value, least, most));
    }
    return static_cast<float>(value);
}

StackLayer layer_of(umbrix_layer const& given, umbrix_picture const& picture, std::size_t number_of_layer)
{
    if (int const blend = value_in(given.blend); blend < UMBRIX_BLEND || blend > UMBRIX_ADD) {
        throw WrongArgument("layer: its blend is none of the constants");
    }
    StackLayer layer;
    layer.label = fmt::format("layer {}", number_of_layer);
    layer.file = picture.name;
    layer.is_normal_map = given.normals != 0;
    layer.blend = given.blend;
    layer.opacity = number(given.opacity, -kAny, kAny, "opacity");
    if (!std::isnan(given.n_scale)) {
        layer.n_scale = number(given.n_scale, -kAny, kAny, "n_scale");
    }
    layer.detail = number(given.detail, 0, 100, "detail");
    layer.gaussian = number(given.gaussian, 0, 1000, "gaussian");
    layer.depth = number(given.depth, -100, 100, "depth");
    layer.edge_a = number(given.convex, -kAny, kAny, "convex");
    layer.edge_b = number(given.concave, -kAny, kAny, "concave");
    return layer;
}

constexpr double kAsTheRelief = std::numeric_limits<double>::quiet_NaN();

umbrix_layer const kUsualLayer{
    sizeof(umbrix_layer), 0, UMBRIX_BLEND, 100.0, kAsTheRelief, 0.0, 0.0, 0.0, 0.0, 0.0};

std::optional<SavedAs> floats_for(umbrix_picture const* result)
{
    return result != nullptr ? std::optional(SavedAs{SampleType::kFloat}) : std::nullopt;
}

} // namespace

void umbrix_layer_default(umbrix_layer* layer)
{
    fill_record(layer, kUsualLayer);
}

umbrix_code umbrix_stack_new(umbrix_context* context, umbrix_stack** stack)
{
    return call(context, [&](CallObserver&) {
        require(stack, "stack");
        *stack = std::make_unique<umbrix_stack>().release();
    });
}

void umbrix_stack_free(umbrix_stack* stack)
{
    delete stack;
}

umbrix_code umbrix_stack_add(umbrix_context* context, umbrix_stack* stack, umbrix_picture const* picture,
                             umbrix_layer const* layer)
{
    return call(context, [&](CallObserver&) {
        require(stack, "stack");
        DecodedFile file = decoded(picture, "picture");
        umbrix_layer const given = record_of(layer, sizeof(umbrix_layer), "layer");
        StackLayer description = layer_of(given, *picture, stack->layers.size() + 1);
        if (stack->layers.empty() && description.is_normal_map) {
            throw Failure(Fault::kFirstLayerNotHeights, picture->name, "the first layer is a normal map");
        }
        stack->layers.push_back({std::move(description), std::move(file)});
    });
}

umbrix_code umbrix_stack_set_normal_scale(umbrix_context* context, umbrix_stack* stack, double scale)
{
    return call(context, [&](CallObserver&) {
        require(stack, "stack");
        stack->normal_scale = static_cast<double>(number(scale, -kAny, kAny, "normal_scale"));
    });
}

umbrix_code umbrix_stack_make(umbrix_context* context, umbrix_stack const* stack,
                              umbrix_settings const* settings, umbrix_picture* normals,
                              umbrix_picture* heights, umbrix_picture* map)
{
    return work(context, nullptr, [&](CallObserver& observer) {
        require(stack, "stack");
        if (stack->layers.empty()) {
            throw Failure(Fault::kNoLayers, "stack", "it has no layers");
        }
        StackJob job;
        job.file = "stack";
        job.settings = settings_of(settings);
        job.description.normal_scale = static_cast<float>(stack->normal_scale);
        for (umbrix_stack::Layer const& layer : stack->layers) {
            job.description.layers.push_back(layer.description);
        }
        LayerPictures layers;
        for (std::size_t i = 0; i < stack->layers.size(); ++i) {
            StackLayer const& layer = job.description.layers[i];
            DecodedFile copy = stack->layers[i].picture;
            Source const source{layer.file, layer.label, 0.0};
            add_layer(job, layer, prepare_image(DecodedImage(std::move(copy)), source, observer), layers,
                      observer);
        }
        PictureSize const size{layers.width, layers.height};
        for (auto const& [result, name, count] :
             {std::tuple(normals, "normals", 3), std::tuple(heights, "heights", 1),
              std::tuple(map, "map", 4)}) {
            if (result != nullptr) {
                check_result(result, name, size, count);
            }
        }
        bool const narrow =
            layers.are_bytes() && job.settings.save_depth.value_or(SampleType::kUint8) == SampleType::kUint8;
        StackMade made =
            make(job, layers, {floats_for(normals), floats_for(heights), floats_for(map), narrow}, observer);
        for (auto& [result, picture] : {std::pair(normals, &made.normals), std::pair(heights, &made.heights),
                                        std::pair(map, &made.map)}) {
            if (result != nullptr) {
                give(std::move(*picture), job.file, *result);
            }
        }
    });
}
