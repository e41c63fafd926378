// SPDX-License-Identifier: MIT
#include "toolkit/batch/batch_run.h"

#include "toolkit/batch/picture_file.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/temporary.h"
#include "toolkit/workers/worker_pool.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

/// One file at work.
class PictureTask : public PoolTask {
public:
    PictureTask(BatchFile const& file, PictureJob job, BatchOrders const& orders)
        : job_(std::move(job)), orders_(orders),
          picture_(file.source, file.target, file.outdated || orders.policy != OutputPolicy::kKeep)
    {
    }

    Job job() const override
    {
        auto const with_files = [&](auto job) -> Job {
            picture_.name_files(job.files);
            job.files.output.saving = orders_.saving;
            job.files.max_texels = orders_.max_texels;
            return job;
        };
        return std::visit(with_files, job_);
    }

    double timeout_seconds() const override { return orders_.timeout_seconds; }

    void start_over() override { picture_.start_over(); }

    void complete(Report const&) override { picture_.complete(); }

private:
    PictureJob job_;
    BatchOrders const& orders_;
    PictureFile picture_;
};

void make_folder_of(fs::path const& target)
{
    std::error_code error;
    if (target.has_parent_path() && !fs::create_directories(target.parent_path(), error) && error) {
        throw Failure(Fault::kFolderNotMade, target.parent_path().string(),
                      "the folder cannot be made: " + error.message());
    }
}

/// What the source was taken for, if that was a question.
std::optional<Kind> kind_of(Report const& report)
{
    auto const kind = [](auto const& each) -> std::optional<Kind> {
        if constexpr (requires { each.kind; }) {
            return each.kind;
        } else {
            return std::nullopt;
        }
    };
    return std::visit(kind, report);
}

/// The direction of green that the source's name told.
std::optional<NormalY> green_of(Report const& report)
{
    auto const* const map = std::get_if<MapReport>(&report);
    return map != nullptr && map->green_by_name ? std::optional(map->green) : std::nullopt;
}

void remove_what_killed_runs_left(std::vector<BatchFile> const& files)
{
    std::set<fs::path> folders;
    for (BatchFile const& file : files) {
        folders.insert(output_folder(file.target));
    }
    std::for_each(folders.begin(), folders.end(), remove_stale_outputs);
}

/// The files of a batch on their way through a pool of workers, and the results on theirs to the observer.
class BatchRun : public PoolClient {
public:
    BatchRun(BatchOrders const& orders, BatchObserver& observer) : orders_(orders), observer_(observer) {}

    BatchSummary run(BatchPlan const& plan, Stop const& stop)
    {
        auto const start = std::chrono::steady_clock::now();
        for (Failure const& failure : plan.failures) {
            BatchResult result;
            result.file.source = failure.subject;
            result.state = BatchState::kFailed;
            result.failure.emplace(failure);
            add(result);
        }
        for (BatchFile const& file : plan.files) {
            if (!skip(file)) {
                files_.push_back(&file);
            }
        }
        if (orders_.dry_run) {
            tell_what_would_be_done();
        } else {
            remove_what_killed_runs_left(plan.files);
            summary_.stopped = !run_pool(files_.size(), {orders_.workers, orders_.service}, *this, stop);
        }
        summary_.left = plan.files.size() + plan.failures.size() - summary_.total();
        summary_.left_alone = plan.left_alone.size();
        summary_.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return summary_;
    }

private:
    std::unique_ptr<PoolTask> open(std::size_t index) override
    {
        BatchFile const& file = *files_[index];
        if (skip(file)) { // another run may have made it meanwhile
            ++ended_;
            return nullptr;
        }
        PictureJob job = orders_.job_for(file);
        make_folder_of(file.target);
        auto task = std::make_unique<PictureTask>(file, std::move(job), orders_);
        observer_.begin(file, {index + 1, ended_, files_.size()});
        return task;
    }

    void note(std::size_t index, std::string const& name, Note const& note) override
    {
        notes_[index].push_back(note);
        observer_.note(*files_[index], name, note);
    }

    void end(PoolEnding const& ending) override
    {
        BatchFile const& file = *files_[ending.index];
        BatchResult result;
        result.file = file;
        result.seconds = ending.seconds;
        result.peak_kib = ending.peak_kib;
        result.printed = ending.printed;
        if (auto const notes = notes_.extract(ending.index)) {
            result.notes = notes.mapped();
        }
        if (ending.stopped) {
            result.state = BatchState::kStopped;
            result.reason = "it was stopped; nothing of it is left";
        } else if (!ending.failure) {
            result.kind = kind_of(*ending.report);
            result.green = green_of(*ending.report);
        } else if (auto const reason = reason_to_skip(file, orders_.policy);
                   reason && orders_.policy == OutputPolicy::kKeep) {
            result.state = BatchState::kSkipped; // another run was faster
            result.reason = *reason;
        } else {
            result.state = BatchState::kFailed;
            result.failure = ending.failure;
        }
        ++ended_;
        add(result);
    }

    void stopping(std::size_t running) override { observer_.stopping(running); }

    bool skip(BatchFile const& file)
    {
        auto const reason = reason_to_skip(file, orders_.policy);
        if (reason) {
            BatchResult result;
            result.file = file;
            result.state = BatchState::kSkipped;
            result.reason = *reason;
            add(result);
        }
        return reason.has_value();
    }

    void tell_what_would_be_done()
    {
        for (BatchFile const* file : files_) {
            ++summary_.planned;
            observer_.planned(*file);
        }
    }

    void add(BatchResult const& result)
    {
        switch (result.state) {
        case BatchState::kDone:
            ++summary_.done;
            break;
        case BatchState::kSkipped:
            ++summary_.skipped;
            break;
        case BatchState::kFailed:
            ++summary_.failed;
            break;
        case BatchState::kStopped:
            break; // it is left
        }
        observer_.end(result);
    }

    BatchOrders const& orders_;
    BatchObserver& observer_;
    std::vector<BatchFile const*> files_;            ///< With something to do.
    std::map<std::size_t, std::vector<Note>> notes_; ///< Of files at work.
    std::size_t ended_ = 0;
    BatchSummary summary_;
};

} // namespace

BatchSummary run_batch(BatchPlan const& plan, BatchOrders const& orders, BatchObserver& observer,
                       Stop const& stop)
{
    return BatchRun(orders, observer).run(plan, stop);
}

} // namespace umbrixlib::toolkit
