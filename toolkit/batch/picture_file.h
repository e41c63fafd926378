// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/temporary.h"
#include "toolkit/tasks/jobs.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace umbrixlib::toolkit {

/// What a file holds.
enum class FileHolds { kPicture, kTexture, kPage };

/// A picture on its way from an input to an output: the checks, the temporary file of the worker, and the
/// renaming in the end. Nothing temporary outlives the object.
class PictureFile {
public:
    /// Makes all checks; a Failure if one does not hold.
    /// @param named The output as the user knows it.
    PictureFile(std::filesystem::path const& input, std::filesystem::path named, bool overwrite,
                FileHolds holds = FileHolds::kPicture);

    /// Fills in the names of @p files.
    void name_files(JobFiles& files) const;

    /// Makes all checks again, and another temporary file in place of the first.
    void start_over();

    /// Gives the file its name. What the worker wrote is whole and read back by now.
    void complete();

    /// Since the object was made.
    double seconds() const;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::filesystem::path input_;
    std::filesystem::path named_;
    bool overwrite_;
    FileHolds holds_;
    std::optional<OutputFile> file_;
};

} // namespace umbrixlib::toolkit
