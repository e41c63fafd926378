// SPDX-License-Identifier: MIT
#include "toolkit/batch/picture_file.h"

#include "toolkit/files/preflight.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/pictures/output_format.h"

#include <utility>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

PictureFile::PictureFile(fs::path const& input, fs::path named, bool overwrite)
    : input_(input), named_(std::move(named)), overwrite_(overwrite)
{
    start_over();
}

void PictureFile::start_over()
{
    file_.reset();
    check_input(input_);
    fs::path target = check_output(named_, input_, overwrite_);
    file_.emplace(std::move(target), output_format(named_)->extension);
}

void PictureFile::name_files(JobFiles& files) const
{
    files.input = input_.string();
    files.output.file = file_->temporary().string();
    files.output.name = named_.string();
}

void PictureFile::complete()
{
    file_->move_into_place(overwrite_);
}

double PictureFile::seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

} // namespace umbrixlib::toolkit
