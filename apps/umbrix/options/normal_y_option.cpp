// SPDX-License-Identifier: MIT
#include "options/normal_y_option.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>

namespace umbrix_cli {

CLI::Option* declare_normal_y(CLI::App& command, std::optional<NormalY>& value,
                              std::string const& description)
{
    std::function<void(std::string const&)> const parse = [&value](std::string const& text) {
        if (text != "up" && text != "down") {
            throw CLI::ValidationError("--normal-y", fmt::format("'{}' is neither up nor down", text));
        }
        value = text == "up" ? NormalY::kUp : NormalY::kDown;
    };
    return command
        .add_option_function<std::string>("--normal-y", parse,
                                          fmt::format("{}: up (OpenGL) is brighter green on slopes that face "
                                                      "the top of the picture, down (DirectX) "
                                                      "on slopes that face its bottom [up, down; default up]",
                                                      description))
        ->type_name("WAY");
}

} // namespace umbrix_cli
