// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

/// Numbers of a picture, of a fixed count, zero at first. Many of them are as TexelArray has them: a
/// std::vector would bring all their pages in on one thread.
template <typename T>
class TexelNumbers {
public:
    using value_type = T;

    TexelNumbers() = default;
    explicit TexelNumbers(std::size_t size) : numbers_(make_texel_array<T>(size)), size_(size) {}

    TexelNumbers(T const* first, T const* last) : TexelNumbers(static_cast<std::size_t>(last - first))
    {
        std::copy(first, last, begin());
    }
    TexelNumbers(std::initializer_list<T> numbers) : TexelNumbers(numbers.begin(), numbers.end()) {}

    TexelNumbers(TexelNumbers const& other) : TexelNumbers(other.begin(), other.end()) {}
    TexelNumbers(TexelNumbers&& other) noexcept
        : numbers_(std::move(other.numbers_)), size_(std::exchange(other.size_, 0))
    {
    }
    TexelNumbers& operator=(TexelNumbers other) noexcept
    {
        std::swap(numbers_, other.numbers_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~TexelNumbers() = default;

    T* data() { return numbers_.get(); }
    T const* data() const { return numbers_.get(); }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    T* begin() { return data(); }
    T* end() { return data() + size_; }
    T const* begin() const { return data(); }
    T const* end() const { return data() + size_; }

    T& operator[](std::size_t index) { return numbers_[index]; }
    T const& operator[](std::size_t index) const { return numbers_[index]; }

    friend bool operator==(TexelNumbers const& one, TexelNumbers const& other)
    {
        return std::equal(one.begin(), one.end(), other.begin(), other.end());
    }
    friend bool operator==(TexelNumbers const& one, std::vector<T> const& other)
    {
        return std::equal(one.begin(), one.end(), other.begin(), other.end());
    }

private:
    TexelArray<T> numbers_;
    std::size_t size_ = 0;
};

using TexelBytes = TexelNumbers<std::uint8_t>;

} // namespace umbrixlib::toolkit
