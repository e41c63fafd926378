// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace umbrixlib::test {

/// A folder of its own, gone with all it holds when the object goes.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "umbrix_test_XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a temporary folder");
        }
        path_ = pattern;
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
