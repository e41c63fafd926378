// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The damaged pictures: the same ones for all tests.

#include "batch_folder.h"
#include "corruption.h"
#include "gif_file.h"
#include "test_share.h"

namespace umbrixlib::test {

struct DamagedFile {
    std::string name;
    std::size_t variant; ///< 0: unharmed.
};

class HostileCorpus : public BatchTest {
protected:
    static constexpr char const* kFormats[] = {"png", "tga", "bmp", "jpg", "tif",
                                               "dds", "psd", "hdr", "ppm", "gif"};
    static constexpr std::size_t kVariants = 210; ///< Of each format, the unharmed file included.

    /// Writes the share of the files that this run takes into @p place, a folder that is there, and gives
    /// their paths.
    std::vector<DamagedFile> write_corpus(std::string const& place = "") const
    {
        write("hill.tga", hill(32));
        std::mt19937 random(20261);
        std::vector<DamagedFile> files;
        for (std::string const format : kFormats) {
            Bytes const good = seed(format);
            for (std::size_t i = 0; i < kVariants; ++i) {
                Bytes const bytes = i == 0 ? good : corrupted(good, random);
                if (i % test_share() == 0) {
                    std::string const name = place + format + std::to_string(i) + "." + format;
                    write(name, bytes);
                    files.push_back({name, i});
                }
            }
        }
        return files;
    }

private:
    Bytes seed(std::string const& format) const
    {
        if (format == "gif") {
            Bytes greys;
            for (int i = 0; i < 24 * 20; ++i) {
                greys.push_back(static_cast<std::uint8_t>(i % 24 * 10));
            }
            return gif_bytes(24, 20, greys);
        }
        std::string const name = "seed." + format;
        EXPECT_EQ(run({"normal", "hill.tga", "-o", name}).code, 0);
        Bytes const bytes = read(name);
        std::filesystem::remove(folder() / name);
        return bytes;
    }
};

} // namespace umbrixlib::test
