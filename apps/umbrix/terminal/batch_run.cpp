// SPDX-License-Identifier: MIT
#include "terminal/batch_run.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "terminal/standard_output.h"
#include "toolkit/base/utf8.h"
#include "toolkit/batch/picture_file.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/temporary.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <set>
#include <unistd.h>
#include <utility>

namespace umbrix_cli {

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
            job.files.max_texels = orders_.max_texels;
            return job;
        };
        return std::visit(with_files, job_);
    }

    double timeout_seconds() const override { return orders_.timeout_seconds; }

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

/// A name for a terminal that leaves room for the bar beside it, cut at the front where no letter of UTF-8 is
/// torn.
std::string short_name(fs::path const& file)
{
    constexpr std::size_t kLongest = 40;
    std::string const name = printable(file.filename().string());
    if (name.size() <= kLongest) {
        return name;
    }
    std::size_t start = name.size() - kLongest;
    while (start < name.size() && (static_cast<unsigned char>(name[start]) & 0xc0U) == 0x80U) {
        ++start;
    }
    return "..." + name.substr(start);
}

/// In a table of files, one that is about its row's file need not name it again.
std::string reason_of(Failure const& failure, BatchFile const& file)
{
    bool const named = failure.subject == file.source.string() || failure.subject == file.target.string();
    return named ? failure.what() : fmt::format("{}: {}", complaint_about(failure).subject, failure.what());
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

/// The files that there is something to do for. Those without and the failures go to @p report.
std::vector<BatchFile> without_skipped(BatchPlan const& plan, OutputPolicy policy, BatchReport& report)
{
    for (Failure const& failure : plan.failures) {
        BatchResult result;
        result.source = failure.subject;
        result.state = BatchState::kFailed;
        result.reason = failure.what();
        report.add(std::move(result));
    }
    std::vector<BatchFile> pending;
    for (BatchFile const& file : plan.files) {
        if (auto const reason = reason_to_skip(file, policy)) {
            report.add_skipped(file.source, file.target, *reason);
        } else {
            pending.push_back(file);
        }
    }
    return pending;
}

/// Lines for each of many files would bury the results.
ProgressDisplay::Style style_of_many(ProgressDisplay::Style asked)
{
    bool const nobody_looks = asked == ProgressDisplay::Style::kAuto && isatty(STDERR_FILENO) == 0;
    return nobody_looks ? ProgressDisplay::Style::kNone : asked;
}

void remove_what_killed_runs_left(std::vector<BatchFile> const& files)
{
    std::set<fs::path> folders;
    for (BatchFile const& file : files) {
        folders.insert(output_folder(file.target));
    }
    std::for_each(folders.begin(), folders.end(), remove_stale_outputs);
}

} // namespace

void run_batch(BatchPlan const& plan, BatchOrders const& orders, Interrupts const& interrupts)
{
    auto const start = std::chrono::steady_clock::now();
    BatchReport report(orders.json);
    std::vector<BatchFile> const pending = without_skipped(plan, orders.policy, report);
    bool complete = true;
    if (orders.dry_run) {
        for (BatchFile const& file : pending) {
            report.plan(file.source, file.target);
        }
    } else {
        remove_what_killed_runs_left(plan.files);
        BatchRun run(pending, orders, report);
        complete = run_pool(pending.size(), orders.workers, run, interrupts);
    }
    std::size_t const total = plan.files.size() + plan.failures.size();
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    BatchSummary const summary = report.finish(total, taken.count());
    if (!complete && summary.left > 0) {
        throw Stopped{fmt::format("{} files are left; {}", summary.left,
                                  orders.policy == OutputPolicy::kReplace
                                      ? "with --overwrite the same command begins anew"
                                      : "the same command goes on with them")};
    }
    finish_standard_output();
    if (summary.failed > 0) {
        throw Complaint(fmt::format("{} of {} files", summary.failed, total), "they failed",
                        "the results tell why");
    }
}

BatchRun::BatchRun(std::vector<BatchFile> files, BatchOrders const& orders, BatchReport& report)
    : files_(std::move(files)), orders_(orders), report_(report), display_(style_of_many(orders.progress))
{
}

std::unique_ptr<PoolTask> BatchRun::open(std::size_t index)
{
    BatchFile const& file = files_[index];
    // Another run may have made it meanwhile.
    if (auto const reason = reason_to_skip(file, orders_.policy)) {
        report_.add_skipped(file.source, file.target, *reason);
        ++finished_;
        return nullptr;
    }
    PictureJob job = orders_.job_for(file);
    make_folder_of(file.target);
    auto task = std::make_unique<PictureTask>(file, std::move(job), orders_);
    display_.show(fmt::format("{} of {} {}", index + 1, files_.size(), short_name(file.source)),
                  static_cast<int>(finished_ * 1000 / files_.size()));
    return task;
}

void BatchRun::note(std::size_t index, std::string const& file, Note const& note)
{
    if (note.detail && !orders_.verbose) {
        return;
    }
    if (orders_.json) {
        notes_[index].push_back(text_of(note));
    } else {
        display_.clear();
        say_note(orders_.command, file + ": " + text_of(note));
    }
}

void BatchRun::end(PoolEnding const& ending)
{
    BatchFile const& file = files_[ending.index];
    BatchResult result;
    result.source = file.source;
    result.target = file.target;
    result.seconds = ending.seconds;
    result.peak_kib = ending.peak_kib;
    if (auto const notes = notes_.extract(ending.index)) {
        result.notes = notes.mapped();
    }
    if (ending.stopped) {
        result.state = BatchState::kStopped;
        result.reason = "it was stopped; nothing of it is left";
    } else if (!ending.failure) {
        result.state = BatchState::kDone;
        result.kind = kind_of(*ending.report);
    } else if (auto const skip = reason_to_skip(file, orders_.policy);
               skip && orders_.policy == OutputPolicy::kKeep) {
        result.state = BatchState::kSkipped; // another run was faster
        result.reason = *skip;
    } else {
        result.state = BatchState::kFailed;
        result.reason = reason_of(*ending.failure, file);
    }
    display_.clear();
    if (orders_.verbose && !ending.printed.empty()) {
        put_text(stderr, fmt::format("{}: {}:\n{}\n", orders_.command, printable(file.source.string()),
                                     ending.printed));
    }
    if (orders_.ended) {
        orders_.ended(file, result);
    }
    report_.add(std::move(result));
    ++finished_;
}

void BatchRun::stopping(std::size_t running)
{
    display_.clear();
    if (running > 0) {
        put_text(stderr,
                 fmt::format("{}: stopping when {} at work {} finished; press Ctrl-C again to stop at once\n",
                             orders_.command,
                             running == 1 ? "the file" : fmt::format("the {} files", running),
                             running == 1 ? "is" : "are"));
    }
}

} // namespace umbrix_cli
