// SPDX-License-Identifier: MIT
#include "toolkit/base/glob.h"

#include <algorithm>
#include <fnmatch.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> matching_entries(fs::path const& folder, std::string const& pattern)
{
    std::vector<fs::path> found;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
    for (fs::directory_iterator const end; !error && entry != end; entry.increment(error)) {
        fs::path const name = entry->path().filename();
        if (matches(pattern, name.string())) {
            found.push_back(folder / name);
        }
    }
    return found;
}

} // namespace

bool matches(std::string const& pattern, std::string const& name)
{
    return fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD | FNM_CASEFOLD) == 0;
}

bool has_wildcards(std::string const& text)
{
    return text.find_first_of("*?[") != std::string::npos;
}

std::vector<fs::path> expand(fs::path const& pattern)
{
    std::vector<fs::path> found{fs::path()};
    for (fs::path const& component : pattern) {
        std::vector<fs::path> longer;
        for (fs::path const& folder : found) {
            if (has_wildcards(component.string())) {
                std::vector<fs::path> const entries = matching_entries(folder, component.string());
                longer.insert(longer.end(), entries.begin(), entries.end());
            } else {
                longer.push_back(folder / component);
            }
        }
        found = std::move(longer);
    }
    std::error_code error;
    std::erase_if(found, [&](fs::path const& each) { return !fs::exists(fs::symlink_status(each, error)); });
    std::sort(found.begin(), found.end());
    return found;
}

fs::path fixed_part(fs::path const& pattern)
{
    fs::path fixed;
    for (fs::path const& component : pattern) {
        if (has_wildcards(component.string())) {
            break;
        }
        fixed /= component;
    }
    return fixed;
}

} // namespace umbrixlib::toolkit
