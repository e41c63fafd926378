// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/stack_description.h"
#include "toolkit/tasks/light/relight.h"
#include "toolkit/tasks/reports.h"
#include "toolkit/textures/texture_format.h"

#include <optional>
#include <string>
#include <umbrixlib.h>
#include <variant>
#include <vector>

/// @file
/// A task is a kind of work that can be done; a job is one order of a task, with all that it takes. One type
/// a task. File names are bytes as the user gave them and need not be UTF-8.

namespace umbrixlib::toolkit {

/// A picture to be written.
struct Output {
    std::string file; ///< Temporary; its extension names the format. Empty: the picture is not wanted.
    std::string name; ///< What messages call it.
    Saving saving{};

    bool operator==(Output const&) const = default;
};

/// The files of a job that makes one picture of another.
struct JobFiles {
    std::string input;
    Output output;
    double max_texels = 0; ///< Largest input that is worked on.

    bool operator==(JobFiles const&) const = default;
};

/// An Umbrix map from a height map or a normal map.
struct MapJob {
    using Report = MapReport;

    JobFiles files;
    Settings settings = kDefaults;
    std::optional<Kind> kind; ///< Of the input; empty: guess.
    /// Green of a normal map; empty: as the file tells, or the ending of its name, or else as the settings
    /// have it.
    std::optional<NormalY> normal_y;
    Graphics graphics;
    bool compare_cpu = false; ///< Tell how far the map is from one made on the CPU.

    bool operator==(MapJob const&) const = default;
};

/// A tangent-space normal map from a height map.
struct NormalJob {
    using Report = NormalReport;

    JobFiles files;
    Settings settings = kDefaults;
    NormalY normal_y = NormalY::kUp; ///< Of the normal map that is written.

    bool operator==(NormalJob const&) const = default;
};

/// A height map from a normal map: the one of which `NormalJob` makes the normal map with these settings.
struct HeightJob {
    using Report = HeightReport;

    JobFiles files;
    Settings settings = kDefaults;
    /// Green of the normal map; empty: as the file tells, or the ending of its name, or else as the settings
    /// have it.
    std::optional<NormalY> normal_y;
    HeightRange range{}; ///< What heights become 0 and 1 in the file, which tells it.

    bool operator==(HeightJob const&) const = default;
};

/// A map of the mean curvature, from a height map or a normal map.
struct CurvatureJob {
    using Report = CurvatureReport;

    JobFiles files;
    Settings settings = kDefaults;
    std::optional<Kind> kind;        ///< Of the input; empty: guess.
    std::optional<NormalY> normal_y; ///< As in HeightJob.

    bool operator==(CurvatureJob const&) const = default;
};

/// Bent normals from a height map, and the share of the sky that is open.
struct BentJob {
    using Report = BentReport;

    JobFiles files;
    Output occlusion; ///< Of the open shares, in one channel. It may be left out.
    Settings settings = kDefaults;
    NormalY normal_y = NormalY::kUp; ///< Of the bent normals.
    bool occlusion_alone = false;    ///< The files' output is the open shares, and the only one.

    bool operator==(BentJob const&) const = default;
};

/// The horizons of a height map in eight directions, four in each of two pictures.
struct HorizonJob {
    using Report = HorizonReport;

    JobFiles files; ///< The output is that of the first four directions.
    Output later;   ///< Of the other four. It may be left out.
    Settings settings = kDefaults;
    bool later_alone = false; ///< The files' output is that of the other four, and the only one.

    bool operator==(HorizonJob const&) const = default;
};

/// A lit picture of an Umbrix map, or a contact sheet of several.
struct RelightJob {
    using Report = RelightReport;

    JobFiles files;
    Light light{};
    Relighting look{};
    std::string albedo;         ///< Colours of the surface; "": none.
    bool mode_is_given = false; ///< Else the mode that the map itself tells is taken, if it tells one.
    bool force = false;         ///< Take a picture that tells that it is no map, too.
    int directions = 0;         ///< Of a contact sheet or an animation; 0: one picture.
    int cell = 0;               ///< Longest side of each of these, in texels.
    double seconds = 0;         ///< That an animation goes round in; 0: a contact sheet.

    bool operator==(RelightJob const&) const = default;
};

/// A web page that shows an Umbrix map in a light to be moved.
struct ViewJob {
    using Report = ViewReport;

    JobFiles files;     ///< The output is the page.
    std::string albedo; ///< Colours of the surface; "": none.
    std::string title;  ///< UTF-8.
    Modes mode = Modes_Projection;
    bool mode_is_given = false; ///< As in RelightJob.
    bool force = false;         ///< As in RelightJob.

    bool operator==(ViewJob const&) const = default;
};

/// A picture in another format or at another depth, and otherwise as it is.
struct ConvertJob {
    using Report = ConvertReport;

    JobFiles files;
    std::optional<HeightChannel> channel; ///< The only one that is wanted; empty: all.
    HeightReading reading;                ///< Of the colours, each by itself; its channel is not looked at.

    bool operator==(ConvertJob const&) const = default;
};

/// A texture file for engines, with smaller levels, from any picture.
struct ExportJob {
    using Report = ExportReport;

