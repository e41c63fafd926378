// SPDX-License-Identifier: MIT
#include "encode.h"
#include "intermediate.h"
#include "job.h"
#include "library_run.h"
#include "prepared_input.h"
#include "worker_channel.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <umbrixlib.h>

namespace umbrix_cli {

namespace {

/// What a run with `keep_buffers` leaves to its caller.
struct KeptBuffers {
    std::unique_ptr<float3[]> occlusion;
    std::unique_ptr<float3[]> normals;
    std::unique_ptr<float[]> heights;
};

void check_settings(Settings const& settings, PreparedInput const& input)
{
    if (settings.occlusion && (input.width < 2 || input.height < 2)) {
        throw Failure("input",
                      fmt::format("{} x {} texels have no relief to look at", input.width, input.height),
                      "give at least 2 x 2, or --no-occlusion");
    }
}

/// A normal map whose alpha is the same everywhere describes flat ground.
bool has_relief_in_alpha(Picture const& picture)
{
    if (picture.channels < 4) {
        return false;
    }
    for (std::size_t i = 1; i < picture.texels(); ++i) {
        if (picture.texel(i)[3] != picture.texel(0)[3]) {
            return true;
        }
    }
    return false;
}

void note_normal_map(Job const& job, PreparedInput const& input)
{
    if (!has_relief_in_alpha(input.picture)) {
        bool const asks_for_heights =
            job.settings.occlusion || job.settings.generate_normal || job.settings.height_in_alpha;
        if (asks_for_heights) {
            send_note("a normal map carries its heights in its alpha, and this one has none there: its "
                      "ground counts "
                      "as flat");
        }
    } else if (is_tiff(job.input)) {
        send_note(
            "the alpha of a TIFF may have been multiplied into its colours: if the map looks wrong, save the "
            "picture as PNG");
    }
}

/// The library's normals have green up; a picture's own maker chose the direction when it was made.
void turn_green(Picture& normals)
{
    for (std::size_t i = 0; i < normals.texels(); ++i) {
        std::uint8_t& green = normals.texel(i)[1];
        green = static_cast<std::uint8_t>(255 - green);
    }
}

KeptBuffers run_pipeline(std::string const& source, std::string const& result, umbrix_options& options)
{
    run_library([&](std::string* status, int* progress) {
        LinkedList<n_layer> layers;
        return UmbrixFile(source, result, options, &layers, nullptr, status, progress);
    });
    if (!options.keep_buffers) {
        return {};
    }
    return {std::unique_ptr<float3[]>(options.ao_map), std::unique_ptr<float3[]>(options.normal_map),
            std::unique_ptr<float[]>(options.height_copy)};
}

/// Puts the heights into the alpha as they were read. The alpha that a run makes has them times the height
/// scale, which leaves a usual relief only a few of the 256 steps.
Picture with_heights_in_alpha(Picture const& map, float const* heights)
{
    Picture result = make_picture(map.width, map.height, 4);
    for (std::size_t i = 0; i < map.texels(); ++i) {
        std::copy_n(map.texel(i), 3, result.texel(i));
        result.texel(i)[3] = static_cast<std::uint8_t>(std::clamp(heights[i], 0.0f, 1.0f) * 255.0f + 0.5f);
    }
    return result;
}

} // namespace

nlohmann::json run_map_task(Job const& job)
{
    PreparedInput input = prepare_input(job);
    check_settings(job.settings, input);
    OutputFormat const& format = *output_format(job.output);
    check_size(format, input.width, input.height);
    Kind const kind = job.kind.value_or(input.guess.kind);
    if (kind == Kind::kNormalMap) {
        note_normal_map(job, input);
        if (job.normal_y == NormalY::kDown) {
            turn_green(input.picture);
        }
    }

    Intermediate const files(job.scratch);
    send_phase(Phase::kMaking);
    write_source(files.source, input.picture);
    int const channels = input.picture.channels;
    input.picture = {};
    umbrix_options options = options_for(job.settings, kind, input.width);
    KeptBuffers const kept = run_pipeline(files.source, files.result, options);
    Picture map = read_result(files.result, input.width, input.height, channels);
    if (job.settings.height_in_alpha) {
        map = with_heights_in_alpha(map, kept.heights.get());
    }
    write_picture(job.output, format, map);
    return {{"width", input.width},
            {"height", input.height},
            {"kind", kind},
            {"guessed", !job.kind.has_value()},
            {"reason", input.guess.reason},
            {"n_scale", options.n_scale}};
}

} // namespace umbrix_cli
