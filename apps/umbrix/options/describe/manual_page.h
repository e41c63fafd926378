// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace umbrix_cli {

/// The manual page of @p command in the language of man(7), made from what its help is made from: the tool's
/// own page, or that of one of its commands. Commands inside a command stand on its page.
/// @param name "umbrix" or "umbrix map".
std::string manual_page(CLI::App const& command, std::string const& name);

/// "umbrix-map" for "umbrix map".
std::string manual_page_name(std::string name);

} // namespace umbrix_cli
