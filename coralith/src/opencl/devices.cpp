// SPDX-License-Identifier: MIT
#include "opencl/devices.h"

#include "opencl/api.h"
#include "opencl/backend.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace coralith {
namespace {

// Extensions that say where a card sits.
constexpr cl_device_info kPciBusInfo = 0x410F;
constexpr cl_device_info kNvidiaPciBus = 0x4008;
constexpr cl_device_info kNvidiaPciSlot = 0x4009;
constexpr cl_device_info kNvidiaPciDomain = 0x400A;

std::string text_of(OpenClApi const& api, cl_device_id device, cl_device_info what)
{
    std::size_t size = 0;
    if (api.clGetDeviceInfo(device, what, 0, nullptr, &size) != CL_SUCCESS || size == 0) {
        return {};
    }
    std::string text(size, '\0');
    api.clGetDeviceInfo(device, what, size, text.data(), nullptr);
    text.resize(text.find_last_not_of(std::string(" \0", 2)) + 1);
    return text;
}

template <typename T>
bool value_of(OpenClApi const& api, cl_device_id device, cl_device_info what, T& value)
{
    return api.clGetDeviceInfo(device, what, sizeof value, &value, nullptr) == CL_SUCCESS;
}

std::optional<PciAddress> address_of(OpenClApi const& api, cl_device_id device)
{
    cl_uint numbers[4] = {}; // domain, bus, device, function
    if (value_of(api, device, kPciBusInfo, numbers)) {
        return PciAddress{numbers[0], numbers[1], numbers[2]};
    }
    cl_uint bus = 0;
    cl_uint slot = 0;
    cl_uint domain = 0;
    if (value_of(api, device, kNvidiaPciBus, bus) && value_of(api, device, kNvidiaPciSlot, slot)) {
        value_of(api, device, kNvidiaPciDomain, domain);
        return PciAddress{domain, bus, slot >> 3}; // the low three bits are the function
    }
    return std::nullopt;
}

/// Why the kernels cannot run on @p device at all; "" if they can.
std::string unfit(OpenClApi const& api, cl_device_id device)
{
    cl_bool available = CL_FALSE;
    cl_bool compiles = CL_FALSE;
    value_of(api, device, CL_DEVICE_AVAILABLE, available);
    value_of(api, device, CL_DEVICE_COMPILER_AVAILABLE, compiles);
    if (available == CL_FALSE || compiles == CL_FALSE) {
        return available == CL_FALSE ? "not available" : "no compiler";
    }
    int major = 0;
    int minor = 0;
    std::string const version = text_of(api, device, CL_DEVICE_VERSION);
    if (std::sscanf(version.c_str(), "OpenCL %d.%d", &major, &minor) != 2 || major * 10 + minor < 12) {
        return "older than OpenCL 1.2: " + version;
    }
    cl_bool same_order = CL_FALSE;
    value_of(api, device, CL_DEVICE_ENDIAN_LITTLE, same_order);
    return same_order == CL_FALSE ? "another byte order" : "";
}

Limits limits_of(OpenClApi const& api, cl_device_id device)
{
    auto const exact = [&](cl_device_info what) {
        constexpr cl_device_fp_config kExact = CL_FP_DENORM | CL_FP_INF_NAN | CL_FP_ROUND_TO_NEAREST;
        cl_device_fp_config config = 0;
        return value_of(api, device, what, config) && (config & kExact) == kExact;
    };
    cl_ulong largest = 0;
    value_of(api, device, CL_DEVICE_MAX_MEM_ALLOC_SIZE, largest);
    Limits limits;
    limits.largest_buffer = static_cast<std::size_t>(largest);
    limits.exact_float = exact(CL_DEVICE_SINGLE_FP_CONFIG);
    limits.exact_double = limits.exact_float && exact(CL_DEVICE_DOUBLE_FP_CONFIG);
    return limits;
}

void add_device(std::shared_ptr<OpenClApi const> const& owner, cl_device_id id, Discovery& found)
{
    OpenClApi const& api = *owner;
    cl_device_type type = 0;
    value_of(api, id, CL_DEVICE_TYPE, type);
    Device device;
    device.name = text_of(api, id, CL_DEVICE_NAME);
    device.backend = "OpenCL";
    device.is_graphics_card = (type & CL_DEVICE_TYPE_GPU) != 0;
    device.address = address_of(api, id);
    std::string const reason = unfit(api, id);
    if (!reason.empty()) {
        found.notes.push_back(device.name + ": " + reason);
        return;
    }
    Limits const limits = limits_of(api, id);
    device.open = [owner, id, limits](std::string& why) {
        return open_opencl_backend(owner, id, limits, why);
    };
    found.devices.push_back(std::move(device));
}

} // namespace

Discovery discover_opencl(char const* library)
{
    Discovery found;
    std::string why;
    std::shared_ptr<OpenClApi const> const api = open_opencl(library, why);
    if (api == nullptr) {
        found.notes.push_back("no OpenCL: " + why);
        return found;
    }
    cl_uint count = 0;
    cl_int code = api->clGetPlatformIDs(0, nullptr, &count);
    std::vector<cl_platform_id> platforms(count);
    if (code == CL_SUCCESS && count != 0) {
        code = api->clGetPlatformIDs(count, platforms.data(), nullptr);
    }
    if (code != CL_SUCCESS || count == 0) {
        found.notes.push_back("no OpenCL: " + opencl_error("clGetPlatformIDs", code));
        return found;
    }
    for (cl_platform_id const platform : platforms) {
        cl_uint devices = 0;
        code = api->clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 0, nullptr, &devices);
        std::vector<cl_device_id> ids(devices);
        if (code == CL_SUCCESS && devices != 0) {
            code = api->clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, devices, ids.data(), nullptr);
        }
        if (code != CL_SUCCESS || devices == 0) {
            found.notes.push_back("an OpenCL platform without devices: " +
                                  opencl_error("clGetDeviceIDs", code));
            continue;
        }
        for (cl_device_id const id : ids) {
            add_device(api, id, found);
        }
    }
    return found;
}

} // namespace coralith
