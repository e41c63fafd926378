// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// Stands in for DevIL in an executable that links `devil_fake.cpp`: records every call and serves one image
/// at a time.
struct DevilFake {
    /// A file whose load replaces the image. A name without one leaves the image that is bound.
    struct File {
        int width = 0;
        int height = 0;
        int bits = 24;
        std::vector<unsigned char> bytes; ///< As `served`.
    };

    int width = 0;
    int height = 0;
    int bits = 24;
    unsigned char load_result = 1;
    unsigned char save_result = 1;
    std::map<std::string, File> files;
    std::vector<unsigned char> served; ///< What `ilCopyPixels` writes, from its first byte on.
    std::function<void(std::string const& call)> on_call; ///< If set, sees every call as it is recorded.
    std::vector<unsigned char> stored; ///< What the last `ilTexImage` or `ilSetPixels` was given.

    /// The one image of this executable.
    static DevilFake& instance();
    /// An image of the given shape whose byte i is i * 7 modulo 256, as the format of the copy lays it out.
    void serve(int image_width, int image_height, int image_bits);
};

} // namespace umbrixlib::test
