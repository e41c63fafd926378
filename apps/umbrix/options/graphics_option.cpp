// SPDX-License-Identifier: MIT
#include "options/graphics_option.h"

#include "terminal/complaint.h"

#include <CLI/Error.hpp>
#include <charconv>
#include <fmt/format.h>

namespace umbrix_cli {

namespace {

constexpr char const* kGroup = "Graphics processor";
constexpr char const* kGpu = "--gpu";

int parse_device(std::string const& text)
{
    int device = -1;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, device);
    if (error != std::errc() || stop != end || device < 0) {
        throw CLI::ValidationError(
            kGpu, fmt::format("'{}' is not the number of a device; umbrix devices lists them", text));
    }
    return device;
}

bool is_number(std::string const& word)
{
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

CLI::Option* declare_graphics(CLI::App& command, Graphics& graphics)
{
    std::function<void(std::string const&)> const parse = [&graphics](std::string const& text) {
        graphics.device = parse_device(text);
    };
    CLI::Option* const gpu =
        command
            .add_option_function<std::string>(
                kGpu, parse,
                "Make the map on a graphics processor, whose number `umbrix devices` tells; heights then "
                "count inverted and at full scale [default 0, the first one]")
            ->type_name("[N]")
            ->group(kGroup);
    command
        .add_flag("--match-cpu", graphics.match_cpu,
                  "With --gpu, turn and scale the heights so that the map is the one without --gpu")
        ->group(kGroup)
        ->needs(gpu);
    return gpu;
}

void check_graphics_usage(Graphics const& graphics, Settings const& settings)
{
    if (!graphics.match_cpu) {
        return;
    }
    bool const graded = settings.h_contrast != 0.0f || settings.h_min != 0 || settings.h_max != 255 ||
                        settings.h_brightness != 0.0f;
    if (graded) {
        throw UsageError("--match-cpu", "it takes the grading of the heights for itself",
                         "leave --h-contrast, --h-min, --h-max and --h-brightness out");
    }
    float const scale = h_scale_of(settings);
    if (!(scale > 0.0f && scale <= 1.0f)) {
        throw UsageError("--match-cpu",
                         fmt::format("a graphics processor cannot be given a height scale of {}", scale),
                         "give a --relief or --h-scale above 0 and up to 1");
    }
}

std::vector<std::string> with_device_numbers(std::vector<std::string> const& words)
{
    std::vector<std::string> result;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--") {
            result.insert(result.end(), words.begin() + static_cast<std::ptrdiff_t>(i), words.end());
            break;
        }
        if (words[i] != kGpu) {
            result.push_back(words[i]);
        } else if (i + 1 < words.size() && is_number(words[i + 1])) {
            result.push_back(fmt::format("{}={}", kGpu, words[++i]));
        } else {
            result.push_back(fmt::format("{}=0", kGpu));
        }
    }
    return result;
}

} // namespace umbrix_cli
