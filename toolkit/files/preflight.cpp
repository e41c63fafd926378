// SPDX-License-Identifier: MIT
#include "toolkit/files/preflight.h"

#include "toolkit/base/failure.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

void check_input(fs::path const& input)
{
    std::error_code error;
    fs::file_status const status = fs::status(input, error);
    if (!fs::exists(status)) {
        throw Failure(Fault::kMissingFile, input.string(),
                      status.type() == fs::file_type::not_found ? "there is no such file" : error.message());
    }
    if (!fs::is_regular_file(status)) {
        throw Failure(Fault::kNotPlainFile, input.string(),
                      fs::is_directory(status) ? "it is a folder" : "it is not a plain file",
                      "name an image file");
    }
    if (access(input.c_str(), R_OK) != 0) {
        throw Failure(Fault::kUnreadable, input.string(),
                      fmt::format("it cannot be read: {}", std::strerror(errno)));
    }
    if (fs::file_size(input, error) == 0) {
        throw Failure(Fault::kEmptyFile, input.string(), "it is empty");
    }
}

} // namespace umbrixlib::toolkit
