// SPDX-License-Identifier: MIT
// Wall time of whole jobs, as a user waits for them: the command line from its start to its end, its parts,
// and other programs that do the like, where they are installed (gegl, magick or convert).
#include "jobs/job_parts.h"
#include "measure/clocks.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/program.h"
#include "measure/record.h"
#include "temporary_folder.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/settings/stack_file.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>

namespace {

using namespace umbrixlib;
using namespace umbrixlib::bench;

constexpr double kMostTexels = 1e9;
constexpr int kSide = 4096;
constexpr int kBatchFiles = 200;

/// The pictures of all jobs, and how much time each job may take.
class Workplace {
public:
    explicit Workplace(bool quick) : effort(quick ? Effort{1, 1, 0, 0} : Effort{5, 3, 30, 0}) {}

    std::string file(char const* name) const { return (folder_ / name).string(); }

    /// An 8-bit grey picture of the terrain.
    std::string height_map(char const* name, int size) const
    {
        std::vector<float> const heights = heights_of("terrain", size);
        toolkit::Picture picture = toolkit::make_picture(size, size, 1);
        std::transform(heights.begin(), heights.end(), picture.bytes.begin(),
                       [](float height) { return static_cast<unsigned char>(height * 255.0f); });
        if (!toolkit::png_encoder().encode(file(name), picture)) {
            std::exit(1);
        }
        return file(name);
    }

    Effort const effort;

private:
    test::TemporaryFolder folder_;
};

Contender program(char const* name, std::vector<std::string> words)
{
    return {name, [words = std::move(words)] { run_program(words); }};
}

void normal_map(Workplace const& place)
{
    std::string const input = place.height_map("heights.png", kSide);
    std::string const output = place.file("normals.png");
    std::vector<Contender> contenders = {
        program("ours", {UMBRIX_TOOL, "normal", input, "-o", output, "--overwrite"}),
        program("convert", {UMBRIX_TOOL, "convert", input, "-o", place.file("copy.png"), "--overwrite"})};
    if (has_program("gegl")) {
        contenders.push_back(
            program("gegl", {"gegl", input, "-o", place.file("gegl.png"), "--", "gegl:normal-map"}));
    }
    for (char const* const magick : {"magick", "convert"}) {
        if (has_program(magick)) {
            contenders.push_back(program("magick", {magick, input, place.file("magick.png")}));
            break;
        }
    }
    OthersWatch const others;
    Seconds const seconds = interleaved(contenders, place.effort, wall_seconds);
    toolkit::NormalJob job;
    job.files = {input, {output, output}, kMostTexels};
    print({{"what", "job"},
           {"job", "normal, PNG"},
           {"side", kSide},
           {"seconds", seconds},
           {"phases", phases_of(job, place.effort.least_rounds)},
           {"others", others.share()}});
}

void umbrix_map(Workplace const& place)
{
    std::string const input = place.height_map("heights.png", kSide);
    for (char const* const name : {"map.png", "map.tga"}) {
        std::string const output = place.file(name);
        OthersWatch const others;
        Seconds const seconds = interleaved(
            {program("ours", {UMBRIX_TOOL, "map", input, "-o", output, "--rays", "64", "--overwrite"})},
            place.effort, wall_seconds);
        toolkit::MapJob job;
        job.files = {input, {output, output}, kMostTexels};
        job.settings.rays = 64;
        print({{"what", "job"},
               {"job", std::filesystem::path(name).extension() == ".png" ? "map, PNG" : "map, TGA"},
               {"side", kSide},
               {"seconds", seconds},
               {"parts", parts_of(job, place.effort)},
               {"phases", phases_of(job, place.effort.least_rounds)},
               {"others", others.share()}});
    }
}

void batch(Workplace const& place)
{
    std::filesystem::path const folder = place.file("batch");
    std::filesystem::create_directory(folder);
    constexpr int kSmallSide = 512;
    std::string const first = place.height_map("small.png", kSmallSide);
    int const files = place.effort.least_rounds > 1 ? kBatchFiles : kBatchFiles / 10;
    for (int i = 0; i < files; ++i) {
        std::filesystem::copy_file(first, folder / fmt::format("texture{:03}.png", i));
    }
    std::vector<std::string> const words = {
        UMBRIX_TOOL, "batch", folder.string(), "--keep-tree", place.file("made"),
        "--jobs",    "2",     "--overwrite"};
    std::vector<std::string> const kinds[] = {{"--map", "--rays", "128"}, {"--normal"}};
    for (std::vector<std::string> const& kind : kinds) {
        std::vector<std::string> whole = words;
        whole.insert(whole.end(), kind.begin(), kind.end());
        OthersWatch const others;
        Seconds const seconds = interleaved({program("ours", whole)}, place.effort, wall_seconds);
        print({{"what", "batch"},
               {"job", kind[0].substr(2)},
               {"side", kSmallSide},
               {"files", files},
               {"seconds", seconds},
               {"others", others.share()}});
    }
}

void stack(Workplace const& place)
{
    int const side = kSide / 2;
    std::string const file = place.file("stack.toml");
    std::string const layer = place.height_map("layer.png", side);
    std::ofstream text(file);
    for (char const* const blend : {"blend", "add", "multiply", "overlay", "blend"}) {
        text << fmt::format("[[layer]]\nfile = \"{}\"\nblend = \"{}\"\nopacity = 50\nn_scale = 1.0\n", layer,
                            blend);
    }
    text.close();
    toolkit::StackJob job;
    job.file = file;
    job.description = toolkit::read_stack_file(file).description;
    job.normals = {place.file("stacked.png"), "stacked.png"};
    job.map = {place.file("stacked_map.png"), "stacked_map.png"};
    job.max_texels = kMostTexels;
    OthersWatch const others;
    Seconds const seconds = interleaved({program("ours", {UMBRIX_TOOL, "stack", file, "-o", job.normals.file,
                                                          "--map", job.map.file, "--overwrite"})},
                                        place.effort, wall_seconds);
    Seconds const phases = phases_of(job, place.effort.least_rounds);
    Seconds const parts = {{"decode", 5 * decoding_seconds(layer, place.effort)},
                           {"library", phases.at("making")},
                           {"encode", encoding_seconds(job.normals.file, place.effort) +
                                          encoding_seconds(job.map.file, place.effort)}};
    print({{"what", "job"},
           {"job", "stack, PNG"},
           {"side", side},
           {"seconds", seconds},
           {"parts", parts},
           {"phases", phases},
           {"others", others.share()}});
}

void memory(Workplace const& place)
{
    int const side = 2 * kSide;
    std::string const input = place.height_map("large.png", side);
    std::size_t const bytes = run_program(
        {UMBRIX_TOOL, "map", input, "-o", place.file("large_map.png"), "--rays", "8", "--overwrite"});
    print({{"what", "job_memory"}, {"side", side}, {"bytes", bytes}});
}

} // namespace

int main(int count, char** words)
{
    Workplace const place(is_quick(count, words));
    normal_map(place);
    umbrix_map(place);
    batch(place);
    stack(place);
    memory(place);
}
