// SPDX-License-Identifier: MIT
#include "toolkit/settings/stack_example.h"

#include "toolkit/files/text_file.h"
#include "toolkit/settings/stack_example_text.h"

#include <algorithm>
#include <string>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr char const* kFolder = "textures"; // in the example's names
constexpr char const* kOneOfThem = "cobbles_height.png";

/// The folder of the example textures in or above @p start, or nothing.
fs::path textures_above(fs::path start)
{
    std::error_code error;
    for (;;) {
        for (fs::path const& folder : {start / kFolder, start / "examples" / kFolder}) {
            if (fs::is_regular_file(folder / kOneOfThem, error)) {
                return folder;
            }
        }
        if (start == start.parent_path()) {
            return {};
        }
        start = start.parent_path();
    }
}

/// What a stack file in @p folder calls the folder of the example textures, or nothing.
std::string textures_for(fs::path const& folder, fs::path const& further)
{
    fs::path const near = textures_above(folder);
    if (!near.empty()) {
        return near.lexically_relative(folder).string();
    }
    return textures_above(further).string();
}

bool needs_no_escape(std::string const& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

std::string with_folder(std::string text, std::string const& folder)
{
    std::string const before = std::string("\"") + kFolder + "/";
    std::string const now = "\"" + folder + "/";
    for (std::size_t at = 0; (at = text.find(before, at)) != std::string::npos; at += now.size()) {
        text.replace(at, before.size(), now);
    }
    return text;
}

} // namespace

bool write_example_stack(fs::path const& file, fs::path const& further, bool overwrite)
{
    std::error_code error;
    fs::path const folder = fs::weakly_canonical(fs::absolute(file).parent_path(), error);
    std::string const textures = textures_for(folder, further);
    bool const found = !textures.empty() && needs_no_escape(textures);
    write_text_file(file, found ? with_folder(kStackExample, textures) : kStackExample, overwrite);
    return found;
}

} // namespace umbrixlib::toolkit
