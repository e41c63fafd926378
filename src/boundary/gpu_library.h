// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The graphics library Coralith, imported by name: heavy image stages on a graphics processor.
///
/// Data goes in with `SetSrc` or `SetDest`, a stage runs, the result comes back with `GetDest`. The library
/// holds one slot per element type and side, and the selected device, from call to call. All buffers are host
/// arrays of rows * cols elements, row by row, owned by the caller; none is kept after a call. A call with
/// rows or cols below 1 does nothing. Called by one thread at a time, outside any parallel region.
///
/// Devices are numbered: graphics cards first, then other OpenCL devices, the host processor last. A number
/// that is not theirs means the host. Without any `SetDevice` device 0 is selected. The first call of all
/// looks for the devices.
///
/// Errors: a stage that fails on its device runs again on the host, from its own input; the device is not
/// used again in this process, unless it only had no room. Each such reason is reported once, as one line of
/// text that also stays at hand in `LastError`. Nothing is thrown and no box is shown.
///
/// Results have the bits of the processor's own forms, on every device; `docs/graphics.md` says how.

#include "common/export.h"
#include "common/vector_types.h"
#include "umbrix/umbrix_options.h"

#include <string>

inline namespace umbrix_v0 {

/// How a stage runs on the graphics processor; passed by value.
struct GPU_opt {
    bool ao_flag; ///< Keep the desktop responsive during the occlusion stage.
    int device;   ///< Number of the device, for `SetDevice`; the stages do not read it.
    int ao_value; ///< Rays of one dispatch of the occlusion stage, if above 0 and with `ao_flag`.
};

/// Receives a report of the graphics library: one line without a line break. Must return, must not throw.
using report_handler = void (*)(char const* line);

} // namespace umbrix_v0

/// Selects the device of the calls that follow. Cheap; a device is opened when a stage first needs it.
CORALITH_API void SetDevice(int device);

/// Fills the destination slot of an element type from a host buffer. A slot that is taken is overwritten.
/// Null leaves it as it is.
CORALITH_API void SetDest(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetDest(float3* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetDest(float4* buffer, int rows, int cols);
/// Fills the source slot of an element type from a host buffer. Null leaves it as it is.
CORALITH_API void SetSrc(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void SetSrc(float3* buffer, int rows, int cols);
/// Copies the destination slot of an element type into a host buffer, if that is not null. With no slot of
/// this type and size the buffer is left alone, and that is reported.
CORALITH_API void GetDest(float* buffer, int rows, int cols);
/// @overload
CORALITH_API void GetDest(float3* buffer, int rows, int cols);
/// @overload
CORALITH_API void GetDest(float4* buffer, int rows, int cols);
/// Gives up all destination slots. Nothing to give up is no error.
CORALITH_API void DeleteDest();
/// Gives up all source slots.
CORALITH_API void DeleteSrc();

/// The job of `PreProcess`, in place on the float destination. Without one of this size @p heights is taken.
/// @param heights May be null if the slot is filled.
/// @return False if there is no result: no input, or not even the host had memory. The slot is empty then.
CORALITH_API bool PreProcess_GPU(GPU_opt gpu, float* heights, int rows, int cols, umbrix_options& options);
/// The job of `PostProcess`, in place on the float4 destination. Otherwise as `PreProcess_GPU`.
CORALITH_API bool PostProcess_GPU(GPU_opt gpu, float4* map, int rows, int cols, umbrix_options& options);
/// The job of `HeightToNormal` on a buffer: normals of @p heights into the float3 destination.
/// @param heights  Null stands for the float destination.
/// @param depth    Not read; always 0.
/// @param status   Becomes "Generating Normal"; may be null.
/// @param progress Becomes 0; may be null.
/// @return As `PreProcess_GPU`.
CORALITH_API bool HeightToNormal_GPU(GPU_opt gpu, float* heights, int rows, int cols, float n_scale,
                                     float gaussian, float L_Detail, float depth, std::string* status,
                                     int* progress);
/// The job of `Normal2Umbrix` into the float3 destination.
/// @param normals Null stands for the float3 destination.
/// @param mode    A `Modes` value.
CORALITH_API void UmbrixNormal_GPU(GPU_opt gpu, float3* normals, int mode, int rows, int cols);
/// The job of `GenerateRays` and `Height2DirectionalAO` with `tile` set, into the float3 destination.
/// @param heights  At face value. The float source slot goes before it; null if that one is filled.
/// @param device   Selects the device, as `SetDevice` does.
/// @param at_once  The negation of `GPU_opt::ao_flag`. False keeps the desktop responsive: the work is cut
///                 into dispatches of about 50 ms. True cuts it only where a display would stand no more.
/// @param ao_value If above 0, and @p at_once is false, the rays of one dispatch instead.
/// @param progress Goes from 0 to 1000, never back, written by the calling thread; may be null. Once it holds
///                 INT_MIN, stored atomically by any thread before the call or during it, the stage leaves it
///                 so, returns after the dispatch at work and has no result.
CORALITH_API void DirectionalAO_GPU(float* heights, int rows, int cols, int rays, float alpha_limit,
                                    float theta_limit, float radius, int device, bool h_tile, bool v_tile,
                                    bool at_once, int ao_value, int* progress);

/// Number of devices, the host among them: at least 1. May be called from any thread, as `DeviceName`,
/// `LastError` and `SetReportHandler`.
CORALITH_API int DeviceCount();
/// Name of a device as its driver has it, valid for the life of the process; null if there is no such device.
CORALITH_API char const* DeviceName(int device);
/// What the next stage would run on: "OpenCL", "CUDA" or "host".
CORALITH_API char const* ActiveBackend();
/// The last report, such as the reason why a stage ran on the host; "" if there is none. Valid for the life
/// of the process.
CORALITH_API char const* LastError();

/// Sends the reports to @p handler; null restores the default, standard error.
/// @return The handler so far, or null if it was the default.
CORALITH_API report_handler SetReportHandler(report_handler handler);
