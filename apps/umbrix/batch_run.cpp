// SPDX-License-Identifier: MIT
#include "batch_run.h"

#include "map_usage.h"
#include "picture_file.h"
#include "put_text.h"

#include <fmt/format.h>
#include <utility>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

constexpr char const* kCommand = "umbrix batch";

/// One file at work.
class PictureTask : public PoolTask {
public:
    PictureTask(BatchFile const& file, BatchOrders const& orders)
        : file_(file), orders_(orders),
          picture_(file.source, file.target, orders.policy != OutputPolicy::kKeep)
    {
    }

    Job job() const override
    {
        Job job = orders_.job;
        picture_.name_files(job);
        return job;
    }

    Briefing briefing() const override
    {
        return {file_.source.string(), file_.target.string(), orders_.timeout_seconds};
    }

    void complete(nlohmann::json const& report) override { picture_.complete(report); }

private:
    BatchFile const& file_;
    BatchOrders const& orders_;
    PictureFile picture_;
};

void make_folder_of(fs::path const& target)
{
    std::error_code error;
    if (target.has_parent_path() && !fs::create_directories(target.parent_path(), error) && error) {
        throw Failure(target.parent_path().string(), "the folder cannot be made: " + error.message(),
                      "choose another with --keep-tree");
    }
}

/// A name that leaves room for the bar beside it, cut at the front where no letter of UTF-8 is torn.
std::string short_name(fs::path const& file)
{
    constexpr std::size_t kLongest = 40;
    std::string const name = file.filename().string();
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
    return named ? failure.what() : fmt::format("{}: {}", failure.subject, failure.what());
}

std::string kind_of(nlohmann::json const& report)
{
    if (!report.contains("kind")) {
        return {};
    }
    return report.at("kind").get<Kind>() == Kind::kHeightMap ? "height map" : "normal map";
}

} // namespace

BatchRun::BatchRun(std::vector<BatchFile> files, BatchOrders const& orders, BatchReport& report)
    : files_(std::move(files)), orders_(orders), report_(report), display_(orders.progress)
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
    if (orders_.job.task == Task::kMap) {
        check_map_usage(orders_.job.settings, file.target.string());
    }
    make_folder_of(file.target);
    auto task = std::make_unique<PictureTask>(file, orders_);
    display_.show(fmt::format("{} of {} {}", index + 1, files_.size(), short_name(file.source)),
                  static_cast<int>(finished_ * 1000 / files_.size()));
    return task;
}

void BatchRun::note(std::size_t index, std::string const& file, std::string const& text, bool detail)
{
    if (detail && !orders_.verbose) {
        return;
    }
    if (orders_.json) {
        notes_[index].push_back(text);
    } else {
        display_.clear();
        put_text(stderr, fmt::format("{}: note: {}: {}\n", kCommand, file, text));
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
        result.kind = kind_of(ending.report);
    } else if (auto const skip = reason_to_skip(file, orders_.policy);
               skip && orders_.policy == OutputPolicy::kKeep) {
        result.state = BatchState::kSkipped; // another run was faster
        result.reason = *skip;
    } else {
        result.state = BatchState::kFailed;
        result.reason = reason_of(*ending.failure, file);
    }
    display_.clear();
    if (orders_.verbose && !ending.chatter.empty()) {
        put_text(stderr, fmt::format("{}: {}:\n{}\n", kCommand, file.source.string(), ending.chatter));
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
                             kCommand, running == 1 ? "the file" : fmt::format("the {} files", running),
                             running == 1 ? "is" : "are"));
    }
}

} // namespace umbrix_cli
