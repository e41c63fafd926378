// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/temporary.h"
#include "toolkit/tasks/jobs.h"

#include <filesystem>
#include <memory>

namespace umbrixlib::toolkit {

/// One of the pictures that a stack is made into.
class StackTarget {
public:
    /// @param named  As the user called it.
    /// @param target The file behind that name.
    /// @param what   "normal map" and the like.
    /// @param field  The output in a job.
    StackTarget(std::filesystem::path named, std::filesystem::path target, char const* what,
                Output StackJob::*field);

    std::filesystem::path const& named() const { return named_; }
    char const* what() const { return what_; }
    bool is_same_file(StackTarget const& other) const;

    /// Makes the temporary file that a worker writes, and tells @p job of it.
    void open(StackJob& job);

    /// As OutputFile has it.
    void move_into_place(bool overwrite);

private:
    std::filesystem::path named_;
    std::filesystem::path target_;
    char const* what_;
    Output StackJob::*field_;
    std::unique_ptr<OutputFile> file_;
};

} // namespace umbrixlib::toolkit
