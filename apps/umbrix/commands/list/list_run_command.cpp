// SPDX-License-Identifier: MIT
#include "commands/list/list_run_command.h"

#include "options/list_argument.h"
#include "options/map_usage.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/batch_display.h"
#include "toolkit/batch/list_plan.h"
#include "toolkit/lists/list_file.h"
#include "toolkit/lists/list_settings.h"

#include <CLI/Error.hpp>
#include <charconv>
#include <fmt/format.h>
#include <functional>

namespace umbrix_cli {

namespace {

constexpr int kMostShares = 1000000;

/// "2/8".
Shard parse_shard(std::string const& text)
{
    Shard shard;
    char const* const end = text.data() + text.size();
    auto const [slash, first] = std::from_chars(text.data(), end, shard.number);
    bool good = first == std::errc() && slash != end && *slash == '/';
    if (good) {
        auto const [stop, second] = std::from_chars(slash + 1, end, shard.count);
        good = second == std::errc() && stop == end;
    }
    if (!good || shard.count < 1 || shard.count > kMostShares || shard.number < 1 ||
        shard.number > shard.count) {
        throw CLI::ValidationError("--shard", fmt::format("'{}' is no share such as 1/4 to 4/4", text));
    }
    return shard;
}

} // namespace

void ListRunCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    command.add_flag("-r,--recurse", recurse_, "Look into the folders in folders, too");
    command.add_flag("--overwrite", common_.overwrite,
                     "Make all anew [default: leave out what is done, and outputs that others made]");
    command.add_flag("-n,--dry-run", dry_run_, "Only print what would be made of what");
    std::function<void(std::string const&)> const parse = [this](std::string const& text) {
        shard_ = parse_shard(text);
    };
    command
        .add_option_function<std::string>(
            "--shard", parse, "Only every N-th job, from the I-th on, so that many machines share a list")
        ->type_name("I/N")
        ->group(kRunGroup);
    declare_results_form(command, form_);
    declare_workers(command, workers_);
    common_.declare_limits(command);
    declare_saving(command, common_.saving);
    common_.declare_progress(command, "not");
    declare_graphics(command, graphics_);
    declare_rows(command, settings_, kForHeights);
}

void ListRunCommand::run(Interrupts const& interrupts)
{
    umbrix_list list;
    read_list(file_, list);
    ListLog log(file_, shard_);
    ListChoice const choice{
        shard_,    recurse_,       common_.overwrite ? OutputPolicy::kReplace : OutputPolicy::kKeep,
        graphics_, common_.saving, height_reading_of(settings_)};
    ListPlan const plan = plan_list(list, choice, log);

    if (!dry_run_) {
        log.open_for_adding();
    }

    BatchOrders orders;
    orders.policy = choice.policy;
    orders.saving = choice.saving;
    orders.max_texels = common_.max_texels;
    orders.timeout_seconds = common_.timeout_seconds;
    orders.workers = workers_.count();
    orders.service = workers_.service();
    orders.dry_run = dry_run_;
    orders.job_for = [&](BatchFile const& file) {
        ListJob const& job = plan.pieces[file.origin].job;
        Settings const settings = settings_of(job.data);
        check_ranges(settings, file.source.string());
        check_map_usage(settings, file.target.string());
        check_graphics_usage(graphics_, settings);
        return job;
    };
    auto const ended = [&](BatchResult const& result) {
        bool const done = result.state == BatchState::kDone;
        if (!result.file.target.empty() && (done || result.state == BatchState::kFailed)) {
            log.add(result.file.target, plan.pieces[result.file.origin].digest, done ? "done" : "failed",
                    reason_of(result));
        }
    };
    show_batch(plan.batch, orders, {"umbrix list run", common_.verbose, form_, common_.progress, ended},
               interrupts);
}

} // namespace umbrix_cli
