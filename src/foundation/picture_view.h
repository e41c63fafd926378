// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Pictures in memory, as the entries that need no files take them.

namespace umbrixlib {

/// What one sample of a picture is.
enum class SampleType {
    kUint8,  ///< k stands for k / 255.
    kUint16, ///< k stands for k / 65535; the processor's byte order.
    kHalf,   ///< IEEE 754 binary16, as it stands; the processor's byte order.
    kFloat,  ///< As it stands.
};

/// A picture that stays the caller's, only looked at while a call runs.
///
/// Rows are packed, without padding, texels lie side by side with their channels interleaved. The first row
/// is the bottom row of the picture. No sample is converted to a narrower type on its way through the
/// library.
struct PictureView {
    void const* samples = nullptr;        ///< width * height * channels samples, aligned for their type.
    int width = 0;                        ///< In texels.
    int height = 0;                       ///< In texels.
    int channels = 0;                     ///< 1 grey, 2 grey and alpha, 3 colours, 4 colours and alpha.
    SampleType type = SampleType::kUint8; ///< Of every sample.
};

/// How a picture of heights goes on beyond its borders where normals are made of it: it repeats, or its
/// slopes go on. What is made from file to file always repeats.
struct Borders {
    bool h_tile = true; ///< It repeats sideways.
    bool v_tile = true; ///< It repeats up and down.

    bool all_repeat() const { return h_tile && v_tile; } ///< As in the file functions.
};

/// Marks a constructor of what works with pictures in memory alone, and says what holds there.
struct InMemory {
    Borders borders{}; ///< Of all heights.
};

/// What the colours of a picture of normals are.
enum class NormalCoding {
    kColours, ///< 0..1 stands for -1..1, as in image files.
    kVectors, ///< The components themselves.
};

} // namespace umbrixlib
