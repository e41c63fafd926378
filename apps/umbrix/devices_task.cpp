// SPDX-License-Identifier: MIT
#include "job.h"
#include "worker_channel.h"

#include <nlohmann/json.hpp>
#include <umbrixlib.h>

namespace umbrix_cli {

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

} // namespace umbrix_cli
