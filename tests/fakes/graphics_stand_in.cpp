// SPDX-License-Identifier: MIT
// The query interface of a graphics library that is preloaded into a program under test. The environment says
// what it has:
//   OCL_STAND_IN_DEVICES  "name=backend;name=backend;..."; without it there are none
//   OCL_STAND_IN_SKIPPED  what is reported before any stage runs
//   OCL_STAND_IN_ERROR    reason for a fallback, reported by the first stage
//   OCL_STAND_IN_CRASH    ends the program as a broken driver does
#include "call_log.h"
#include "graphics_fake.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sstream>

namespace umbrixlib::test {

namespace {

struct Device {
    std::string name;
    std::string backend;
};

std::string variable(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::vector<Device> const& devices()
{
    static std::vector<Device> const all = [] {
        if (!variable("OCL_STAND_IN_CRASH").empty()) {
            std::raise(SIGKILL);
        }
        std::vector<Device> found;
        std::istringstream list(variable("OCL_STAND_IN_DEVICES"));
        for (std::string entry; std::getline(list, entry, ';');) {
            std::size_t const at = entry.find('=');
            found.push_back({entry.substr(0, at), entry.substr(at + 1)});
        }
        GraphicsFake::instance().stages = &computing_stages();
        return found;
    }();
    return all;
}

} // namespace

} // namespace umbrixlib::test

using namespace umbrixlib::test;

int DeviceCount()
{
    return static_cast<int>(devices().size());
}

char const* DeviceName(int device)
{
    return device >= 0 && device < DeviceCount() ? devices()[static_cast<std::size_t>(device)].name.c_str()
                                                 : nullptr;
}

char const* ActiveBackend()
{
    int const device = GraphicsFake::instance().device;
    return DeviceName(device) == nullptr ? "none"
                                         : devices()[static_cast<std::size_t>(device)].backend.c_str();
}

char const* LastError()
{
    static std::string const skipped = variable("OCL_STAND_IN_SKIPPED");
    static std::string const error = variable("OCL_STAND_IN_ERROR");
    auto const calls = CallLog::instance().calls();
    bool const began = std::any_of(calls.begin(), calls.end(), [](std::string const& call) {
        return call.rfind("PreProcess_GPU", 0) == 0;
    });
    return began && !error.empty() ? error.c_str() : skipped.c_str();
}
