// SPDX-License-Identifier: MIT
#include "toolkit/files/text_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/flush_to_disk.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/temporary.h"

#include <fstream>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

namespace {

/// The file behind @p target if it is a link, so that the link stays one.
fs::path behind_links(fs::path const& target)
{
    std::error_code error;
    fs::path const found = fs::canonical(target, error);
    return error ? target : found;
}

} // namespace

void check_text_output(fs::path const& target, bool overwrite)
{
    std::error_code error;
    fs::path const folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        throw Failure(Fault::kMissingFolder, target.string(), "its folder does not exist");
    }
    if (!fs::exists(fs::symlink_status(target, error))) {
        return;
    }
    fs::file_status const status = fs::status(target, error);
    if (!fs::is_regular_file(status)) {
        throw Failure(Fault::kNotPlainFile, target.string(),
                      fs::is_directory(status) ? "it is a folder" : "it is not a plain file",
                      "give a file name");
    }
    if (!overwrite) {
        throw Failure(Fault::kOutputExists, target.string(), "it exists");
    }
}

void write_text_file(fs::path const& target, std::string_view text, bool overwrite)
{
    check_text_output(target, overwrite);
    remove_leftovers_beside(target);
    OutputFile output(behind_links(target), target.extension().string());
    std::ofstream stream(output.temporary(), std::ios::binary);
    stream << text;
    stream.close();
    if (!stream || !flush_to_disk(output.temporary())) {
        throw Failure(Fault::kNotWritten, target.string(), "it could not be written");
    }
    output.move_into_place(overwrite);
}

} // namespace umbrixlib::toolkit
