// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/temporary_lock.h"

#include <filesystem>
#include <memory>
#include <string>

namespace umbrixlib::toolkit {

/// What the names of this machine's OutputFiles begin with. The machine is in them because not every shared
/// folder shares its locks with other machines, too.
std::string output_prefix();

/// Whether a file is called like an OutputFile of any machine.
bool is_temporary_name(std::filesystem::path const& file);

/// The folder that an output's OutputFile lies in: that of the file itself if @p target is a link.
std::filesystem::path output_folder(std::filesystem::path const& target);

/// An empty file with a hidden name of its own beside the output that it is to become. Removed with the
/// object unless it was moved into place.
class OutputFile {
public:
    /// @param target    The output; its folder exists.
    /// @param extension Of the temporary name, with the dot: the format follows from it.
    OutputFile(std::filesystem::path target, std::string const& extension);
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    std::filesystem::path const& temporary() const { return temporary_; }

    /// Gives the file the target's name, in one step. Without @p overwrite a target that exists by now is
    /// kept, and a Failure tells.
    void move_into_place(bool overwrite);

private:
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::unique_ptr<TemporaryLock> lock_;
    bool placed_ = false;
};

} // namespace umbrixlib::toolkit
