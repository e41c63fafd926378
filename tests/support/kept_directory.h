// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::test {

/// Puts the current directory of the process back when it goes.
class KeptDirectory {
public:
    KeptDirectory() = default;
    KeptDirectory(KeptDirectory const&) = delete;
    KeptDirectory& operator=(KeptDirectory const&) = delete;
    ~KeptDirectory()
    {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

} // namespace umbrixlib::test
