// SPDX-License-Identifier: MIT
#include "toolkit/tasks/tasks.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

DevicesReport run(DevicesJob const& /*job*/, Observer& observer)
{
    observer.begin(Phase::kOpeningDevice, "graphics library");
    DevicesReport report;
    for (int device = 0; device < DeviceCount(); ++device) {
        SetDevice(device);
        report.devices.push_back({device, DeviceName(device), ActiveBackend(), device == 0});
    }
    report.last_error = LastError();
    return report;
}

} // namespace umbrixlib::toolkit
