// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>
#include <vector>

namespace umbrix_cli {

/// Help with the options in one column and their descriptions, folded, in another. A switch and its opposite
/// are shown as "--[no-]name".
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_group(std::string group, bool is_positional,
                           std::vector<CLI::Option const*> options) const override;
    std::string make_option(CLI::Option const* option, bool is_positional) const override;
    std::string make_option_name(CLI::Option const* option, bool is_positional) const override;
    std::string make_option_opts(CLI::Option const* option) const override;
};

} // namespace umbrix_cli
