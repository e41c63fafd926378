// SPDX-License-Identifier: MIT
// Reading and writing of PNG, TIFF and OpenEXR by the toolkit against the libraries of these formats, used
// directly: the same files and samples, on one thread. Heights of the terrain, with grain in the low bits,
// and in colour the same moved sideways.
#include "formats/direct.h"
#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "temporary_folder.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/runs/map_picture.h"

#include <OpenEXR/openexr.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <omp.h>
#include <tiff.h>

namespace {

using namespace umbrixlib;
using namespace umbrixlib::bench;

constexpr int kSide = 2048;
constexpr double kMostTexels = 1e8;

enum class Format { kPng, kTiff, kExr };

/// A file that is read and written.
struct Case {
    char const* name;
    Format format;
    int channels;
    SampleType type;
    int compression; ///< Of TIFF and OpenEXR.
    bool is_written; ///< The toolkit writes files of this kind, too.
};

constexpr Case kCases[] = {
    {"PNG, 16-bit grey", Format::kPng, 1, SampleType::kUint16, 0, true},
    {"PNG, 16-bit RGB", Format::kPng, 3, SampleType::kUint16, 0, true},
    {"TIFF, 16-bit grey, Deflate", Format::kTiff, 1, SampleType::kUint16, COMPRESSION_ADOBE_DEFLATE, true},
    {"TIFF, 16-bit RGB, LZW", Format::kTiff, 3, SampleType::kUint16, COMPRESSION_LZW, false},
    {"TIFF, 16-bit RGB, Deflate", Format::kTiff, 3, SampleType::kUint16, COMPRESSION_ADOBE_DEFLATE, true},
    {"TIFF, float grey, Deflate", Format::kTiff, 1, SampleType::kFloat, COMPRESSION_ADOBE_DEFLATE, true},
    {"OpenEXR, half grey, ZIP", Format::kExr, 1, SampleType::kHalf, EXR_COMPRESSION_ZIP, true},
    {"OpenEXR, half RGB, ZIP", Format::kExr, 3, SampleType::kHalf, EXR_COMPRESSION_ZIP, true},
    {"OpenEXR, half RGB, PIZ", Format::kExr, 3, SampleType::kHalf, EXR_COMPRESSION_PIZ, false},
    {"OpenEXR, float grey, ZIP", Format::kExr, 1, SampleType::kFloat, EXR_COMPRESSION_ZIP, true},
};

void need(bool good, char const* what)
{
    if (!good) {
        std::fprintf(stderr, "%s: not the same picture\n", what);
        std::exit(1);
    }
}

toolkit::Picture picture_of(Case const& one)
{
    std::vector<float> const heights = heights_of("terrain", kSide);
    toolkit::Picture picture = toolkit::make_picture(kSide, kSide, one.channels, one.type);
    std::uint32_t grain = 1;
    for (std::size_t i = 0; i < picture.texels() * static_cast<std::size_t>(one.channels); ++i) {
        grain = grain * 1664525U + 1013904223U;
        std::size_t const channel = i % static_cast<std::size_t>(one.channels);
        float const height =
            heights[(i / static_cast<std::size_t>(one.channels) + 17 * channel) % heights.size()];
        float const value = height * 0.99f + static_cast<float>(grain >> 24U) / 65536.0f;
        if (one.type == SampleType::kUint16) {
            picture.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(value * 65535.0f);
        } else if (one.type == SampleType::kHalf) {
            picture.samples<toolkit::Half>()[i] = toolkit::to_half(value);
        } else {
            picture.samples<float>()[i] = value;
        }
    }
    return picture;
}

void write_directly(Case const& one, std::string const& file, DirectPicture const& picture)
{
    int const bits = static_cast<int>(8 * toolkit::sample_size(one.type));
    switch (one.format) {
    case Format::kPng:
        return write_png_directly(file, picture);
    case Format::kTiff:
        return write_tiff_directly(file, picture, bits, one.compression);
    case Format::kExr:
        return write_exr_directly(file, picture, bits, one.compression);
    }
}

DirectPicture read_directly(Case const& one, std::string const& file)
{
    return one.format == Format::kPng    ? read_png_directly(file)
           : one.format == Format::kTiff ? read_tiff_directly(file)
                                         : read_exr_directly(file);
}

void measure(Case const& one, std::filesystem::path const& folder, Effort const& effort)
{
    toolkit::Encoder const& encoder = one.format == Format::kPng    ? toolkit::png_encoder()
                                      : one.format == Format::kTiff ? toolkit::tiff_encoder()
                                                                    : toolkit::exr_encoder();
    char const* const extension = one.format == Format::kPng    ? ".png"
                                  : one.format == Format::kTiff ? ".tif"
                                                                : ".exr";
    std::string const direct_file = (folder / "direct").string() + extension;
    std::string const our_file = (folder / "ours").string() + extension;
    toolkit::Picture const picture = picture_of(one);
    DirectPicture const direct{kSide, kSide, one.channels, toolkit::upside_down(picture).bytes};
    write_directly(one, direct_file, direct);
    need(toolkit::DecodedImage(direct_file, one.name, kMostTexels).picture().bytes == picture.bytes,
         one.name);
    need(read_directly(one, direct_file).bytes == direct.bytes, one.name);
    Seconds const reading =
        interleaved({{"ours", [&] { toolkit::DecodedImage const image(direct_file, one.name, kMostTexels); }},
                     {"direct", [&] { read_directly(one, direct_file); }}},
                    effort, cpu_seconds);
    print({{"what", "picture_reading"}, {"file", one.name}, {"side", kSide}, {"seconds", reading}});
    if (!one.is_written) {
        return;
    }
    Seconds const writing = interleaved({{"ours", [&] { encoder.encode(our_file, picture); }},
                                         {"direct", [&] { write_directly(one, direct_file, direct); }}},
                                        effort, cpu_seconds);
    need(read_directly(one, our_file).bytes == direct.bytes, one.name);
    print({{"what", "picture_writing"},
           {"file", one.name},
           {"side", kSide},
           {"seconds", writing},
           {"size", static_cast<double>(std::filesystem::file_size(our_file)) /
                        static_cast<double>(std::filesystem::file_size(direct_file))}});
}

/// Writing of a 16-bit PNG of what the tool makes of the terrain: what compresses differs.
void measure_result(char const* name, toolkit::Picture const& picture, std::filesystem::path const& folder,
                    Effort const& effort)
{
    std::string const direct_file = (folder / "direct.png").string();
    std::string const our_file = (folder / "ours.png").string();
    DirectPicture const direct{kSide, kSide, picture.channels, toolkit::upside_down(picture).bytes};
    Seconds const writing = interleaved({{"ours", [&] { toolkit::png_encoder().encode(our_file, picture); }},
                                         {"direct", [&] { write_png_directly(direct_file, direct); }}},
                                        effort, cpu_seconds);
    need(read_png_directly(our_file).bytes == direct.bytes, name);
    print({{"what", "picture_writing"},
           {"file", name},
           {"side", kSide},
           {"seconds", writing},
           {"size", static_cast<double>(std::filesystem::file_size(our_file)) /
                        static_cast<double>(std::filesystem::file_size(direct_file))}});
}

toolkit::Picture normals_of(toolkit::Picture const& heights)
{
    NormalsRequest request;
    request.heights = heights.view();
    request.n_scale = toolkit::n_scale_of(toolkit::kDefaults, kSide);
    NormalsResult const made = make_normals(request);
    return toolkit::saved_normals(made.normals.get(), kSide, kSide, {SampleType::kUint16});
}

toolkit::Picture map_of(toolkit::Picture const& heights)
{
    toolkit::Observer nobody;
    toolkit::Picture const colour = toolkit::in_colour(heights, false);
    return toolkit::make_umbrix_map(
        {colour,
         "heights",
         toolkit::options_for(toolkit::kDefaults, toolkit::Kind::kHeightMap, kSide),
         {SampleType::kUint16}},
        nobody);
}

} // namespace

int main(int count, char** words)
{
    toolkit::Picture const heights = picture_of(kCases[0]);
    toolkit::Picture const normals = normals_of(heights);
    toolkit::Picture const map = map_of(heights);
    omp_set_num_threads(1);
    umbrixlib::test::TemporaryFolder const folder;
    measure_result("PNG, 16-bit RGB, normals", normals, folder.path(), effort_of(count, words));
    measure_result("PNG, 16-bit RGB, map", map, folder.path(), effort_of(count, words));
    for (Case const& one : kCases) {
        measure(one, folder.path(), effort_of(count, words));
    }
}
