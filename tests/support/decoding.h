// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Files of a test through the decoders of the toolkit.

#include "picture_files.h"
#include "temporary_folder.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/decoded_image.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {

using toolkit::DecodedImage;
using toolkit::Failure;
using toolkit::Picture;

constexpr double kMostTexels = 1 << 20;

class Decoding : public testing::Test {
protected:
    DecodedImage decoded(Bytes const& file, char const* name, double most_texels = kMostTexels) const
    {
        write_file(folder_ / name, file);
        return {folder_ / name, "input", most_texels};
    }

    /// What is wrong with the file; empty if nothing is.
    std::string complaint(Bytes const& file, char const* name, double most_texels = kMostTexels) const
    {
        try {
            decoded(file, name, most_texels);
            return "";
        } catch (Failure const& failure) {
            EXPECT_EQ(failure.subject, "input");
            return failure.what();
        }
    }

    /// No shorter piece of the file is taken for the whole picture.
    void expect_no_piece_is_taken(Bytes const& file, char const* name, std::size_t spare = 0) const
    {
        EXPECT_EQ(complaint(file, name), "");
        for (std::size_t size = 0; size + spare < file.size(); ++size) {
            Bytes const piece(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_NE(complaint(piece, name).find("damaged"), std::string::npos) << size;
        }
    }

    TemporaryFolder folder_;
};

/// The samples of a picture as numbers, the bottom row first.
template <typename Sample>
std::vector<int> numbers(Picture const& picture)
{
    auto const samples = picture.samples<Sample>();
    return {samples.begin(), samples.end()};
}

inline std::vector<int> bytes_of(Picture const& picture)
{
    EXPECT_EQ(picture.type, SampleType::kUint8);
    return numbers<std::uint8_t>(picture);
}

inline std::vector<int> shorts_of(Picture const& picture)
{
    EXPECT_EQ(picture.type, SampleType::kUint16);
    return numbers<std::uint16_t>(picture);
}

using Numbers = std::vector<int>;

} // namespace umbrixlib::test
