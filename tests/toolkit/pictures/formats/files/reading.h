// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Files of a test through one decoder, with all that it says of them.

#include "picture_files.h"
#include "temporary_folder.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/decoder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace umbrixlib::test {

using toolkit::DecodedFile;
using toolkit::Decoder;
using toolkit::Failure;
using toolkit::Picture;

/// A decoder, and the name of the files that it is given.
class Reading : public testing::Test {
protected:
    Reading(Decoder const& decoder, char const* name) : decoder_(decoder), name_(name) {}

    DecodedFile read(Bytes const& file, double most_texels = 1 << 20) const
    {
        write_file(folder_ / name_, file);
        toolkit::SourceFile source(folder_ / name_, "input", most_texels);
        EXPECT_TRUE(decoder_.takes(source));
        return decoder_.decode(source);
    }

    /// Why the file is refused, and what helps; empty if it is taken.
    std::string refusal(Bytes const& file, double most_texels = 1 << 20) const
    {
        try {
            read(file, most_texels);
            return "";
        } catch (Failure const& failure) {
            EXPECT_EQ(failure.subject, "input");
            return failure.remedy.empty() ? failure.what() : failure.what() + ("; " + failure.remedy);
        }
    }

    /// The file is whole, and no shorter piece of it is taken; but for @p spare bytes at its end.
    void expect_no_piece_is_taken(Bytes const& file, std::size_t spare = 0) const
    {
        EXPECT_EQ(refusal(file), "");
        for (std::size_t size = 0; size + spare < file.size(); ++size) {
            Bytes const piece(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
            write_file(folder_ / name_, piece);
            toolkit::SourceFile source(folder_ / name_, "input", 1 << 20);
            if (decoder_.takes(source)) {
                EXPECT_THROW(decoder_.decode(source), Failure) << size;
            }
        }
    }

    /// Files with a few wrong bytes are taken or refused, each time alike.
    void expect_same_end_of_damage(Bytes const& file, int files = 300) const
    {
        std::mt19937 random(7);
        for (int i = 0; i < files; ++i) {
            Bytes damaged = file;
            for (auto wrong = 1 + random() % 3; wrong > 0; --wrong) {
                damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            }
            EXPECT_EQ(end_of(damaged), end_of(damaged)) << i;
        }
    }

    TemporaryFolder folder_;

private:
    std::pair<std::string, toolkit::TexelBytes> end_of(Bytes const& file) const
    {
        write_file(folder_ / name_, file);
        try {
            toolkit::SourceFile source(folder_ / name_, "input", 1 << 16);
            return decoder_.takes(source) ? std::pair{std::string(), decoder_.decode(source).picture.bytes}
                                          : std::pair{std::string("not taken"), toolkit::TexelBytes()};
        } catch (Failure const& failure) {
            return {failure.what(), {}};
        }
    }

    Decoder const& decoder_;
    char const* name_;
};

using Values = std::vector<double>;

/// The samples of a picture as numbers, the top row first.
inline Values values_of(Picture const& picture)
{
    Picture const turned = toolkit::upside_down(picture);
    return toolkit::with_samples(turned, [](auto samples) {
        Values values;
        for (auto const sample : samples) {
            values.push_back(toolkit::to_number(sample));
        }
        return values;
    });
}

/// @p first to @p last, whole numbers.
inline Values count_up(int first, int last)
{
    Values values;
    for (int value = first; value <= last; ++value) {
        values.push_back(value);
    }
    return values;
}

using Notes = std::vector<std::string>;

} // namespace umbrixlib::test
