// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "common/export.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"

#include <string>

inline namespace umbrix_v0 {

/// Makes a normal map of every file in a folder that matches a pattern, with `HeightToNormal`, beside its
/// source. `rock.tga`, `rock_h.tga` and `rock_Height.tga` all give `rock_Normal.tga`, the last one made; an
/// existing file is replaced. No file is left out, results of earlier runs included.
///
/// @param path          The folder, absolute, without a separator at its end, as for `UmbrixFolder`.
/// @param pattern       `*` and `?`, letter case ignored; "*.*" matches every file. Should ask for an
///                      extension.
/// @param n_scale       As for `HeightToNormal` from file to file, and so are @p gaussian,
///                      @p normal_flag_1, @p mode, @p L_Detail, @p normal_flag_2 and @p normal_flag_3.
/// @param layers        Empty, or records of a layer stack.
/// @param recurse       Subfolders first, at any depth.
/// @param current_name  Name of the file or, with a separator behind it, of the subfolder in work.
/// @param progress_text Set to "Processing" before each file, then by `HeightToNormal`.
/// @param progress      Set to 0 before each file. Plain stores all three, for a polling front end; no null.
/// @return False if @p path could not be entered. A subfolder or a file that fails does not stop the walk.
///         A subfolder that is a link back to a folder above it is left out.
///
/// Errors: a file without a '.' in its whole path raises std::out_of_range, which leaves the call.
/// Threads: those of `HeightToNormal`. Calls must not overlap: DevIL's image and the current directory, which
/// is left at the last folder entered, are process-wide.
///
/// Contract: with @p layers each file fills a stack, whose result is never blended, so that no file is
/// written; a normal map is expected. Test: FolderToNormalCalls.ALayeredWalkWritesNoFile
///
/// Contract: the folders' names count as well. Below a folder `x_n.d` every file loses what follows the last
/// '_' of its path: `x_n.d/rock.tga` gives `x_Normal.tga`. The file's name alone is expected to be tested.
/// Test: FolderToNormalCalls.ATagInAFoldersNameCountsForEveryFileBelow
UMBRIX_API bool FolderToNormal(std::string path, std::string pattern, float n_scale, float gaussian,
                               bool normal_flag_1, int mode, float L_Detail, bool normal_flag_2,
                               LinkedList<n_layer> layers, bool normal_flag_3, bool recurse,
                               std::string* current_name, std::string* progress_text, int* progress);

/// Contract: the same on the processor; a run on the graphics processor is expected. @p options is not read.
/// Test: FolderToNormalCalls.TheGpuFormIsTheSameWalkOnTheProcessor
UMBRIX_API bool FolderToNormal_GPU(GPU_opt options, std::string path, std::string pattern, float n_scale,
                                   float gaussian, bool normal_flag_1, int mode, float L_Detail,
                                   bool normal_flag_2, LinkedList<n_layer> layers, bool normal_flag_3,
                                   bool recurse, std::string* current_name, std::string* progress_text,
                                   int* progress);

} // namespace umbrix_v0
