// SPDX-License-Identifier: MIT
#include "toolkit/tasks/map_picture.h"

#include "toolkit/base/failure.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/library_run.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>

namespace umbrixlib::toolkit {

namespace {

/// What a run with `keep_buffers` leaves to its caller.
struct KeptBuffers {
    std::unique_ptr<float3[]> occlusion;
    std::unique_ptr<float3[]> normals;
    std::unique_ptr<float[]> heights;
};

KeptBuffers run_pipeline(Intermediate const& files, std::string const& name, umbrix_options& options,
                         Observer& observer, LinkedList<n_layer>* layers, NLayers* stack,
                         std::optional<int> device)
{
    run_library(name, observer, [&](std::string* status, int* progress) {
        if (device) {
            return UmbrixFile_GPU(gpu_options(*device), files.source, files.result, options, layers, stack,
                                  status, progress);
        }
        return UmbrixFile(files.source, files.result, options, layers, stack, status, progress);
    });
    KeptBuffers kept;
    if (options.keep_buffers) {
        kept.occlusion.reset(options.ao_map);
        kept.normals.reset(options.normal_map);
    }
    if (options.keep_buffers || device) {
        kept.heights.reset(options.height_copy);
    }
    if (device) {
        note_fallback(name, observer);
    }
    return kept;
}

/// Puts the heights into the alpha as they were read. The alpha that a run makes has them times the height
/// scale, which leaves a usual relief only a few of the 256 steps.
Picture with_heights_in_alpha(Picture const& map, float const* heights, bool inverted)
{
    Picture result = make_picture(map.width, map.height, 4);
    for (std::size_t i = 0; i < map.texels(); ++i) {
        std::copy_n(map.texel(i), 3, result.texel(i));
        float const height = inverted ? 1.0f - heights[i] : heights[i];
        result.texel(i)[3] = static_cast<std::uint8_t>(std::clamp(height, 0.0f, 1.0f) * 255.0f + 0.5f);
    }
    return result;
}

} // namespace

void check_relief_size(Settings const& settings, std::string const& name, int width, int height)
{
    if (settings.occlusion && (width < 2 || height < 2)) {
        throw Failure(Fault::kTooSmallForRelief, name,
                      fmt::format("{} x {} texels have no relief to look at", width, height));
    }
}

Picture make_umbrix_map(Picture source, std::string const& name, umbrix_options options,
                        std::filesystem::path const& folder, Observer& observer, LinkedList<n_layer>* layers,
                        NLayers* stack, Graphics const& graphics)
{
    Intermediate const files(folder);
    write_source(files.source, source);
    int const width = source.width;
    int const height = source.height;
    int const channels = source.channels;
    source = {};
    if (graphics.match_cpu) {
        match_processor(options, channels);
    }
    KeptBuffers const kept = run_pipeline(files, name, options, observer, layers, stack, graphics.device);
    Picture map = read_result(files.result, width, height, channels);
    if (!options.keep_buffers) {
        return map;
    }
    bool const inverted = graphics.device && heights_are_inverted(options, channels);
    return with_heights_in_alpha(map, kept.heights.get(), inverted);
}

} // namespace umbrixlib::toolkit
