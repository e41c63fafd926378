// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Jobs that are done in the process of the test.

#include "picture_files.h"
#include "temporary_folder.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/tasks/tasks.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// Keeps the notes that every user sees.
class Notes : public toolkit::Observer {
public:
    void note(std::string const& /*file*/, toolkit::Note const& note) override
    {
        if (!note.detail) {
            texts.push_back(note.text);
        }
    }

    std::vector<std::string> texts;
};

class TaskTest : public testing::Test {
protected:
    static constexpr double kMostTexels = 1 << 24;

    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    /// A grey PNG of 8 or 16 bits with a height of 0 to 1 for each x and y.
    template <typename Height>
    void put_heights(std::string const& name, int side, int bits, Height&& height_at) const
    {
        std::vector<Bytes> rows(static_cast<std::size_t>(side));
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                Bytes& row = rows[static_cast<std::size_t>(y)];
                auto const height = static_cast<double>(height_at(x, y));
                if (bits == 16) {
                    auto const value = static_cast<unsigned>(height * 65535.0 + 0.5);
                    row.push_back(static_cast<std::uint8_t>(value >> 8U));
                    row.push_back(static_cast<std::uint8_t>(value & 255U));
                } else {
                    row.push_back(static_cast<std::uint8_t>(height * 255.0 + 0.5));
                }
            }
        }
        write_file(path(name), png_bytes(side, PngColour::kGrey, bits, rows));
    }

    toolkit::JobFiles files(std::string const& input, std::string const& output) const
    {
        toolkit::JobFiles files;
        files.input = path(input);
        files.output = {path(output), output};
        files.max_texels = kMostTexels;
        return files;
    }

    toolkit::Picture picture(std::string const& name) const
    {
        toolkit::DecodedImage const image(path(name), name, kMostTexels);
        return image.to_picture(image.has_alpha());
    }

    /// How many values the red of a picture of 8 bits has.
    std::size_t reds(std::string const& name) const
    {
        toolkit::Picture const of_name = picture(name);
        std::set<std::uint8_t> values;
        for (std::size_t i = 0; i < of_name.texels(); ++i) {
            values.insert(of_name.texel(i)[0]);
        }
        return values.size();
    }

    TemporaryFolder folder_;
    toolkit::Observer nobody_;
};

} // namespace umbrixlib::test
