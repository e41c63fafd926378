// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace umbrixlib::test {

/// A folder of its own, gone with all it holds when the object goes.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::random_device random;
        do {
            path_ = std::filesystem::temp_directory_path() / ("umbrix_test_" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::filesystem::path operator/(char const* name) const { return path_ / name; }
    std::filesystem::path const& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace umbrixlib::test
