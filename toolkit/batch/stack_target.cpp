// SPDX-License-Identifier: MIT
#include "toolkit/batch/stack_target.h"

#include "toolkit/pictures/output_format.h"

#include <utility>

namespace umbrixlib::toolkit {

namespace fs = std::filesystem;

StackTarget::StackTarget(fs::path named, fs::path target, char const* what, Output StackJob::*field)
    : named_(std::move(named)), target_(std::move(target)), what_(what), field_(field)
{
}

bool StackTarget::is_same_file(StackTarget const& other) const
{
    return fs::weakly_canonical(target_) == fs::weakly_canonical(other.target_);
}

void StackTarget::open(StackJob& job)
{
    file_ = std::make_unique<OutputFile>(target_, output_format(named_)->extension);
    Output& output = job.*field_;
    output.file = file_->temporary().string();
    output.name = named_.string();
}

void StackTarget::move_into_place(bool overwrite)
{
    file_->move_into_place(overwrite);
}

} // namespace umbrixlib::toolkit
