// SPDX-License-Identifier: MIT
#include "files/umbrix_file.h"

#include "boundary/image_io.h"
#include "files/file_frame_internal.h"
#include "umbrix/map_run_internal.h"

#include <algorithm>
#include <omp.h>

namespace umbrixlib::detail {

namespace {

/// How the stages read an image's bytes. One of one byte a texel is grey, all others have colours; only one
/// of four has an alpha, although DevIL delivers it of those with more bytes as well.
PictureSamples samples_of(unsigned char const* bytes, int channels)
{
    bool const coloured = channels > 1;
    return {bytes,
            SampleType::kUint8,
            std::max(channels, 1),
            coloured ? 1 : 0,
            coloured ? 2 : 0,
            channels == 4 ? 3 : -1};
}

PixelFormat format_of(int channels)
{
    return channels == 1 ? PixelFormat::kOneByte : channels < 4 ? PixelFormat::kRgb : PixelFormat::kRgba;
}

} // namespace

bool convert_file(std::string const& input, std::string const& output, umbrix_options& options,
                  KeptBuffers& kept, LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                  int* progress)
{
    omp_set_nested(1);
    MapShape shape{};
    if (!open_file(input, shape)) {
        return false;
    }
    FileStack const file_stack(layers, stack);
    LayerBranch const layer_branch(layers, file_stack.get());
    settle_size(layer_branch, options, shape);

    auto const texels = static_cast<std::size_t>(shape.texels());
    ImageBytes pixels = make_image_bytes(texels, shape.channels);
    if (!options.blend_height) {
        copy_pixels({shape.cols, shape.rows}, format_of(shape.channels), pixels.get());
    }
    // The bytes of a grey picture have room for one channel; the map has three. All others are written over
    // those of the image.
    MapShape stored = shape;
    ImageBytes of_grey;
    if (shape.channels == 1) {
        stored.channels = 3;
        of_grey = make_image_bytes(texels, stored.channels);
    }
    unsigned char* const bytes = of_grey != nullptr ? of_grey.get() : pixels.get();

    RunReport report(status, progress);
    MapRun run(options, &kept, layer_branch, {samples_of(pixels.get(), shape.channels)}, shape,
               MapRun::Shares::kProcessors, report);
    if (has_reversed_rows(output)) {
        run.run({}, {});
        store_bytes_reversed(run.parts.map.get(), stored, RowsFrom::kWidth, bytes, progress);
        run.parts.map.reset();
    } else {
        run.run({bytes, stored.channels}, {});
    }
    hand_over_bytes(stored, bytes);
    pixels.reset();
    of_grey.reset();
    return close_file(output, options, kept);
}

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool UmbrixFile(std::string input, std::string output, umbrix_options& options, LinkedList<n_layer>* layers,
                NLayers* stack, std::string* status, int* progress)
{
    KeptBuffers kept(options);
    return convert_file(input, output, options, kept, layers, stack, status, progress);
}

} // namespace umbrix_v0
