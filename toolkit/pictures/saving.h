// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/base/depth.h"
#include "toolkit/pictures/picture.h"

#include <optional>
#include <string>

namespace umbrixlib::toolkit {

struct OutputFormat;

/// How a sample becomes a byte.
enum class Rounding {
    kCut,    ///< As the library's own files have it: the part behind the point is cut off.
    kNearest ///< To the nearest byte, which halves the error.
};

/// How a picture is to be saved.
struct Saving {
    std::optional<SampleType> depth; ///< Of the samples. Empty: what the format holds as a rule.
    Rounding rounding = Rounding::kCut;
    bool dither = false; ///< Of bytes: noise hides their steps. The same picture has the same noise.
    Compression compression = Compression::kDefault;

    bool operator==(Saving const&) const = default;
};

/// The same when the format is known.
struct SavedAs {
    SampleType depth = SampleType::kUint8;
    Rounding rounding = Rounding::kCut;
    bool dither = false;

    /// Whether the library's own conversions to bytes make what is saved.
    bool as_the_library_does() const
    {
        return depth == SampleType::kUint8 && rounding == Rounding::kCut && !dither;
    }
};

/// What @p saving means for a picture of @p kind in @p format. A Failure about @p name if the format has no
/// such samples, or no place for the kind.
SavedAs saved_as(Saving const& saving, OutputFormat const& format, PictureKind kind, std::string const& name);

/// The same for a picture made of one with samples of type @p source: as deep, where the format is, unless
/// another depth is asked for.
SavedAs saved_as_deep(SampleType source, Saving saving, OutputFormat const& format, PictureKind kind,
                      std::string const& name);

/// @p floats, the picture of a known kind, in the samples that are saved. Whole numbers stand for 0 to 1, of
/// normals for -1 to 1; what lies outside is cut, and NaN is 0. Other floats are as they are.
Picture in_samples(Picture floats, SavedAs const& as);

/// The depth in which @p format holds samples of @p type as they are, or else with the least loss.
SampleType nearest_depth(OutputFormat const& format, SampleType type);

/// @p picture, of any type, in the samples that are saved. Whole numbers of another depth stand for the same
/// share of 1: 8 bits become 16 without loss, and are the same again when these are cut.
Picture converted(Picture const& picture, SavedAs const& as);

} // namespace umbrixlib::toolkit
