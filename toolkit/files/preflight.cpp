// SPDX-License-Identifier: MIT
#include "toolkit/files/preflight.h"

#include "toolkit/base/failure.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

void check_is_plain(fs::path const& file, fs::file_status const& status, std::string const& remedy)
{
    if (!fs::is_regular_file(status)) {
        throw Failure(Fault::kNotPlainFile, file.string(),
                      fs::is_directory(status) ? "it is a folder" : "it is not a plain file", remedy);
    }
}

/// The file system says how long; some do not.
void check_name_length(fs::path const& folder, fs::path const& output)
{
    long const longest = pathconf(folder.c_str(), _PC_NAME_MAX);
    std::size_t const size = output.filename().native().size();
    if (longest > 0 && size > static_cast<std::size_t>(longest)) {
        throw Failure(Fault::kNameTooLong, output.string(),
                      fmt::format("its name has {} bytes, and its folder takes {}", size, longest));
    }
}

} // namespace

void check_plain_file(fs::path const& input, std::string const& what)
{
    std::error_code error;
    fs::file_status const status = fs::status(input, error);
    if (!fs::exists(status)) {
        throw Failure(Fault::kMissingFile, input.string(),
                      status.type() == fs::file_type::not_found ? "there is no such file" : error.message());
    }
    check_is_plain(input, status, "name " + what);
}

void check_input(fs::path const& input, std::string const& what)
{
    check_plain_file(input, what);
    if (access(input.c_str(), R_OK) != 0) {
        throw Failure(Fault::kUnreadable, input.string(),
                      fmt::format("it cannot be read: {}", std::strerror(errno)));
    }
    std::error_code error;
    if (fs::file_size(input, error) == 0) {
        throw Failure(Fault::kEmptyFile, input.string(), "it is empty");
    }
}

fs::path check_output_file(fs::path const& output, bool overwrite, std::string const& remedy)
{
    std::error_code error;
    fs::path const folder = output.has_parent_path() ? output.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        throw Failure(Fault::kMissingFolder, output.string(), "its folder does not exist");
    }
    check_name_length(folder, output);
    if (!fs::exists(fs::symlink_status(output, error))) {
        return folder / output.filename();
    }
    fs::file_status const status = fs::status(output, error);
    if (status.type() == fs::file_type::not_found) {
        throw Failure(Fault::kNotPlainFile, output.string(), "it is a link to a file that is not there",
                      "remove the link, or name the file itself");
    }
    check_is_plain(output, status, remedy);
    if (!overwrite) {
        throw Failure(Fault::kOutputExists, output.string(), "it exists");
    }
    fs::path const behind_links = fs::canonical(output, error);
    return error ? output : behind_links; // it may vanish meanwhile
}

} // namespace umbrixlib::toolkit
