// SPDX-License-Identifier: MIT
// A front end's program: settings from the toolkit, and a failure of its own type.
#include <toolkit/base/failure.h>
#include <toolkit/settings/preset.h>
#include <umbrixlib.h>

using namespace umbrixlib::toolkit;

bool fails_as_it_should()
{
    try {
        read_preset("ston");
    } catch (Failure const& failure) {
        return failure.fault == Fault::kUnknownPreset && failure.subject == "ston";
    }
    return false;
}

int main()
{
    return !read_preset("stone").description.empty() && fails_as_it_should() && DeviceCount() >= 0 ? 0 : 1;
}
