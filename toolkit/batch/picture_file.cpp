// SPDX-License-Identifier: MIT
#include "toolkit/batch/picture_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/files/preflight.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/textures/texture_file.h"

#include <utility>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

namespace {

constexpr char const* kPageExtension = ".html";

void check_page_name(fs::path const& named)
{
    if (lower_case(named.extension().string()) != kPageExtension) {
        throw Failure(Fault::kUnknownFormat, named.string(), "a page is an HTML file",
                      "give a name ending in .html");
    }
}

} // namespace

PictureFile::PictureFile(fs::path const& input, fs::path named, bool overwrite, FileHolds holds)
    : input_(input), named_(std::move(named)), overwrite_(overwrite), holds_(holds)
{
    start_over();
}

void PictureFile::start_over()
{
    file_.reset();
    check_input(input_);
    if (holds_ == FileHolds::kPage) {
        check_page_name(named_);
        file_.emplace(check_other_output(named_, input_, overwrite_), kPageExtension);
    } else if (holds_ == FileHolds::kTexture) {
        fs::path target = check_texture_output(named_, input_, overwrite_);
        file_.emplace(std::move(target), extension_of(texture_container(named_)));
    } else {
        fs::path target = check_output(named_, input_, overwrite_);
        file_.emplace(std::move(target), output_format(named_)->extension);
    }
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