    JobFiles files;                       ///< The output's extension names the container.
    std::optional<PictureKind> kind;      ///< Empty: as the file tells, or its name, or else a guess.
    std::optional<TextureFormat> format;  ///< Empty: as the kind has it.
    int levels = kAllLevels;              ///< The largest one among them.
    std::optional<HeightChannel> channel; ///< As in ConvertJob.
    HeightReading reading;                ///< As in ConvertJob.

    bool operator==(ExportJob const&) const = default;
};

/// Where a channel of a packed picture comes from.
struct PackedChannel {
    std::string file;                          ///< Empty: the channel has one value.
    HeightChannel from = HeightChannel::kMean; ///< What of the file's picture it is; of a grey one its grey.
    bool invert = false;                       ///< 1 becomes 0.
    double value = 0;                          ///< Without a file.

    bool operator==(PackedChannel const&) const = default;
};

/// A picture whose channels are those of others.
struct PackJob {
    using Report = PackReport;

    JobFiles files;                      ///< The input is the first file of the channels.
    std::vector<PackedChannel> channels; ///< Red, green and blue, and alpha if it is wanted.

    bool operator==(PackJob const&) const = default;
};

/// The files of the channels, each once.
std::vector<std::string> distinct_inputs(PackJob const& job);

/// The samples of a picture for a program that leaves decoding to a worker. decoded_samples() reads them.
struct DecodeJob {
    using Report = DecodeReport;

    JobFiles files; ///< The output is the samples alone, row by row; its extension is not looked at.

    bool operator==(DecodeJob const&) const = default;
};

/// What is in a picture.
struct InfoJob {
    using Report = InfoReport;

    std::string input;
    double max_texels = 0;
    bool range = false; ///< Look into pictures of any size.

    bool operator==(InfoJob const&) const = default;
};

/// Whether a map is sound, and a mended copy of it if it is not.
struct CheckJob {
    using Report = CheckReport;

    JobFiles
        files; ///< The output is written if there is something to mend; none is named: nothing is mended.
    std::optional<PictureKind> kind; ///< Empty: as the file tells, or its name, or else a guess.
    std::optional<NormalY> normal_y; ///< Where green should point; empty: anywhere.
    std::optional<Modes> mode;       ///< Of the light of an Umbrix map; empty: as the file tells.
    bool h_tile = true;              ///< It should repeat sideways.
    bool v_tile = true;              ///< It should repeat up and down.

    bool operator==(CheckJob const&) const = default;
};

/// A normal map, a height map and an Umbrix map from layers.
struct StackJob {
    using Report = StackReport;

    std::string file; ///< That the description was read from, for messages.
    StackDescription description;
    Output normals;
    Output heights;
    Output map;
    bool map_from_layers = false; ///< The map is made by the library's own way with layers.
    double max_texels = 0;        ///< Largest layer that is worked on.
    Settings settings = kDefaults;
    Graphics graphics; ///< For the map.

    bool operator==(StackJob const&) const = default;
};

/// The relief at which a height map's normals come nearest to a normal map.
struct FitJob {
    using Report = FitReport;

    std::string heights;
    std::string normals;
    double max_texels = 0;
    Settings settings = kDefaults;
    bool fit_gaussian = false; ///< Find the sigma of the blur, too.

    bool operator==(FitJob const&) const = default;
};

/// The devices that a map can be made on.
struct DevicesJob {
    using Report = DevicesReport;

    bool operator==(DevicesJob const&) const = default;
};

/// The Umbrix map of a job of a work list, as the list describes it.
struct ListJob {
    using Report = ListReport;

    JobFiles files;
    umbrix_data data;
    std::vector<n_layer> layers;
    Graphics graphics;
    HeightReading reading{}; ///< Of the source's heights and the layers'.
};

/// The library's own walk of a folder. It ends early if the Observer is stopping.
struct FolderJob {
    using Report = FolderReport;

    std::string folder;
    std::string search; ///< Pattern of the files.
    bool recurse = false;
    Settings settings = kDefaults;
    Kind kind = Kind::kHeightMap;
    Graphics graphics;

    bool operator==(FolderJob const&) const = default;
};

/// A job of any task.
using Job = std::variant<MapJob, NormalJob, HeightJob, CurvatureJob, BentJob, HorizonJob, RelightJob, ViewJob,
                         ConvertJob, ExportJob, PackJob, InfoJob, CheckJob, StackJob, FitJob, DevicesJob,
                         ListJob, FolderJob, DecodeJob>;

/// A job that makes one picture of another.
using PictureJob =
    std::variant<MapJob, NormalJob, HeightJob, CurvatureJob, BentJob, HorizonJob, RelightJob, ListJob>;

/// The files that a job opens by name. Those below the folder of a FolderJob are not among them.
struct NamedFiles {
    std::vector<std::string> inputs;
    std::vector<std::string> outputs; ///< Temporary names.
};
NamedFiles files_of(Job const& job);

/// What messages call that which a job works on first.
std::string name_of_input(Job const& job);

/// How many pictures a job reads, and how large each may be; infinity if nothing bounds them.
struct Pictures {
    double count;
    double texels;
};
Pictures pictures_of(Job const& job);

} // namespace umbrixlib::toolkit
