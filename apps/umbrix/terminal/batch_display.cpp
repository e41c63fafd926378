// SPDX-License-Identifier: MIT
#include "terminal/batch_display.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "terminal/standard_output.h"
#include "terminal/supervise.h"

#include <algorithm>
#include <cmath>
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
    if (!orders.dry_run) {
        note_missing_sandbox(view.command);
    }
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
    : view_(view), writer_(write_results(view.form, view.verbose)), progress_(style_of_many(view.progress))
{
}

void BatchDisplay::begin(BatchFile const& file, BatchProgress const& progress)
{
    at_ = progress;
    file_ = file.source;
    show_progress();
}

void BatchDisplay::show_progress()
{
    std::string left;
    if (progress_.is_bar() && at_.ended > 0) {
        std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start_;
        double const share = static_cast<double>(at_.count - at_.ended) / static_cast<double>(at_.ended);
        left = fmt::format(", {} left:", time_in_words(taken.count() * share));
    }
    progress_.show(fmt::format("{} of {}{} {}", at_.number, at_.count, left, short_name(file_)),
                   static_cast<int>(at_.ended * 1000 / at_.count));
}

void BatchDisplay::note(BatchFile const& /*file*/, std::string const& name, Note const& note)
{
    if (view_.form != ResultsForm::kJson && (view_.verbose || !note.detail)) {
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
    at_.ended = std::min(at_.ended + 1, at_.number);
    if (progress_.is_bar() && at_.ended < at_.number) {
        show_progress();
    }
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

std::string time_in_words(double seconds)
{
    constexpr long kLongest = 1000L * 3600; // beyond it an estimate is none
    long const whole = std::clamp(static_cast<long>(std::ceil(std::min(seconds, 1e9))), 1L, kLongest);
    long const minutes = (whole + 59) / 60;
    return whole < 60     ? fmt::format("{} s", whole)
           : minutes < 60 ? fmt::format("{} min", minutes)
                          : fmt::format("{} h {} min", minutes / 60, minutes % 60);
}

} // namespace umbrix_cli
