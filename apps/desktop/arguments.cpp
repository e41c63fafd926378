// SPDX-License-Identifier: MIT
#include "arguments.h"

#include <fmt/format.h>

namespace umbrix_desktop {

Arguments parse_arguments(std::vector<std::string> const& words)
{
    Arguments arguments;
    bool options = true;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string const& word = words[i];
        if (options && word == "--") {
            options = false;
        } else if (options && (word == "--help" || word == "-h")) {
            arguments.help = true;
        } else if (options && word == "--version") {
            arguments.version = true;
        } else if (options && word == "--screenshot") {
            if (i + 1 == words.size()) {
                arguments.fault = "--screenshot needs a file to write.";
                return arguments;
            }
            arguments.screenshot = words[++i];
        } else if (options && word.size() > 1 && word.front() == '-') {
            arguments.fault = fmt::format("There is no option {}.", word);
            return arguments;
        } else if (!arguments.file.empty()) {
            arguments.fault = fmt::format("One file can be opened, and {} is a second one.", word);
            return arguments;
        } else {
            arguments.file = word;
        }
    }
    if (!arguments.screenshot.empty() && arguments.file.empty()) {
        arguments.fault = "--screenshot needs a picture or a project to show.";
    }
    return arguments;
}

std::string help_text()
{
    return "Usage: umbrix-desktop [--screenshot FILE] [PICTURE|PROJECT]\n"
           "\n"
           "Makes Umbrix maps of height maps and normal maps, and shows what the settings do.\n"
           "\n"
           "  --screenshot FILE  Write the window as PNG once all is made, and end\n"
           "  --help, -h         Show this, and end\n"
           "  --version          Show the version, and end\n";
}

} // namespace umbrix_desktop
