// SPDX-License-Identifier: MIT
#include "toolkit/pictures/output_check.h"

#include "toolkit/base/failure.h"
#include "toolkit/pictures/output_format.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

void check_output_format(fs::path const& output)
{
    if (output_format(output) == nullptr) {
        std::string const extension = output.extension().string();
        throw Failure(Fault::kUnknownFormat, output.string(),
                      extension.empty() ? "its name has no extension to tell the format by"
                                        : fmt::format("pictures cannot be written as {}", extension),
                      "use one of " + output_extensions());
    }
}

} // namespace

fs::path check_output(fs::path const& output, fs::path const& input, bool overwrite)
{
    check_output_format(output);
    std::error_code error;
    fs::path const folder = output.has_parent_path() ? output.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        throw Failure(Fault::kMissingFolder, output.string(), "its folder does not exist");
    }
    fs::file_status const status = fs::status(output, error);
    if (fs::exists(status)) {
        if (fs::equivalent(output, input, error)) {
            throw Failure(Fault::kOutputIsInput, output.string(), "it is the input, which would be lost");
        }
        if (!fs::is_regular_file(status)) {
            throw Failure(Fault::kNotPlainFile, output.string(),
                          fs::is_directory(status) ? "it is a folder" : "it is not a plain file",
                          "give a file name");
        }
        if (!overwrite) {
            throw Failure(Fault::kOutputExists, output.string(), "it exists");
        }
        fs::path const behind_links = fs::canonical(output, error);
        return error ? output : behind_links; // it may vanish meanwhile
    }
    return folder / output.filename();
}

} // namespace umbrixlib::toolkit
