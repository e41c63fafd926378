// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The graphics library Coralith, imported by name: heavy image stages on a graphics processor.
///
/// Data goes in with `SetSrc` or `SetDest`, a stage runs, the result comes back with `GetDest`. The library
/// holds one slot per element type and side, and the selected device, from call to call. All buffers are host
/// arrays of rows * cols elements, row by row, owned by the caller. Called by one thread at a time, outside
/// any parallel region. Callers test no result; a device failure is the library's to report.

#include "foundation/export.h"
#include "foundation/vector_types.h"
#include "umbrix/umbrix_options.h"

#include <string>

inline namespace umbrix_v0 {

/// How a stage runs on the graphics processor; passed by value.
struct GPU_opt {
    bool ao_flag; ///< Keep the desktop responsive during the occlusion stage.
    int device;   ///< Number of the device.
    int ao_value; ///< Size of the occlusion stage's portions.
};

} // namespace umbrix_v0

/// Selects the device of the calls that follow.
CORALITH_API void SetDevice(int device);

/// Prepares the destination slot of an element type from a host buffer.
CORALITH_API void SetDest(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetDest(float3* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetDest(float4* buffer, int rows, int cols);
/// Prepares the source slot of an element type from a host buffer.
CORALITH_API void SetSrc(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetSrc(float3* buffer, int rows, int cols);
/// Copies the result of the last stage into a host buffer; without one the buffer is left alone.
CORALITH_API void GetDest(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void GetDest(float3* buffer, int rows, int cols);
/// @overload
CORALITH_API void GetDest(float4* buffer, int rows, int cols);
/// Gives up all destination slots. Nothing to give up is no error.
CORALITH_API void DeleteDest();
/// Gives up all source slots.
CORALITH_API void DeleteSrc();

/// The job of `PreProcess` on the float destination.
CORALITH_API bool PreProcess_GPU(GPU_opt gpu, float* heights, int rows, int cols, umbrix_options& options);
/// The job of `PostProcess` on the float4 destination.
CORALITH_API bool PostProcess_GPU(GPU_opt gpu, float4* map, int rows, int cols, umbrix_options& options);
/// Normals of @p heights into the float3 destination. The last float is always 0.
CORALITH_API bool HeightToNormal_GPU(GPU_opt gpu, float* heights, int rows, int cols, float n_scale,
                                     float gaussian, float L_Detail, float depth, std::string* status,
                                     int* progress);
/// The job of `Normal2Umbrix` into the float3 destination; @p mode is a `Modes` value.
CORALITH_API void UmbrixNormal_GPU(GPU_opt gpu, float3* normals, int mode, int rows, int cols);
/// The job of `GenerateRays` and `Height2DirectionalAO`, into the float3 destination.
/// @param at_once The negation of `GPU_opt::ao_flag`.
CORALITH_API void DirectionalAO_GPU(float* heights, int rows, int cols, int rays, float alpha_limit,
                                    float theta_limit, float radius, int device, bool h_tile, bool v_tile,
                                    bool at_once, int ao_value, int* progress);

/// Number of devices that the library can run on; 0 if it has none.
CORALITH_API int DeviceCount();
/// Name of a device, valid for the life of the process; null if there is no such device.
CORALITH_API char const* DeviceName(int device);
