// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

/// The two files between the tool and the library. The library always gets an uncompressed TGA of 24 or 32
/// bits and makes another: the user's file is decoded once, under a time limit and in the one place that
/// copes with every depth, and what the library does by file name (a ".vtf" anywhere in the output's reverses
/// the rows) does not depend on the user's names.
struct Intermediate {
    explicit Intermediate(std::filesystem::path const& folder)
        : source((folder / "source.tga").string()), result((folder / "result.tga").string())
    {
    }

    std::string source;
    std::string result;
};

/// Writes what the library is to read. A Failure if there is no room for it.
void write_source(std::filesystem::path const& file, Picture const& picture);

/// The picture that the library made. A Failure if it did not write all of it.
Picture read_result(std::filesystem::path const& file, int width, int height, int channels);

/// Whether DevIL decodes the file as TIFF, by its extension.
bool is_tiff(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
