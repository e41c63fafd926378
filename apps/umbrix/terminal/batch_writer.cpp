// SPDX-License-Identifier: MIT
#include "terminal/batch_writer.h"

#include "terminal/advice.h"
#include "terminal/kind_name.h"
#include "terminal/put_text.h"
#include "terminal/say.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace umbrix_cli {

namespace {

constexpr char const* kNames[] = {"skipped", "done", "stopped", "failed"};

char const* word_for(BatchState state)
{
    return kNames[static_cast<int>(state)];
}

std::string row_of(BatchResult const& result)
{
    std::string const source = result.file.source.string();
    if (result.state == BatchState::kDone) {
        return fmt::format(
            "{:8} {} -> {}{}{}, {:.1f} s", word_for(result.state), source, result.file.target.string(),
            result.kind ? fmt::format(", from a {}", name_of(*result.kind)) : "",
            result.green ? fmt::format(", green {} (its name says so)", name_of(*result.green)) : "",
            result.seconds);
    }
    return fmt::format("{:8} {}: {}", word_for(result.state), source, reason_of(result));
}

/// A line for each file as it ends, and one with the counts.
class Rows : public BatchWriter {
public:
    void planned(BatchFile const& file) override
    {
        say("{} -> {}", file.source.string(), file.target.string());
    }

    void add(BatchResult const& result) override
    {
        std::string const row = row_of(result);
        say("{}", row);
        if (result.state == BatchState::kFailed) {
            failed_.push_back(row);
        } else {
            failed_above_ = failed_.size();
        }
    }

    void finish(BatchSummary const& summary) override
    {
        // On a terminal they may have scrolled away.
        for (std::size_t i = 0; is_terminal(stdout) && failed_above_ > 0 && i < failed_.size(); ++i) {
            say("{}", failed_[i]);
        }
        std::string text =
            fmt::format("{} done, {} skipped, {} failed", summary.done, summary.skipped, summary.failed);
        for (auto const& [number, word] : {std::pair(summary.planned, "to do"),
                                           {summary.left, "left"},
                                           {summary.left_alone, "left alone"}}) {
            text += number > 0 ? fmt::format(", {} {}", number, word) : "";
        }
        say("{}; {:.1f} s", text, summary.seconds);
    }

private:
    std::vector<std::string> failed_;
    std::size_t failed_above_ = 0; ///< Of those, how many have other rows below them.
};

/// Names of inputs and outputs, each with a zero byte behind it, which no name has in it.
class Names : public BatchWriter {
public:
    void planned(BatchFile const& file) override { put(file); }

    void add(BatchResult const& result) override
    {
        if (result.state == BatchState::kDone) {
            put(result.file);
        } else if (result.state == BatchState::kFailed) {
            put_line(stderr, row_of(result));
        }
    }

    void finish(BatchSummary const&) override {}

private:
    static void put(BatchFile const& file)
    {
        put_name(file.source.string());
        put_name(file.target.string());
    }
};

class JsonLines : public BatchWriter {
public:
    explicit JsonLines(bool details) : details_(details) {}

    void planned(BatchFile const& file) override
    {
        say_json(nlohmann::json{
            {"source", file.source.string()}, {"target", file.target.string()}, {"state", "planned"}});
    }

    void add(BatchResult const& result) override
    {
        nlohmann::json object{{"source", result.file.source.string()}, {"state", word_for(result.state)}};
        if (!result.file.target.empty()) {
            object["target"] = result.file.target.string();
        }
        if (result.state != BatchState::kDone) {
            object["reason"] = reason_of(result);
        }
        if (result.kind) {
            object["taken_for"] = name_of(*result.kind);
        }
        if (result.green) {
            object["green"] = name_of(*result.green);
        }
        if (result.peak_kib > 0) {
            object["seconds"] = result.seconds;
            object["peak_kib"] = result.peak_kib;
        }
        for (Note const& note : result.notes) {
            if (details_ || !note.detail) {
                object["notes"].push_back(text_of(note));
            }
        }
        say_json(object);
    }

    void finish(BatchSummary const& summary) override
    {
        say_json(nlohmann::json{{"planned", summary.planned},
                                {"done", summary.done},
                                {"skipped", summary.skipped},
                                {"failed", summary.failed},
                                {"left", summary.left},
                                {"left_alone", summary.left_alone},
                                {"seconds", summary.seconds}});
    }

private:
    bool details_;
};

} // namespace

std::unique_ptr<BatchWriter> write_results(ResultsForm form, bool details)
{
    switch (form) {
    case ResultsForm::kJson:
        return std::make_unique<JsonLines>(details);
    case ResultsForm::kNames:
        return std::make_unique<Names>();
    case ResultsForm::kRows:
        break;
    }
    return std::make_unique<Rows>();
}

std::string reason_of(BatchResult const& result)
{
    if (!result.failure) {
        return result.reason;
    }
    // A failure that is about its row's file need not name it again.
    Failure const& failure = *result.failure;
    bool const named =
        failure.subject == result.file.source.string() || failure.subject == result.file.target.string();
    return named ? failure.what() : fmt::format("{}: {}", complaint_about(failure).subject, failure.what());
}

} // namespace umbrix_cli
