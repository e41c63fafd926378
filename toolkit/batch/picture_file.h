// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/temporary.h"
#include "toolkit/tasks/job.h"

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

/// A finished file and the worker's report about it.
struct Written {
    std::filesystem::path output;
    nlohmann::json report;
    double seconds;
};

/// A picture on its way from an input to an output: the checks, the temporary files of the worker, and the
/// renaming in the end. Nothing temporary outlives the object.
class PictureFile {
public:
    /// Makes all checks; a Failure if one does not hold.
    /// @param named The output as the user knows it.
    PictureFile(std::filesystem::path const& input, std::filesystem::path named, bool overwrite);

    /// Fills in the fields of @p job that name files.
    void name_files(Job& job) const;

    /// Gives the file its name. What the worker wrote is whole and read back by now.
    Written complete(nlohmann::json report);

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::filesystem::path input_;
    std::filesystem::path named_;
    bool overwrite_;
    OutputFile file_;
    ScratchFolder scratch_;
};

} // namespace umbrixlib::toolkit
