// SPDX-License-Identifier: MIT
#pragma once

#include "call_log.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "kept_directory.h"
#include "temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// A folder of empty files, and the calls that a walk through it makes. Stand-ins serve the pictures.
class FolderCalls : public testing::Test {
protected:
    using Calls = std::vector<std::string>;

    FolderCalls() { CallLog::instance().clear(); }

    void add_files(std::initializer_list<char const*> names) const
    {
        for (char const* const name : names) {
            std::filesystem::create_directories((root_ / name).parent_path());
            std::ofstream(root_ / name) << "x";
        }
    }

    std::string root() const { return root_.path().string(); }

    /// The recorded calls that start with one of @p starts, the root folder left out of the names.
    Calls calls(std::initializer_list<char const*> starts) const
    {
        Calls found;
        for (std::string call : CallLog::instance().calls()) {
            bool const wanted = std::any_of(starts.begin(), starts.end(),
                                            [&](char const* start) { return call.rfind(start, 0) == 0; });
            if (wanted) {
                if (std::size_t const at = call.find(root() + "/"); at != std::string::npos) {
                    call.erase(at, root().size() + 1);
                }
                found.push_back(call);
            }
        }
        return found;
    }
    Calls files() const { return calls({"ilLoadImage(", "ilSaveImage("}); }

    TemporaryFolder root_;
    KeptDirectory kept_;
    LinkedList<n_layer> layers_;
    std::string current_ = "before";
    std::string status_ = "before";
    int progress_ = 7;
};

} // namespace umbrixlib::test
