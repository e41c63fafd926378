// SPDX-License-Identifier: MIT
#include "toolkit/files/file_search.h"

#include "toolkit/base/glob.h"
#include "toolkit/pictures/input_formats.h"

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

using FolderId = std::pair<dev_t, ino_t>;

struct Folder {
    fs::path path;
    fs::path tree;
};

class Finder {
public:
    explicit Finder(Search const& search) : search_(search) {}

    SearchResult run()
    {
        for (std::string const& place : search_.places) {
            look_at(place);
        }
        std::sort(result_.files.begin(), result_.files.end(),
                  [](FoundFile const& a, FoundFile const& b) { return a.file < b.file; });
        return std::move(result_);
    }

private:
    void look_at(std::string const& place)
    {
        std::error_code error;
        std::string const asked_for = fs::path(place).filename().string();
        if (!has_wildcards(place) || fs::exists(fs::symlink_status(place, error))) {
            look_at_name(place, fs::path(), asked_for);
            return;
        }
        fs::path const fixed = fixed_part(place);
        for (fs::path const& name : expand(place)) {
            look_at_name(name, name.lexically_relative(fixed.empty() ? fs::path() : fixed), asked_for);
        }
    }

    /// @param below Where it lies in the tree; empty: the tree begins here.
    void look_at_name(fs::path const& name, fs::path const& below, std::string const& asked_for)
    {
        std::error_code error;
        fs::file_status const status = fs::status(name, error);
        if (fs::is_directory(status)) {
            walk({name, below});
        } else if (status.type() == fs::file_type::not_found &&
                   !fs::exists(fs::symlink_status(name, error))) {
            result_.failures.emplace_back(Fault::kMissingFile, name.string(),
                                          "there is no such file or folder");
        } else if (!fs::exists(status) && !fs::is_symlink(fs::symlink_status(name, error))) {
            result_.failures.emplace_back(Fault::kMissingFile, name.string(), error.message());
        } else if (is_asked_for(name.filename().string())) {
            add(name, below.parent_path()).asked_for.push_back(asked_for);
        }
    }

    /// Linked folders come last, so that a folder is found by its own name rather than by a link to it.
    void walk(Folder const& start)
    {
        std::deque<Folder> linked{start};
        std::set<FolderId> walked;
        while (!linked.empty()) {
            std::vector<Folder> open{linked.front()};
            linked.pop_front();
            while (!open.empty()) {
                Folder const folder = std::move(open.back());
                open.pop_back();
                walk_one(folder, walked, open, linked);
            }
        }
    }

    void walk_one(Folder const& folder, std::set<FolderId>& walked, std::vector<Folder>& open,
                  std::deque<Folder>& linked)
    {
        struct stat status = {};
        if (stat(folder.path.c_str(), &status) == 0 && !walked.emplace(status.st_dev, status.st_ino).second) {
            return;
        }
        for (fs::path const& name : names_in(folder.path)) {
            fs::path const path = folder.path / name;
            std::error_code error;
            fs::file_type const type = fs::symlink_status(path, error).type();
            if (type == fs::file_type::not_found) {
                continue; // it was removed since
            }
            if (error) {
                result_.failures.emplace_back(Fault::kUnreachable, path.string(),
                                              "it cannot be looked at: " + error.message());
            } else if (fs::is_directory(path, error)) {
                if (search_.recurse && !name.string().starts_with('.') && !is_avoided(path)) {
                    Folder const next{path, folder.tree / name};
                    type == fs::file_type::symlink ? linked.push_back(next) : open.push_back(next);
                }
            } else if (is_wanted(name)) {
                add(path, folder.tree);
            }
        }
    }

    std::vector<fs::path> names_in(fs::path const& folder)
    {
        std::vector<fs::path> names;
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            names.push_back(entry->path().filename());
        }
        if (error) {
            result_.failures.emplace_back(Fault::kUnreadable, folder.string(),
                                          "the folder cannot be read: " + error.message());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    bool is_avoided(fs::path const& folder) const
    {
        std::error_code error;
        return !search_.avoided.empty() && fs::equivalent(folder, search_.avoided, error);
    }

    bool is_asked_for(std::string const& name) const
    {
        auto const describes = [&](std::string const& pattern) { return matches(pattern, name); };
        return (search_.include.empty() || std::ranges::any_of(search_.include, describes)) &&
               std::ranges::none_of(search_.exclude, describes);
    }

    /// The same for a file in a folder.
    bool is_wanted(fs::path const& name) const
    {
        if (!is_asked_for(name.string())) {
            return false;
        }
        if (search_.include.empty()) {
            return !name.string().starts_with('.') && is_called_like_a_picture(name);
        }
        // "*_H.*" means pictures, and not what some programs put beside each.
        auto const means_it = [&](std::string const& pattern) {
            return matches(pattern, name.string()) && !has_wildcards(fs::path(pattern).extension().string());
        };
        return is_called_like_a_picture(name) || std::ranges::any_of(search_.include, means_it);
    }

    FoundFile& add(fs::path const& file, fs::path const& tree)
    {
        // Not the file behind a link: its name gives the output its own.
        std::error_code error;
        fs::path const folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
        fs::path const key = fs::weakly_canonical(folder, error) / file.filename();
        auto const [entry, is_new] = found_.emplace(key, result_.files.size());
        if (is_new) {
            result_.files.push_back({file, tree});
        }
        return result_.files[entry->second];
    }

    Search const& search_;
    std::map<fs::path, std::size_t> found_; ///< Places in the result.
    SearchResult result_;
};

} // namespace

SearchResult find_files(Search const& search)
{
    return Finder(search).run();
}

} // namespace umbrixlib::toolkit
