// SPDX-License-Identifier: MIT
#include "umbrix/file_cpu.h"

#include "boundary/image_io.h"
#include "umbrix/file_run_internal.h"
#include "umbrix/layer_branch_internal.h"

#include <omp.h>

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool UmbrixFile(std::string input, std::string output, umbrix_options& options, LinkedList<n_layer>* layers,
                NLayers* stack, std::string* status, int* progress)
{
    int const thread_count = omp_get_num_procs();
    omp_set_nested(1);
    prepare_devil(Overwrite::kAllow);
    if (load_image(input.c_str()) == FileOutcome::kMessageShown) {
        return false;
    }
    ImageSize const size = bound_image_size();
    MapShape shape{size.height, size.width, bound_image_channels()};
    LayerBranch layer_branch(layers, stack);
    layer_branch.follow_descriptions();
    layer_branch.settle(options, shape);
    options.image_height = shape.rows;
    options.image_width = shape.cols;

    FileRun run(options, layer_branch, thread_count, status, progress);
    run.fetch_image(shape);
    run.run(output.find(".vtf") != std::string::npos);
    run.hand_over_image();
    if (save_image(output.c_str()) == FileOutcome::kMessageShown) {
        if (options.keep_buffers) {
            delete[] options.ao_map;
        }
        return false;
    }
    shut_down_devil();
    return true;
}

} // namespace umbrix_v0
