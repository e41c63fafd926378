// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"
#include "toolkit/checks/finding.h"
#include "toolkit/pictures/analysis/channel_ranges.h"
#include "toolkit/pictures/heights/height_reading.h"

#include <cstddef>
#include <optional>
#include <string>
#include <umbrixlib.h>
#include <variant>
#include <vector>

/// @file
/// What a job has made or found out, one type a task. Sizes are in texels, angles in degrees.

namespace umbrixlib::toolkit {

/// The device that a map was made on.
struct DeviceReport {
    std::string name;
    std::string backend;

    bool operator==(DeviceReport const&) const = default;
};

struct MapReport {
    int width = 0;
    int height = 0;
    Kind kind = Kind::kHeightMap;       ///< What the input was taken for.
    bool guessed = false;               ///< The kind was not given.
    std::string reason;                 ///< What speaks for the kind that would be guessed.
    NormalY green = NormalY::kUp;       ///< Of a normal map.
    bool green_by_name = false;         ///< The ending of its name settled it.
    float n_scale = 0;                  ///< Strength of the normals.
    std::optional<HeightRange> heights; ///< What became 0 and 1, if other heights did.
    std::optional<DeviceReport> device;
    /// Largest of each channel from the CPU's map, of 255; empty: not asked for.
    std::vector<int> difference;

    bool operator==(MapReport const&) const = default;
};

struct NormalReport {
    int width = 0;
    int height = 0;
    float n_scale = 0;                  ///< Strength of the normals.
    std::optional<HeightRange> heights; ///< As in MapReport.

    bool operator==(NormalReport const&) const = default;
};

struct HeightReport {
    int width = 0;
    int height = 0;
    NormalY green = NormalY::kUp; ///< Of the normal map.
    float n_scale = 0;            ///< Strength of the normals.
    std::string reading;          ///< How its samples were read: "bytes that were cut off".
    double low = 0;               ///< The lowest height, before any range.
    double high = 0;
    std::optional<HeightRange> range; ///< What became 0 and 1, if other heights did.
    bool stripes_x_unseen = false;    ///< No height has stripes across x that are a texel wide.
    bool stripes_y_unseen = false;    ///< The same across y; with both, none has the chessboard.

    bool operator==(HeightReport const&) const = default;
};

struct CurvatureReport {
    int width = 0;
    int height = 0;
    Kind kind = Kind::kHeightMap;       ///< What the input was taken for.
    bool guessed = false;               ///< The kind was not given.
    std::string reason;                 ///< What speaks for the kind that would be guessed.
    NormalY green = NormalY::kUp;       ///< Of a normal map.
    std::string reading;                ///< Of a normal map, as in HeightReport.
    float n_scale = 0;                  ///< Strength of the normals of a height map.
    std::optional<HeightRange> heights; ///< As in MapReport.
    double radius = 0;                  ///< Of the ball that is white, in image widths.

    bool operator==(CurvatureReport const&) const = default;
};

struct BentReport {
    int width = 0;
    int height = 0;
    float h_scale = 0;                  ///< Of the relief, in image widths.
    std::optional<HeightRange> heights; ///< As in MapReport.
    double open = 0;                    ///< Share of the sky, in the mean.

    bool operator==(BentReport const&) const = default;
};

struct HorizonReport {
    int width = 0;
    int height = 0;
    float h_scale = 0;                  ///< Of the relief, in image widths.
    std::optional<HeightRange> heights; ///< As in MapReport.

    bool operator==(HorizonReport const&) const = default;
};

struct RelightReport {
    int width = 0; ///< Of the picture or the contact sheet that was written.
    int height = 0;

    bool operator==(RelightReport const&) const = default;
};

struct ViewReport {
    int width = 0; ///< Of the map.
    int height = 0;
    double bytes = 0; ///< Of the page.

    bool operator==(ViewReport const&) const = default;
};

struct ConvertReport {
    int width = 0;
    int height = 0;
    std::string from;                   ///< "16-bit grey PNG"
    std::string to;                     ///< "half-float grey"
    std::optional<HeightRange> heights; ///< What became 0 and 1, if other colours did.

    bool operator==(ConvertReport const&) const = default;
};

struct ExportReport {
    int width = 0; ///< Of the largest level.
    int height = 0;
    PictureKind taken_for = PictureKind::kUnknown; ///< Normals, heights in one channel, or any other data.
    std::string because;                           ///< What speaks for that; "" if it was given.
    int channels = 0;                              ///< Of the picture that was stored.
    std::string form;                              ///< "BC5", "8-bit RGBA".
    int levels = 0;
    std::size_t bytes = 0;              ///< Of all levels.
    std::optional<HeightRange> heights; ///< As in ConvertReport.

