// SPDX-License-Identifier: MIT
#include "umbrix/folder.h"

#include "layers/nlayers.h"
#include "umbrix/file_cpu.h"
#include "umbrix/folder_batch_internal.h"

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool UmbrixFolder(std::string path, std::string search, umbrix_options& options, LinkedList<n_layer>* layers,
                  std::string* current, std::string* status, int* progress)
{
    FolderBatch const batch{path, search, options, current, status, progress};
    return batch.run(
        [&](std::string const& subfolder) {
            UmbrixFolder(subfolder, search, options, layers, current, status, progress);
        },
        [&](std::string const& name) {
            NLayers stack(layers);
            FolderBatch::File const file = batch.begin(name);
            int const records = options.generate_normal && layers != nullptr ? layers->count : 0;
            for (int i = 0; i < records; ++i) {
                stack.SetLayerData(i, file.input.c_str());
            }
            UmbrixFile(file.input, file.output, options, layers, &stack, status, progress);
        });
}

} // namespace umbrix_v0
