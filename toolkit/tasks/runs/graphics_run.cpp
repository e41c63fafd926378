// SPDX-License-Identifier: MIT
#include "toolkit/tasks/runs/graphics_run.h"

#include "toolkit/base/failure.h"

#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// What the library calls its backend that runs on the processor.
constexpr char const* kHostBackend = "host";

/// The library's last report when the device was opened: what it says of other devices is none of the run's.
std::string report_at_opening;

} // namespace

DeviceReport open_device(Graphics const& graphics, std::string const& file, Observer& observer)
{
    int const device = graphics.device.value();
    observer.begin(Phase::kOpeningDevice, file);
    int const count = DeviceCount();
    if (count == 0) {
        throw Failure(Fault::kNoDevice, "graphics device",
                      "the graphics library of this build has no device");
    }
    if (device >= count) {
        throw Failure(Fault::kNoSuchDevice, "graphics device", fmt::format("there is no device {}", device));
    }
    SetDevice(device);
    std::string const backend = ActiveBackend();
    std::string const name = DeviceName(device);
    report_at_opening = LastError();
    if (backend == kHostBackend) {
        observer.note(file, {fmt::format("device {}, {}, is the processor itself", device, name),
                             NoteKind::kDeviceIsCpu});
    }
    if (!graphics.match_cpu) {
        observer.note(file, {"on a graphics processor heights count inverted and at full scale",
                             NoteKind::kGraphicsHeights});
    }
    return {name, backend};
}

void note_fallback(std::string const& file, Observer& observer)
{
    if (report_at_opening != LastError()) {
        observer.note(file,
                      {fmt::format("the processor took over from the graphics processor: {}", LastError())});
    }
}

GPU_opt gpu_options(int device)
{
    // The desktop stays responsive, and no driver takes a long stage for a hang.
    return {true, device, 0};
}

bool heights_are_inverted(umbrix_options const& options, int channels)
{
    return !options.blend_height && (options.height_map || channels == 4);
}

void match_processor(umbrix_options& options, int channels)
{
    double const scale = static_cast<double>(options.h_scale);
    double const steps = std::ceil(scale * 255.0);
    auto const high = static_cast<unsigned char>(steps);
    bool const inverted = heights_are_inverted(options, channels);
    options.h_min = inverted ? high : 0;
    options.h_max = inverted ? 0 : high;
    options.h_contrast = static_cast<float>(scale * 255.0 / steps - 1.0);
    options.n_scale = static_cast<float>(static_cast<double>(options.n_scale) / scale);
    options.h_tile = options.h_tile && options.tile;
    options.v_tile = options.v_tile && options.tile;
}

} // namespace umbrixlib::toolkit
