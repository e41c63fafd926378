// SPDX-License-Identifier: MIT
#include "toolkit/pictures/output_check.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/preflight.h"
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
    return check_other_output(output, input, overwrite);
}

fs::path check_other_output(fs::path const& output, fs::path const& input, bool overwrite)
{
    std::error_code error;
    if (fs::equivalent(output, input, error)) {
        throw Failure(Fault::kOutputIsInput, output.string(), "it is the input, which would be lost");
    }
    return check_output_file(output, overwrite);
}

} // namespace umbrixlib::toolkit
