// SPDX-License-Identifier: MIT
#include "files/umbrix_file_gpu.h"

#include "boundary/image_io.h"
#include "files/file_frame_internal.h"
#include "umbrix/gpu_map_run_internal.h"

namespace umbrixlib::detail {

bool convert_file(GPU_opt gpu, std::string const& input, std::string const& output, umbrix_options& options,
                  KeptBuffers& kept, LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                  int* progress)
{
    MapShape shape{};
    if (!open_file(input, shape)) {
        return false;
    }
    FileStack const file_stack(layers, stack);
    LayerBranch const layer_branch(layers, file_stack.get());
    settle_size(layer_branch, options, shape);

    ImageBytes pixels = make_image_bytes(static_cast<std::size_t>(shape.texels()), shape.channels);
    PixelFormat const format = shape.channels < 4 ? PixelFormat::kRgb : PixelFormat::kRgba;
    copy_pixels({shape.cols, shape.rows}, format, pixels.get());
    PictureSamples const samples{
        pixels.get(), SampleType::kUint8, shape.channels, 1, 2, shape.channels == 4 ? 3 : -1};

    RunReport report(status, progress);
    GpuMapRun run(gpu, options, &kept, layer_branch, {samples}, shape, report);
    if (has_reversed_rows(output)) {
        run.run({}, {});
        store_bytes_reversed(run.parts.map.get(), shape, RowsFrom::kHeight, pixels.get(), progress);
        run.parts.map.reset();
    } else {
        run.run({pixels.get(), shape.channels}, {});
    }
    hand_over_bytes(shape, pixels.get());
    pixels.reset();
    return close_file(output, options, kept);
}

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool UmbrixFile_GPU(GPU_opt gpu, std::string input, std::string output, umbrix_options& options,
                    LinkedList<n_layer>* layers, NLayers* stack, std::string* status, int* progress)
{
    KeptBuffers kept(options);
    return convert_file(gpu, input, output, options, kept, layers, stack, status, progress);
}

} // namespace umbrix_v0
