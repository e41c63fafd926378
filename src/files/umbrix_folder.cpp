// SPDX-License-Identifier: MIT
#include "files/umbrix_folder.h"

#include "files/file_frame_internal.h"
#include "files/folder_batch_internal.h"
#include "umbrix/kept_buffers_internal.h"

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool UmbrixFolder(std::string path, std::string search, umbrix_options& options, LinkedList<n_layer>* layers,
                  std::string* current, std::string* status, int* progress)
{
    FolderBatch const batch{search, options, current, status, progress};
    KeptBuffers kept(options);
    return batch.run(path, [&](std::string const& folder, std::string const& name) {
        NLayers stack(layers);
        FolderBatch::File const file = batch.begin(folder, name);
        int const records = options.generate_normal && layers != nullptr ? layers->count : 0;
        for (int i = 0; i < records; ++i) {
            stack.SetLayerData(i, file.input.c_str());
        }
        convert_file(file.input, file.output, options, kept, layers, &stack, status, progress);
    });
}

bool UmbrixFolder_GPU(GPU_opt gpu, std::string path, std::string search, umbrix_options& options,
                      LinkedList<n_layer>* layers, NLayers* stack, std::string* current, std::string* status,
                      int* progress)
{
    FolderBatch const batch{search, options, current, status, progress};
    KeptBuffers kept(options);
    return batch.run(path, [&](std::string const& folder, std::string const& name) {
        FolderBatch::File const file = batch.begin(folder, name);
        if (stack != nullptr) {
            // Contract: unlike UmbrixFolder, the stack is filled without asking for generate_normal.
            // Test: UmbrixFolderGpuCalls.TheStackIsFilledWithTheFileWhateverTheOptionsSay
            stack->Clear();
            int const records = layers != nullptr ? layers->count : 0;
            for (int i = 0; i < records; ++i) {
                stack->AddLayer(file.input.c_str());
            }
        }
        convert_file(gpu, file.input, file.output, options, kept, layers, stack, status, progress);
    });
}

} // namespace umbrix_v0
