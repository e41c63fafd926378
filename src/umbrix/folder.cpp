// SPDX-License-Identifier: MIT
#include "umbrix/folder.h"

#include "umbrix/file_cpu.h"
#include "umbrix/file_gpu.h"
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

bool UmbrixFolder_GPU(GPU_opt gpu, std::string path, std::string search, umbrix_options& options,
                      LinkedList<n_layer>* layers, NLayers* stack, std::string* current, std::string* status,
                      int* progress)
{
    FolderBatch const batch{path, search, options, current, status, progress};
    return batch.run(
        [&](std::string const& subfolder) {
            UmbrixFolder_GPU(gpu, subfolder, search, options, layers, stack, current, status, progress);
        },
        [&](std::string const& name) {
            FolderBatch::File const file = batch.begin(name);
            if (stack != nullptr) {
                // Contract: unlike UmbrixFolder, the stack is filled without asking for generate_normal.
                // Test: UmbrixFolderGpuCalls.TheStackIsFilledWithTheFileWhateverTheOptionsSay
                stack->Clear();
                int const records = layers != nullptr ? layers->count : 0;
                for (int i = 0; i < records; ++i) {
                    stack->AddLayer(file.input.c_str());
                }
            }
            UmbrixFile_GPU(gpu, file.input, file.output, options, layers, stack, status, progress);
        });
}

} // namespace umbrix_v0
