// SPDX-License-Identifier: MIT
#include "toolkit/tasks/runs/map_picture.h"

#include "toolkit/base/failure.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/library_run.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace umbrixlib::toolkit {

namespace {

MapRequest request_for(MapOrder const& order)
{
    Picture const& source = order.source;
    MapRequest request;
    request.source = source.view();
    bool const are_vectors = source.kind == PictureKind::kNormals && source.type == SampleType::kFloat;
    request.coding = are_vectors ? NormalCoding::kVectors : NormalCoding::kColours;
    request.options = order.options;
    request.layers = order.layers;
    request.stack = order.stack;
    request.borders = order.borders;
    if (order.graphics.device) {
        request.gpu = gpu_options(*order.graphics.device);
    }
    if (order.as.as_the_library_does()) {
        request.form = source.has_alpha() ? MapForm::kBytes : MapForm::kColourBytes;
    }
    request.wants_source_heights = order.options.keep_buffers;
    return request;
}

/// Puts the heights into the alpha as they were read. The alpha that a run makes has them times the height
/// scale, which leaves a usual relief only a few of the 256 steps.
Picture with_heights_in_alpha(Picture const& map, float const* heights, bool inverted)
{
    Picture result = in_colour(map, true);
    Picture greys = make_picture(map.width, map.height, 1, SampleType::kFloat);
    std::transform(heights, heights + map.texels(), greys.samples<float>().begin(),
                   [inverted](float height) { return inverted ? 1.0f - height : height; });
    greys = in_samples(std::move(greys), {map.type, Rounding::kNearest});
    std::size_t const size = sample_size(map.type);
    for (std::size_t i = 0; i < map.texels(); ++i) {
        std::copy_n(&greys.bytes[i * size], size, &result.bytes[(4 * i + 3) * size]);
    }
    return result;
}

/// What a run has made, as a picture.
Picture picture_of(MapResult const& made, int channels, SavedAs const& as)
{
    if (!as.as_the_library_does()) {
        return saved_map(made.map.get(), made.cols, made.rows, channels, as);
    }
    Picture map = make_picture(made.cols, made.rows, channels);
    map.kind = PictureKind::kLight;
    std::copy_n(made.bytes.get(), map.bytes.size(), map.bytes.data());
    return map;
}

} // namespace

void check_relief_size(Settings const& settings, std::string const& name, int width, int height)
{
    if (settings.occlusion && (width < 2 || height < 2)) {
        throw Failure(Fault::kTooSmallForRelief, name,
                      fmt::format("{} x {} texels have no relief to look at", width, height));
    }
}

void note_narrowed_heights(SampleType read, SavedAs const& as, std::string const& name, Observer& observer)
{
    if (read != SampleType::kUint8 && as.depth == SampleType::kUint8) {
        observer.note(name, {fmt::format("its heights are read in {} and written in 8 bits",
                                         read == SampleType::kUint16 ? "16 bits"
                                         : read == SampleType::kHalf ? "halves"
                                                                     : "floats"),
                             NoteKind::kHeightsNarrowed});
    }
}

Picture make_umbrix_map(MapOrder order, Observer& observer)
{
    int const channels = order.source.has_alpha() ? 4 : 3;
    if (order.graphics.match_cpu) {
        match_processor(order.options, channels);
    }
    MapRequest request = request_for(order);
    MapResult result;
    run_in_memory(
        order.name, observer,
        [&](RunControl& control) {
            request.control = &control;
            result = make_map(request);
            return result.outcome;
        },
        order.graphics.device ? std::numeric_limits<std::size_t>::max() : order.source.texels());
    if (order.graphics.device) {
        note_fallback(order.name, observer);
    }
    Picture map = picture_of(result, channels, order.as);
    if (!order.options.keep_buffers) {
        return map;
    }
    bool const inverted = order.graphics.device && heights_are_inverted(order.options, channels);
    return with_heights_in_alpha(map, result.source_heights.get(), inverted);
}

} // namespace umbrixlib::toolkit
