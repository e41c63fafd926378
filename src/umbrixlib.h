// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Everything that UmbrixLib exports.

#include "boundary/gpu_library.h"
#include "boundary/message_box.h"
#include "boundary/texture_kernels.h"
#include "files/folder_to_normal.h"
#include "files/umbrix_file.h"
#include "files/umbrix_file_gpu.h"
#include "files/umbrix_folder.h"
#include "filters/blend.h"
#include "filters/high_fidelity.h"
#include "filters/kernel_gaussian.h"
#include "filters/narrowing.h"
#include "filters/recursive_gaussian.h"
#include "filters/tile_height.h"
#include "filters/tone.h"
#include "foundation/arrays.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "foundation/text.h"
#include "foundation/vector_math.h"
#include "layers/nlayers.h"
#include "normals/height_to_normal.h"
#include "normals/make_normals.h"
#include "normals/texel_normals.h"
#include "texels/texel_umbrix.h"
#include "umbrix/grading.h"
#include "umbrix/make_map.h"
#include "umbrix/umbrix_options.h"
#include "worklist/umbrix_list.h"
