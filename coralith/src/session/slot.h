// SPDX-License-Identifier: MIT
#pragma once

#include "stages/shape.h"

#include <cstring>
#include <memory>
#include <utility>

namespace coralith {

/// Room for one buffer between calls. It is host memory: a device has a copy while a stage runs, so that a
/// device that goes away takes nothing with it.
class Slot {
public:
    explicit Slot(int components) : components_(components) {}

    int components() const { return components_; }
    bool holds(Shape shape) const { return taken_ && shape_.rows == shape.rows && shape_.cols == shape.cols; }
    float* data() { return data_.get(); }
    std::size_t bytes() const { return shape_.bytes(components_); }

    /// Makes room for a buffer, its values not set; memory that is large enough is used again.
    void take(Shape shape)
    {
        std::size_t const floats = shape.bytes(components_) / sizeof(float);
        taken_ = false;
        if (floats > capacity_) {
            data_.reset();
            capacity_ = 0;
            data_ = std::make_unique_for_overwrite<float[]>(floats);
            capacity_ = floats;
        }
        shape_ = shape;
        taken_ = true;
    }

    void take(Shape shape, float const* values)
    {
        take(shape);
        std::memcpy(data_.get(), values, bytes());
    }

    void clear() { *this = Slot(components_); }

private:
    int components_;
    bool taken_ = false;
    Shape shape_{0, 0};
    std::unique_ptr<float[]> data_;
    std::size_t capacity_ = 0;
};

} // namespace coralith
