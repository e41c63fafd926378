// SPDX-License-Identifier: MIT
#include "files/folder_to_normal.h"

#include "files/folder_walk_internal.h"
#include "files/output_name_internal.h"
#include "layers/nlayers.h"
#include "normals/height_to_normal.h"

namespace umbrixlib::detail {

namespace {

/// Fills the stack with the source, a layer for each record, and saves what no blend has made.
void convert_layered(NLayers& stack, std::string const& source, std::string const& output)
{
    int const records = stack.records->count;
    for (int i = 0; i < records; ++i) {
        stack.AddLayer(source.c_str());
    }
    stack.GenerateLayers();
    stack.SaveResult(output.c_str());
    stack.Clear();
}

/// `FolderToNormal` on one folder and, with @p recurse, those below it. Every folder has a stack of its own
/// over a copy of the records.
bool walk(std::string const& path, std::string const& pattern, float n_scale, float gaussian,
          bool normal_flag_1, int mode, float L_Detail, bool normal_flag_2, LinkedList<n_layer> layers,
          bool normal_flag_3, bool recurse, std::string* current_name, std::string* progress_text,
          int* progress, FolderPath const* above)
{
    NLayers stack(&layers);
    FolderVisitor visitor;
    visitor.subfolder = [&](std::string const& name, std::string const& subfolder, FolderPath const& here) {
        *current_name = polled_folder(name);
        walk(subfolder, pattern, n_scale, gaussian, normal_flag_1, mode, L_Detail, normal_flag_2, layers,
             normal_flag_3, recurse, current_name, progress_text, progress, &here);
    };
    visitor.file = [&](std::string const& name) {
        *current_name = name;
        std::string const source = joined(path, name);
        std::string const output = output_name(path, name, "_Normal", TagSearch::kWholePath);
        *progress_text = "Processing";
        *progress = 0;
        if (layers.count == 0) {
            HeightToNormal(source.c_str(), output.c_str(), n_scale, gaussian, normal_flag_1, mode, L_Detail,
                           normal_flag_2, normal_flag_3, progress_text, progress);
        } else {
            convert_layered(stack, source, output);
        }
    };
    return walk_folder(path, pattern, recurse, visitor, above);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool FolderToNormal(std::string path, std::string pattern, float n_scale, float gaussian, bool normal_flag_1,
                    int mode, float L_Detail, bool normal_flag_2, LinkedList<n_layer> layers,
                    bool normal_flag_3, bool recurse, std::string* current_name, std::string* progress_text,
                    int* progress)
{
    return walk(path, pattern, n_scale, gaussian, normal_flag_1, mode, L_Detail, normal_flag_2, layers,
                normal_flag_3, recurse, current_name, progress_text, progress, nullptr);
}

bool FolderToNormal_GPU(GPU_opt /*options*/, std::string path, std::string pattern, float n_scale,
                        float gaussian, bool normal_flag_1, int mode, float L_Detail, bool normal_flag_2,
                        LinkedList<n_layer> layers, bool normal_flag_3, bool recurse,
                        std::string* current_name, std::string* progress_text, int* progress)
{
    return FolderToNormal(path, pattern, n_scale, gaussian, normal_flag_1, mode, L_Detail, normal_flag_2,
                          layers, normal_flag_3, recurse, current_name, progress_text, progress);
}

} // namespace umbrix_v0
