// SPDX-License-Identifier: MIT
// Any bytes as a preset: options within their ranges that come back from a saved preset, or one sentence that
// tells why not.
#include "demand.h"
#include "memory_file.h"
#include "one_line.h"
#include "options/setting_options.h"
#include "terminal/advice.h"
#include "toolkit/base/utf8.h"
#include "toolkit/settings/preset.h"

namespace {

using umbrixlib::fuzz::demand;
using namespace umbrix_cli;

void check(Preset const& preset, umbrixlib::test::MemoryFile const& file)
{
    check_ranges(preset.settings, "a preset");
    demand(umbrixlib::toolkit::printable(preset.description) == preset.description,
           "a description is shown as it is");
    std::string const text = preset_text(preset);
    file.set_content(text.data(), text.size());
    Preset const again = read_preset(file.name());
    demand(preset_text(again) == text, "a saved preset comes back as it was");
    demand(again.description == preset.description, "so does its description");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    static umbrixlib::test::MemoryFile const file;
    file.set_content(bytes, size);
    Preset preset;
    try {
        preset = read_preset(file.name());
    } catch (Failure const& failure) {
        umbrixlib::fuzz::demand_one_line(error_line(complaint_about(failure), "umbrix map"));
        return 0;
    }
    check(preset, file); // no Failure is right here
    return 0;
}
