// SPDX-License-Identifier: MIT
#pragma once

#include "capi/call_internal.h"
#include "toolkit/tasks/prepared_input.h"

#include <string>

/// @file
/// The pictures of a caller as the toolkit takes and gives them.

namespace umbrix_capi {

/// The picture as if it was just decoded. A WrongArgument, with the name of the argument, if there is none or
/// it has no texels.
umbrixlib::toolkit::DecodedFile decoded(umbrix_picture const* picture, char const* name);

/// The same as a task takes it.
umbrixlib::toolkit::PreparedInput prepared(umbrix_picture const* picture, char const* name,
                                           CallObserver& observer);

/// What the picture is for sure, as its kind or what it tells has it.
umbrixlib::toolkit::PictureKind known_kind(umbrix_picture const& picture);

/// Width and height, 0 without texels.
umbrixlib::toolkit::PictureSize size_of(umbrix_picture const& picture);

/// Throws a WrongArgument unless @p result, the argument of that name, can take floats of this form.
void check_result(umbrix_picture const* result, char const* name, umbrixlib::toolkit::PictureSize size,
                  int channels);

/// Gives @p made, in floats, to a result that was checked.
void give(umbrixlib::toolkit::Picture made, std::string const& name, umbrix_picture& result);

} // namespace umbrix_capi
