// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// A tree of pictures for batches.

#include "tool.h"
#include "toolkit/base/json_text.h"

#include <cerrno>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/prctl.h>
#include <thread>

namespace umbrixlib::test {

class BatchTest : public ToolTest {
protected:
    /// Writes a file and the folders that it lies in.
    void put(std::string const& name, Bytes const& bytes) const
    {
        std::filesystem::create_directories((folder() / name).parent_path());
        write(name, bytes);
    }
    void put_text(std::string const& name, std::string const& text) const
    {
        put(name, Bytes(text.begin(), text.end()));
    }

    /// Files below a folder with what is in them, by their paths in it.
    static std::map<std::string, Bytes> contents(std::filesystem::path const& top)
    {
        std::map<std::string, Bytes> all;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(top)) {
            if (!entry.is_directory()) {
                all[entry.path().lexically_relative(top).string()] = read_file(entry.path());
            }
        }
        return all;
    }

    /// Names of the files below the test's folders, that for temporary files included.
    std::set<std::string> tree() const
    {
        std::set<std::string> names;
        for (auto const& [name, bytes] : contents(folder())) {
            names.insert(name);
        }
        for (auto const& entry : std::filesystem::recursive_directory_iterator(scratch())) {
            names.insert(entry.path().string());
        }
        return names;
    }

    static std::set<std::string> with(std::set<std::string> names, std::set<std::string> const& more)
    {
        names.insert(more.begin(), more.end());
        return names;
    }

    /// The objects that a run with --json printed: those of the files by their names, and the last by "".
    static std::map<std::string, nlohmann::json> objects(Outcome const& outcome)
    {
        std::map<std::string, nlohmann::json> all;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) {
            nlohmann::json const object = toolkit::from_json_text(line);
            EXPECT_TRUE(all.emplace(object.value("source", ""), object).second) << line;
        }
        return all;
    }
};

/// Makes this process the parent of the workers of a tool that ends before them.
inline void adopt_workers()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

/// Whether all adopted workers end within ten seconds. While no tool runs.
inline bool adopted_workers_end()
{
    using namespace std::chrono_literals;
    for (auto waited = 0ms; waited < 10s; waited += 5ms) {
        pid_t ended = 0;
        while ((ended = waitpid(-1, nullptr, WNOHANG)) > 0) {
        }
        if (ended < 0) {
            return errno == ECHILD;
        }
        std::this_thread::sleep_for(5ms);
    }
    return false;
}

} // namespace umbrixlib::test
