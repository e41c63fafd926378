// SPDX-License-Identifier: MIT
#include "toolkit/batch/picture_file.h"

#include "toolkit/files/preflight.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/pictures/output_format.h"

#include <utility>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

namespace {

OutputFile open_output(fs::path const& input, fs::path const& named, bool overwrite)
{
    check_input(input);
    return {check_output(named, input, overwrite), output_format(named)->extension};
}

} // namespace

PictureFile::PictureFile(fs::path const& input, fs::path named, bool overwrite)
    : input_(input), named_(std::move(named)), overwrite_(overwrite),
      file_(open_output(input_, named_, overwrite))
{
}

void PictureFile::name_files(JobFiles& files) const
{
    files.input = input_.string();
    files.output.file = file_.temporary().string();
    files.output.name = named_.string();
}

void PictureFile::complete()
{
    file_.move_into_place(overwrite_);
}

double PictureFile::seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

} // namespace umbrixlib::toolkit
