// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"
#include "toolkit/settings/stack_description.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

enum class Task { kMap, kNormal, kRelight, kInfo, kStack, kFit, kDevices, kListJob, kFolder };

/// Everything that a worker is told. File names are bytes as the user gave them.
struct Job {
    Task task = Task::kInfo;
    std::string input;
    std::string output;  ///< The temporary file that the result goes to; its extension names the format.
    std::string scratch; ///< Folder for intermediate files.
    double max_texels = 0;
    Settings settings{};
    std::optional<Kind> kind; ///< Empty: guess.
    NormalY normal_y = NormalY::kUp;
    Graphics graphics;        ///< Maps only.
    bool compare_cpu = false; ///< Tell how far the map is from one made on the processor.

    // Relighting only.
    double azimuth_degrees = 0;
    double elevation_degrees = 0;
    int directions = 0; ///< Of a turntable; 0: one picture.
    int cell = 0;       ///< Longest side of a picture of a turntable.
    double exposure = 0;

    std::vector<std::uint8_t> list_job; ///< Jobs of work lists only, as `pack_list_job` writes them.

    // The library's own walk of a folder only. `input` is the folder, and `output` is not used.
    std::string search; ///< Pattern of the files.
    bool recurse = false;

    // Fitting only. `input` is the height map, and `output` is not used.
    std::string normals; ///< The normal map.
    bool fit_gaussian = false;

    StackJob stack; ///< Stacks only. `input` is the stack file, and `output` is not used.
};

/// The name of the file whose presence in a worker's scratch folder asks the library's walk to stop.
inline constexpr char const* kStopRequest = "stop";

std::vector<std::uint8_t> pack(Job const& job);
Job unpack_job(std::vector<std::uint8_t> const& bytes);

/// Does the job; sends notes and progress, returns what is to be reported. Called in a worker process.
nlohmann::json run_map_task(Job const& job);
nlohmann::json run_normal_task(Job const& job);
nlohmann::json run_relight_task(Job const& job);
nlohmann::json run_info_task(Job const& job);
nlohmann::json run_stack_task(Job const& job);
nlohmann::json run_devices_task();
nlohmann::json run_list_job_task(Job const& job);
nlohmann::json run_folder_task(Job const& job);
nlohmann::json run_fit_task(Job const& job);

} // namespace umbrixlib::toolkit
