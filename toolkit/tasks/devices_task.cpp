// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/tasks/job.h"

#include <nlohmann/json.hpp>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

nlohmann::json run_devices_task()
{
    send_phase(Phase::kOpeningDevice);
    nlohmann::json devices = nlohmann::json::array();
    for (int device = 0; device < DeviceCount(); ++device) {
        SetDevice(device);
        devices.push_back({{"number", device},
                           {"name", DeviceName(device)},
                           {"backend", ActiveBackend()},
                           {"default", device == 0}});
    }
    return {{"devices", devices}, {"last_error", LastError()}};
}

} // namespace umbrixlib::toolkit
