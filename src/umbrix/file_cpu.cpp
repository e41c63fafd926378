// SPDX-License-Identifier: MIT
#include "umbrix/file_cpu.h"

#include "umbrix/file_frame_internal.h"
#include "umbrix/map_run_internal.h"
#include "umbrix/layer_branch_internal.h"

#include <omp.h>

namespace umbrixlib::detail {

bool convert_file(std::string const& input, std::string const& output, umbrix_options& options,
                  KeptBuffers& kept, LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                  int* progress)
{
    int const thread_count = omp_get_num_procs();
    omp_set_nested(1);
    MapShape shape{};
    if (!open_file(input, shape)) {
        return false;
    }
    LayerBranch layer_branch(layers, stack);
    join_layers(layer_branch, options, shape);

    MapRun run(options, kept, layer_branch, thread_count, status, progress);
    run.fetch_image(shape);
    run.run(has_reversed_rows(output));
    run.hand_over_image();
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
