// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_slot_internal.h"

#include <limits>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kJobsOfService = 256;

/// To compare jobs by, on whatever machine.
Limits comparable_limits(Job const& job)
{
    return limits_of(job, Service::kManyJobs, 1, std::numeric_limits<double>::infinity());
}

} // namespace

WorkerSlot::~WorkerSlot()
{
    dismiss();
}

WorkerProcess& WorkerSlot::hire(Job const& job, HandedFiles& files)
{
    if (worker_ && !(suits(job) && files.open(job))) {
        dismiss();
    }
    if (worker_) {
        worker_->forget_peak();
    } else {
        jobs_ = 0;
        rights_ = rights_of(job);
        limits_ = comparable_limits(job);
        worker_ = std::make_unique<WorkerProcess>(rights_, service_, processors_);
    }
    ++jobs_;
    return *worker_;
}

void WorkerSlot::let_go() const
{
    if (worker_) {
        worker_->end_input();
    }
}

void WorkerSlot::dismiss()
{
    if (worker_) {
        worker_->dismiss();
        drop();
    }
}

bool WorkerSlot::suits(Job const& job) const
{
    return jobs_ < kJobsOfService && rights_of(job) == rights_ && comparable_limits(job) == limits_ &&
           worker_->cpu_seconds() < kCpuSecondsOfService && worker_->is_quiet();
}

} // namespace umbrixlib::toolkit
