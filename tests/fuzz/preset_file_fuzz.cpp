// SPDX-License-Identifier: MIT
// Any bytes as a preset: options within their ranges that come back from a saved preset, or one sentence that
// tells why not. The same bytes as a profile.
#include "demand.h"
#include "memory_file.h"
#include "one_line.h"
#include "options/setting_options.h"
#include "terminal/advice.h"
#include "toolkit/base/utf8.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/profile.h"

#include <optional>

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

void check(Profile const& profile, umbrixlib::test::MemoryFile const& file)
{
    std::string const text = profile_text(profile);
    file.set_content(text.data(), text.size());
    demand(read_profile(file.name()) == profile, "a saved profile comes back as it was");
}

/// What @p read takes the file for; empty if it is refused, in one line.
template <typename Read>
auto taken(umbrixlib::test::MemoryFile const& file, Read&& read) -> std::optional<decltype(read(file.name()))>
{
    try {
        return read(file.name());
    } catch (Failure const& failure) {
        umbrixlib::fuzz::demand_one_line(error_line(complaint_about(failure), "umbrix map"));
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    static umbrixlib::test::MemoryFile const file;
    file.set_content(bytes, size);
    auto const preset = taken(file, read_preset);
    auto const profile = taken(file, read_profile);
    if (preset) { // no Failure is right from here on
        check(*preset, file);
    }
    if (profile) {
        check(*profile, file);
    }
    return 0;
}
