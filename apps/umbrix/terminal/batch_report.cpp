// SPDX-License-Identifier: MIT
#include "terminal/batch_report.h"

#include "terminal/kind_name.h"
#include "terminal/put_text.h"
#include "terminal/say.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <tuple>
#include <utility>

namespace umbrix_cli {

namespace {

constexpr char const* kNames[] = {"skipped", "done", "stopped", "failed"};

char const* word_for(BatchState state)
{
    return kNames[static_cast<int>(state)];
}

void print_line(nlohmann::json const& object)
{
    // A file name need not be UTF-8.
    put_text(stdout, object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

nlohmann::json to_json(BatchResult const& result)
{
    nlohmann::json object{{"source", result.source.string()}, {"state", word_for(result.state)}};
    if (!result.target.empty()) {
        object["target"] = result.target.string();
    }
    if (!result.reason.empty()) {
        object["reason"] = result.reason;
    }
    if (result.kind) {
        object["taken_for"] = name_of(*result.kind);
    }
    if (result.peak_kib > 0) {
        object["seconds"] = result.seconds;
        object["peak_kib"] = result.peak_kib;
    }
    if (!result.notes.empty()) {
        object["notes"] = result.notes;
    }
    return object;
}

std::string row_of(BatchResult const& result)
{
    if (result.state == BatchState::kDone) {
        return fmt::format("{:8} {} -> {}{}, {:.1f} s", word_for(result.state), result.source.string(),
                           result.target.string(),
                           result.kind ? fmt::format(", from a {}", name_of(*result.kind)) : "",
                           result.seconds);
    }
    return fmt::format("{:8} {}: {}", word_for(result.state), result.source.string(), result.reason);
}

} // namespace

void BatchReport::add(BatchResult result)
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
    if (json_) {
        print_line(to_json(result));
    } else {
        result.notes.clear();
        results_.push_back(std::move(result));
    }
}

void BatchReport::add_skipped(std::filesystem::path const& source, std::filesystem::path const& target,
                              std::string const& reason)
{
    BatchResult result;
    result.source = source;
    result.target = target;
    result.state = BatchState::kSkipped;
    result.reason = reason;
    add(std::move(result));
}

void BatchReport::plan(std::filesystem::path const& source, std::filesystem::path const& target)
{
    ++summary_.planned;
    if (json_) {
        print_line({{"source", source.string()}, {"target", target.string()}, {"state", "planned"}});
    } else {
        say("{} -> {}", source.string(), target.string());
    }
}

BatchSummary BatchReport::finish(std::size_t total, double seconds)
{
    summary_.left = total - summary_.planned - summary_.done - summary_.skipped - summary_.failed;
    summary_.seconds = seconds;
    if (json_) {
        print_line({{"planned", summary_.planned},
                    {"done", summary_.done},
                    {"skipped", summary_.skipped},
                    {"failed", summary_.failed},
                    {"left", summary_.left},
                    {"seconds", summary_.seconds}});
    } else {
        print_table();
    }
    return summary_;
}

void BatchReport::print_table() const
{
    std::vector<BatchResult const*> rows;
    for (BatchResult const& result : results_) {
        rows.push_back(&result);
    }
    std::sort(rows.begin(), rows.end(), [](BatchResult const* a, BatchResult const* b) {
        return std::tie(a->state, a->source) < std::tie(b->state, b->source);
    });
    for (BatchResult const* row : rows) {
        say("{}", row_of(*row));
    }
    std::string text =
        fmt::format("{} done, {} skipped, {} failed", summary_.done, summary_.skipped, summary_.failed);
    for (auto const& [number, word] : {std::pair(summary_.planned, "to do"), {summary_.left, "left"}}) {
        text += number > 0 ? fmt::format(", {} {}", number, word) : "";
    }
    put_text(stdout, fmt::format("{}; {:.1f} s\n", text, summary_.seconds));
}

} // namespace umbrix_cli
