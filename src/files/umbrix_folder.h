// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "common/export.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "umbrix/umbrix_options.h"

#include <string>

inline namespace umbrix_v0 {

/// Makes an Umbrix map of every file in a folder that matches a pattern, with `UmbrixFile`, beside its
/// source. `rock.tga` and `rock_N.tga` both give `rock_Umbrix.tga`, the last one made; an existing file is
/// replaced. No file is left out, results of earlier runs included.
///
/// @param path     The folder, absolute, without a separator at its end. The walk enters it and opens its
///                 files by their whole paths: of a relative folder none is read and none written, and the
///                 walk says true.
/// @param search   `*` and `?`, letter case ignored; "*.*" matches every file. Should ask for an extension.
/// @param options  As for `UmbrixFile`, which writes to it once a file, so `blend_height` can carry over from
///                 one to the next. `recurse`: subfolders first, at any depth. `cancel`: points at the stop
///                 flag, which another thread may set; null counts as one that is never set. It is asked
///                 between entries, so a file in work is finished.
/// @param layers   Descriptions of the layers, or null for none. Each file has a stack of its own, which with
///                 `options.generate_normal` is filled with that file, once for each description.
/// @param current  Name of the file or, with a separator behind it, of the subfolder in work.
/// @param status   "Processing" before a subfolder, then as `UmbrixFile` sets it.
/// @param progress Set to 0 before each file. Plain stores all three, for a polling front end; no null.
/// @return False if the stop flag ended the walk or @p path could not be entered. A subfolder or a file that
///         fails does not stop the walk.
///
/// With `options.keep_buffers` every file takes the three arrays of the file before; after the walk they are
/// the last file's and the caller's. A subfolder that is a link back to a folder above it is left out.
///
/// Errors: a file without a '.' in its whole path raises std::out_of_range, which leaves the call.
/// Threads: those of `UmbrixFile`. Calls must not overlap: DevIL's image and the current directory, which is
/// left at the last folder entered, are process-wide.
UMBRIX_API bool UmbrixFolder(std::string path, std::string search, umbrix_options& options,
                             LinkedList<n_layer>* layers, std::string* current, std::string* status,
                             int* progress);

/// `UmbrixFolder` with `UmbrixFile_GPU`, on the device that @p gpu names.
///
/// @param stack The caller's stack for all files; null for none. Before each file it is cleared, and that
///              file is added once for each description, whatever `options.generate_normal` says.
///
/// The calls of the graphics library come from the calling thread. `height_copy` is handed from file to file
/// as well, whatever `options.keep_buffers` says; all else as for `UmbrixFolder`.
UMBRIX_API bool UmbrixFolder_GPU(GPU_opt gpu, std::string path, std::string search, umbrix_options& options,
                                 LinkedList<n_layer>* layers, NLayers* stack, std::string* current,
                                 std::string* status, int* progress);

} // namespace umbrix_v0
