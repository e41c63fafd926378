// SPDX-License-Identifier: MIT
#pragma once

#include "document/project_file.h"
#include "toolkit/files/temporary_lock.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace umbrix_desktop {

/// The copy of one document that outlives a crash: a project file in a folder, beside a lock that the system
/// releases when the process ends, however it ends.
class RecoveryCopy {
public:
    /// Locks a name of its own. A Failure if @p folder cannot be made or takes no file.
    explicit RecoveryCopy(std::filesystem::path folder);

    /// A clean end: nothing is left.
    ~RecoveryCopy();
    RecoveryCopy(RecoveryCopy const&) = delete;
    RecoveryCopy& operator=(RecoveryCopy const&) = delete;

    /// Writes the copy anew, in one step. A Failure if it cannot be written; the one before stays then.
    void write(Project const& project);

    /// Nothing is unsaved any more.
    void remove();

    std::filesystem::path const& file() const { return file_; }

private:
    std::filesystem::path file_;
    std::filesystem::path lock_file_;
    std::unique_ptr<toolkit::TemporaryLock> lock_;
};

/// A document that a process left which did not end cleanly.
struct LeftDocument {
    std::filesystem::path file;
    std::optional<Project> project; ///< Empty if it cannot be read.
    std::string failure;            ///< Why.
};

/// The copies in @p folder of processes that are gone, the newest first. Those of others at work are not
/// among them, and without the folder there are none.
std::vector<LeftDocument> left_documents(std::filesystem::path const& folder);

/// Removes a left copy: the user has it, or does not want it.
void remove_left(std::filesystem::path const& file);

} // namespace umbrix_desktop
