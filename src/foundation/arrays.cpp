// SPDX-License-Identifier: MIT
#include "foundation/arrays.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace umbrixlib::detail {

namespace {

template <typename T>
std::unique_ptr<T[]> make_array(int count)
{
    return std::make_unique<T[]>(static_cast<std::size_t>(std::max(count, 0)));
}

template <typename T>
T* resized(T* array, int old_size, int new_size, T fill)
{
    auto result = make_array<T>(new_size);
    std::copy_n(array, std::min(old_size, new_size), result.get());
    for (int i = std::max(old_size, 1) - 1; i < new_size; ++i) {
        result[static_cast<std::size_t>(i)] = fill;
    }
    delete[] array;
    return result.release();
}

template <typename T>
T* filled(int& size, int count, T fill)
{
    auto result = make_array<T>(count);
    std::fill_n(result.get(), count, fill);
    size = count;
    return result.release();
}

template <typename T>
T* appended(T* array, int& size, T value)
{
    if (size < 1) {
        T* const result = new T[1]{value};
        ++size;
        return result;
    }
    auto result = std::make_unique<T[]>(static_cast<std::size_t>(size) + 1);
    std::copy_n(array, size, result.get());
    result[static_cast<std::size_t>(size)] = value;
    ++size;
    delete[] array;
    return result.release();
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

// The exported overloads of one element type.
#define UMBRIX_ARRAYS(T)                                                                                     \
    T* set_up_array(T* array, int old_size, int new_size, T fill)                                            \
    {                                                                                                        \
        return resized(array, old_size, new_size, fill);                                                     \
    }                                                                                                        \
    T* fill_array(int& size, int count, T fill)                                                              \
    {                                                                                                        \
        return filled(size, count, fill);                                                                    \
    }                                                                                                        \
    T* add_val(T* array, int& size, T value)                                                                 \
    {                                                                                                        \
        return appended(array, size, value);                                                                 \
    }

UMBRIX_ARRAYS(float)
UMBRIX_ARRAYS(int)
UMBRIX_ARRAYS(bool)
#undef UMBRIX_ARRAYS

std::string* add_string(std::string* array, int& size, std::string value)
{
    int const kept = std::max(size, 0);
    auto result = std::make_unique<std::string[]>(static_cast<std::size_t>(kept) + 1);
    std::copy_n(array, kept, result.get());
    result[static_cast<std::size_t>(kept)] = std::move(value);
    size = kept + 1;
    return result.release();
}

} // namespace umbrix_v0
