// SPDX-License-Identifier: MIT
#include "umbrix/file_cpu.h"

#include "umbrix/file_frame_internal.h"
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
    MapShape shape{};
    if (!open_file(input, shape)) {
        return false;
    }
    LayerBranch layer_branch(layers, stack);
    join_layers(layer_branch, options, shape);

    FileRun run(options, layer_branch, thread_count, status, progress);
    run.fetch_image(shape);
    run.run(has_reversed_rows(output));
    run.hand_over_image();
    return close_file(output, options);
}

} // namespace umbrix_v0