    bool operator==(ExportReport const&) const = default;
};

struct PackReport {
    int width = 0;
    int height = 0;
    std::string to; ///< "8-bit colour"

    bool operator==(PackReport const&) const = default;
};

struct InfoReport {
    int width = 0;
    int height = 0;
    std::string format; ///< "PNG", "TIFF": whatever the name says.
    int bits_per_channel = 0;
    std::string pixel;        ///< "8-bit grey with alpha" and the like.
    bool only_header = false; ///< It was too large to look into: nothing below is known, nor the samples.
    std::vector<ChannelRange> channels;
    bool has_8_bit_steps = false;      ///< Of 16 bits or floats, and with no more levels than 8 bits have.
    Kind taken_for = Kind::kHeightMap; ///< What a map would be made from.
    std::string because;               ///< What speaks for that.
    std::vector<std::string> notes;    ///< How the file was taken, where a user has to know it.
    Attributes attributes;             ///< What it tells of how it was made.

    bool operator==(InfoReport const&) const = default;
};

struct CheckReport {
    int width = 0;
    int height = 0;
    PictureKind taken_for = PictureKind::kHeights; ///< What it was taken for.
    std::string because;                           ///< What speaks for that; empty: it was given.
    std::optional<NormalY> green;                  ///< Of a normal map; empty: its slopes do not tell.
    double green_times = 1.0;  ///< How many times better the slopes fit than the other way.
    std::optional<Modes> mode; ///< Of the light of an Umbrix map; empty: it is not known.
    Findings findings;
    std::vector<std::string>
        mended; ///< Names of the findings that the copy is without; empty: there is none.

    bool operator==(CheckReport const&) const = default;
};

struct StackReport {
    int width = 0;
    int height = 0;
    std::size_t layers = 0; ///< That took part.

    bool operator==(StackReport const&) const = default;
};

struct FitReport {
    int width = 0;
    int height = 0;
    double relief = 0; ///< In image widths.
    double n_scale = 0;
    double gaussian = 0;   ///< Sigma in texels.
    bool inverted = false; ///< Dark heights are high.
    NormalY green = NormalY::kUp;
    double mean_angle_degrees = 0;               ///< That remains between the normals.
    double other_heights_mean_angle_degrees = 0; ///< With the heights the other way up.
    double other_green_mean_angle_degrees = 0;   ///< With the other direction of green.
    double flat_mean_angle_degrees = 0;          ///< Of flat ground.
    bool beats_flat = false; ///< The relief fits: it is nearer than flat ground by a tenth.

    bool operator==(FitReport const&) const = default;
};

struct DevicesReport {
    struct Device {
        int number = 0;
        std::string name;
        std::string backend;
        bool is_default = false; ///< Taken where no number is given.

        bool operator==(Device const&) const = default;
    };
    std::vector<Device> devices;
    std::string last_error; ///< Why one was not used; may be empty.

    bool operator==(DevicesReport const&) const = default;
};

struct ListReport {
    int width = 0;
    int height = 0;
    Kind kind = Kind::kHeightMap; ///< As the job has it.

    bool operator==(ListReport const&) const = default;
};

struct FolderReport {
    bool ran_through = false; ///< The library's walk was not stopped.

    bool operator==(FolderReport const&) const = default;
};

/// A picture without its samples.
struct DecodeReport {
    int width = 0;
    int height = 0;
    int channels = 0;
    SampleType type = SampleType::kUint8;
    PictureKind picture_kind = PictureKind::kUnknown;
    bool palette = false;           ///< As in DecodedFile, and so are the next two.
    std::string format;             ///< "PNG", "TIFF".
    std::vector<std::string> notes; ///< How the file was taken, where a user has to know it.
    Attributes attributes;          ///< What it tells of how it was made.

    bool operator==(DecodeReport const&) const = default;
};

/// The report of a job of any task. In the order of Job.
using Report =
    std::variant<MapReport, NormalReport, HeightReport, CurvatureReport, BentReport, HorizonReport,
                 RelightReport, ViewReport, ConvertReport, ExportReport, PackReport, InfoReport, CheckReport,
                 StackReport, FitReport, DevicesReport, ListReport, FolderReport, DecodeReport>;

} // namespace umbrixlib::toolkit
