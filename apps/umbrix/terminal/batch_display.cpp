// SPDX-License-Identifier: MIT
#include "terminal/batch_display.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "terminal/standard_output.h"

#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>

namespace umbrix_cli {

namespace {

/// A name for a terminal that leaves room for the bar beside it, cut at the front where no letter of UTF-8 is
/// torn.
std::string short_name(std::filesystem::path const& file)
{
    constexpr std::size_t kLongest = 40;
    std::string const name = shown_on(stderr, file.filename().string());
    if (name.size() <= kLongest) {
        return name;
    }
    std::size_t start = name.size() - kLongest;
    while (start < name.size() && (static_cast<unsigned char>(name[start]) & 0xc0U) == 0x80U) {
        ++start;
    }
    return "..." + name.substr(start);
}

/// Lines for each of many files would bury the results.
ProgressDisplay::Style style_of_many(ProgressDisplay::Style asked)
{
    bool const nobody_looks = asked == ProgressDisplay::Style::kAuto && isatty(STDERR_FILENO) == 0;
    return nobody_looks ? ProgressDisplay::Style::kNone : asked;
}

} // namespace

void show_batch(BatchPlan const& plan, BatchOrders const& orders, BatchView const& view,
                Interrupts const& interrupts)
{
    BatchDisplay display(view);
    BatchSummary const summary = run_batch(plan, orders, display, interrupts);
    display.finish(summary);
    if (summary.stopped && summary.left > 0) {
        throw Stopped{fmt::format("{} files are left; {}", summary.left,
                                  orders.policy == OutputPolicy::kReplace
                                      ? "with --overwrite the same command begins anew"
                                      : "the same command goes on with them")};
    }
    finish_standard_output();
    if (summary.failed > 0) {
        throw Complaint(fmt::format("{} of {} files", summary.failed, summary.total()), "they failed",
                        "the results tell why");
    }
}

BatchDisplay::BatchDisplay(BatchView const& view)
    : view_(view), writer_(view.json ? write_json_lines(view.verbose) : write_table()),
      progress_(style_of_many(view.progress))
{
}

void BatchDisplay::begin(BatchFile const& file, BatchProgress const& progress)
{
    progress_.show(fmt::format("{} of {} {}", progress.number, progress.count, short_name(file.source)),
                   static_cast<int>(progress.ended * 1000 / progress.count));
}

void BatchDisplay::note(BatchFile const& /*file*/, std::string const& name, Note const& note)
{
    if (!view_.json && (view_.verbose || !note.detail)) {
        progress_.clear();
        say_note(view_.command, name + ": " + text_of(note));
    }
}

void BatchDisplay::end(BatchResult const& result)
{
    progress_.clear();
    if (view_.verbose && !result.printed.empty()) {
        put_line(stderr, fmt::format("{}: {}:", view_.command, result.file.source.string()));
        put_text(stderr, result.printed + "\n");
    }
    if (view_.ended) {
        view_.ended(result);
    }
    writer_->add(result);
}

void BatchDisplay::stopping(std::size_t running)
{
    progress_.clear();
    if (running > 0) {
        put_text(stderr,
                 fmt::format("{}: stopping when {} at work {} finished; press Ctrl-C again to stop at once\n",
                             view_.command, running == 1 ? "the file" : fmt::format("the {} files", running),
                             running == 1 ? "is" : "are"));
    }
}

} // namespace umbrix_cli
