// SPDX-License-Identifier: MIT
#include "session/discovery.h"

#include "cuda/devices.h"
#include "device/shared_library.h"

#if defined(CORALITH_HAS_OPENCL)
#include "opencl/api.h"
#include "opencl/devices.h"
#endif

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace coralith {
namespace {

Discovery opencl_devices()
{
#if defined(CORALITH_HAS_OPENCL)
    return discover_opencl(opencl_library_name());
#else
    return {{}, {"no OpenCL: built without it"}};
#endif
}

Discovery cuda_devices()
{
    std::string const path = own_folder() + cuda_module_name();
    if (!file_exists(path)) {
        return {}; // an optional part, of which nobody need hear
    }
    return discover_cuda(path);
}

} // namespace

std::vector<Device> merged(std::vector<Device> opencl, std::vector<Device> cuda)
{
    std::vector<Device> cards;
    std::vector<Device> others;
    for (Device& device : opencl) {
        auto const twin = std::find_if(cuda.begin(), cuda.end(), [&](Device const& other) {
            return device.address.has_value() && device.address == other.address;
        });
        if (twin != cuda.end()) {
            cards.push_back(std::move(*twin));
            cuda.erase(twin);
        } else {
            (device.is_graphics_card ? cards : others).push_back(std::move(device));
        }
    }
    std::move(cuda.begin(), cuda.end(), std::back_inserter(cards));
    std::move(others.begin(), others.end(), std::back_inserter(cards));
    return cards;
}

Discovery discover_devices()
{
    char const* const setting = std::getenv("CORALITH_BACKEND");
    std::string const wish = setting != nullptr ? setting : "";
    bool const all = wish != "host" && wish != "opencl" && wish != "cuda";
    Discovery found;
    if (all || wish == "cuda") {
        found = cuda_devices();
    }
    if (all || wish == "opencl") {
        Discovery opencl = opencl_devices();
        found.devices = merged(std::move(opencl.devices), std::move(found.devices));
        std::move(opencl.notes.begin(), opencl.notes.end(), std::back_inserter(found.notes));
    }
    if (wish == "host") {
        found.notes.push_back("CORALITH_BACKEND asks for the host");
    } else if (all && !wish.empty() && wish != "auto") {
        found.notes.push_back("CORALITH_BACKEND is '" + wish + "', none of auto, opencl, cuda, host");
    }
    return found;
}

} // namespace coralith
