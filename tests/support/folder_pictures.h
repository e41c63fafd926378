// SPDX-License-Identifier: MIT
#pragma once

#include "kept_directory.h"
#include "picture_files.h"
#include "temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace umbrixlib::test {

/// A folder of real pictures to walk through, and another one for what single calls make of them.
class FolderPictures : public testing::Test {
protected:
    /// A picture of 8 x 8 texels.
    void add_picture(char const* name, unsigned seed, int channels) const
    {
        std::filesystem::create_directories((root_ / name).parent_path());
        Bytes bytes(static_cast<std::size_t>(8 * 8 * channels));
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>((i * 37 + seed * 11) & 255U);
        }
        write_file(root_ / name, tga_bytes(8, 8, channels, bytes));
    }

    std::set<std::string> names() const
    {
        std::set<std::string> found;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(root_.path())) {
            if (entry.is_regular_file()) {
                found.insert(std::filesystem::relative(entry.path(), root_.path()).string());
            }
        }
        return found;
    }

    /// The pixels alone: DevIL leaves the header's origin unset.
    static Bytes pixels(std::filesystem::path const& file) { return read_tga(file).pixels; }

    TemporaryFolder root_;
    TemporaryFolder other_;
    KeptDirectory kept_;
    std::string current_;
    std::string status_;
    int progress_ = 0;
};

} // namespace umbrixlib::test
