// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Everything that UmbrixLib exports.

#include "boundary/gpu_library.h"
#include "boundary/message_box.h"
#include "boundary/texture_kernels.h"
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
#include "normals/folder_to_normal.h"
#include "normals/height_to_normal.h"
#include "normals/texel_normals.h"
#include "umbrix/file_cpu.h"
#include "umbrix/file_gpu.h"
#include "umbrix/folder.h"
#include "umbrix/grading.h"
#include "umbrix/make_map.h"
#include "umbrix/texel_umbrix.h"
#include "umbrix/umbrix_options.h"
#include "worklist/umbrix_list.h"
