// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Maps with one fault each, at three strengths, made of sound ones.

#include "toolkit/pictures/picture.h"
#include "toolkit/tasks/jobs.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// A way to spoil a map.
struct MapFault {
    std::string name;    ///< Of the fault itself: "crop".
    std::string finding; ///< That it has to lead to.
    toolkit::PictureKind kind;
    std::array<double, 3> strengths; ///< From the weakest on.
    std::function<toolkit::Picture(toolkit::Picture const&, double)> spoil;
};

/// All that are told of.
std::vector<MapFault> const& map_faults();

/// A picture of a file, of three channels or one, as the faults take it.
toolkit::Picture corpus_picture(std::string const& file);

/// The shipped maps of a kind: "normal" or "height".
std::vector<std::string> shipped_maps(std::string const& kind);

/// Writes @p picture as PNG.
void write_png(toolkit::Picture const& picture, std::string const& file);

/// What is found in a file: in a process of its own it would be the same.
toolkit::CheckReport check_of(std::string const& file, toolkit::PictureKind kind,
                              std::function<void(toolkit::CheckJob&)> const& change = {});

/// "normal-length seam-x"
std::string names_of(toolkit::Findings const& findings);

} // namespace umbrixlib::test
