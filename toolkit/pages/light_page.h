// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A picture as a browser reads it.
struct WebPicture {
    std::string type; ///< "image/png", "image/jpeg"
    std::vector<std::uint8_t> bytes;
};

/// What a page shows.
struct LightPage {
    std::string title; ///< UTF-8.
    std::string mode;  ///< Of the map, as `--mode` has it.
    WebPicture map;
    WebPicture albedo; ///< No bytes: none.
};

/// One HTML file, with nothing from outside: an Umbrix map in a light that can be dragged, drawn with
/// WebGL 2. Its Content-Security-Policy lets nothing run but the page's own script, and nothing be fetched.
std::string html_of(LightPage const& page);

} // namespace umbrixlib::toolkit
