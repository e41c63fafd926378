// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// A tree of pictures for batches.

#include "tool.h"

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

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

    /// Names of the files below the test's folders, those for intermediate files included.
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
            nlohmann::json const object = nlohmann::json::parse(line);
            EXPECT_TRUE(all.emplace(object.value("source", ""), object).second) << line;
        }
        return all;
    }
};

/// Whether there are processes whose intermediate files are in @p folder.
inline bool has_workers_in(std::filesystem::path const& folder)
{
    for (auto const& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream stream(entry.path() / "environ", std::ios::binary);
        std::string const environment((std::istreambuf_iterator<char>(stream)), {});
        if (environment.find("TMPDIR=" + folder.string() + '\0') != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace umbrixlib::test
