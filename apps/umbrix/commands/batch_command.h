// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/graphics_option.h"
#include "options/profile_option.h"
#include "options/results_option.h"
#include "options/workers_option.h"
#include "terminal/batch_display.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <functional>
#include <optional>
#include <string>

namespace umbrix_cli {

struct Product;

/// `umbrix batch`: what `umbrix map`, `umbrix normal` and the like make, of every file of a folder, several
/// at a time.
class BatchCommand : public Command {
public:
    BatchCommand();
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void declare_files(CLI::App& command);
    void declare_patterns(CLI::App& command);
    void declare_input(CLI::App& command);
    void validate() const;
    void forbid_options_of_others() const;
    void obey_profile();
    std::function<PictureJob(BatchFile const& file)> job_for() const;
    BatchChoice choice() const;
    BatchOrders orders() const;
    FolderJob plain_walk() const;
    void run_plain_walk(Interrupts const& interrupts) const;

    CLI::App* command_ = nullptr;
    CommonOptions common_;
    Settings settings_ = kDefaults;
    ProfileOption profile_;
    Search search_;
    std::optional<std::string> suffix_;
    std::string keep_tree_;
    WorkersOption workers_;
    bool update_ = false;
    bool include_outputs_ = false;
    bool dry_run_ = false;
    ResultsForm form_ = ResultsForm::kRows;
    bool plain_ = false;
    Graphics graphics_;
    Product const* product_;
    std::optional<Kind> kind_;
    std::optional<NormalY> normal_y_;
};

} // namespace umbrix_cli
