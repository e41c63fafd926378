// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Plain arrays that grow by one element at a time. The count is the caller's; the arrays are made with array
/// new, and the caller releases the last one with array delete. An array is null only where its size is
/// below 1.
///
/// Errors: a failed allocation raises, and leaves the old array and its count as they were.
/// Threads: no state; one thread at a time for one array.

#include "common/export.h"

#include <string>

inline namespace umbrix_v0 {

/// A new array of @p new_size elements that begins as @p array does; @p array is released. Where
/// @p new_size is smaller, what does not fit is left out and nothing is filled.
///
/// @param array    Array of @p old_size elements, or null with an @p old_size of 0.
/// @param old_size Elements of @p array.
/// @param new_size Elements of the result; below 0 counts as 0.
/// @param fill     Value of the new elements.
///
/// Contract: the last old element is filled as well; it is expected to survive. An @p old_size equal to
/// @p new_size overwrites it too. Test: Arrays.SetUpArrayOverwritesTheLastOldElement
UMBRIX_API float* set_up_array(float* array, int old_size, int new_size, float fill);
/// @overload
UMBRIX_API int* set_up_array(int* array, int old_size, int new_size, int fill);
/// @overload
UMBRIX_API bool* set_up_array(bool* array, int old_size, int new_size, bool fill);

/// A new array of @p count elements of @p fill, an empty one for a count below 1. @p size becomes @p count,
/// whatever that is.
UMBRIX_API float* fill_array(int& size, int count, float fill);
/// @overload
UMBRIX_API int* fill_array(int& size, int count, int fill);
/// @overload
UMBRIX_API bool* fill_array(int& size, int count, bool fill);

/// A new array with @p value behind the @p size elements of @p array, which is released; 1 is added to
/// @p size.
///
/// Contract: with a @p size below 1 the result is one element, @p value, and @p array is not released; a
/// release is expected. Callers pass null then. Test: Arrays.AddValDoesNotReleaseAnArrayOfSizeZero
UMBRIX_API float* add_val(float* array, int& size, float value);
/// @overload
UMBRIX_API int* add_val(int* array, int& size, int value);
/// @overload
UMBRIX_API bool* add_val(bool* array, int& size, bool value);

/// A new array with @p value behind the @p size strings of @p array. With a @p size below 1 it has one
/// element, and @p size becomes 1.
///
/// Contract: @p array is never released, unlike by `add_val`; the caller keeps it and releases it. Test:
/// Arrays.AddStringNeverReleasesTheOldArray
UMBRIX_API std::string* add_string(std::string* array, int& size, std::string value);

} // namespace umbrix_v0
