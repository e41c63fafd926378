// SPDX-License-Identifier: MIT
#include "toolkit/batch/batch_plan.h"

#include "toolkit/base/glob.h"
#include "toolkit/base/text.h"
#include "toolkit/files/temporary.h"
#include "toolkit/pictures/naming.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

/// Two names of one file in one folder have the same key. The file itself need not exist.
fs::path key_of(fs::path const& file)
{
    std::error_code error;
    fs::path const folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return fs::weakly_canonical(folder, error) / file.filename();
}

bool ends_in(fs::path const& file, std::string const& suffix)
{
    return !suffix.empty() && lower_case(file.stem().string()).ends_with(lower_case(suffix));
}

/// What is put after the name for output number @p part.
std::string suffix_of(BatchChoice const& choice, int part)
{
    return choice.parts == 1 ? choice.suffix : fmt::format("{}{}", choice.suffix, part + 1);
}

bool is_output_of_a_run(fs::path const& file, BatchChoice const& choice)
{
    for (int part = 0; part < choice.parts; ++part) {
        if (ends_in(file, suffix_of(choice, part))) {
            return true;
        }
    }
    return ends_in(file, "_Umbrix");
}

fs::path target_for(FoundFile const& found, BatchChoice const& choice, int part)
{
    fs::path const beside = default_output(found.file, suffix_of(choice, part), choice.extension);
    return choice.keep_tree.empty() ? beside : choice.keep_tree / found.tree / beside.filename();
}

void check_that_targets_differ(std::vector<BatchFile> const& files)
{
    std::map<fs::path, BatchFile const*> first_with;
    BatchFile const* first = nullptr;
    BatchFile const* second = nullptr;
    std::size_t more = 0;
    for (BatchFile const& file : files) {
        auto const [entry, added] = first_with.emplace(key_of(file.target), &file);
        if (!added && first == nullptr) {
            first = entry->second;
            second = &file;
        } else if (!added) {
            ++more;
        }
    }
    if (first != nullptr) {
        throw Failure(Fault::kSameTarget, first->target.string(),
                      fmt::format("{} and {} would both be written there{}", first->source.string(),
                                  second->source.string(),
                                  more == 0 ? "" : fmt::format(", and {} more are like that", more)));
    }
}

void check_that_no_source_is_lost(std::vector<BatchFile> const& files, OutputPolicy policy)
{
    std::map<fs::path, BatchFile const*> sources;
    for (BatchFile const& file : files) {
        sources.emplace(key_of(file.source), &file);
    }
    for (BatchFile const& file : files) {
        auto const lost = sources.find(key_of(file.target));
        // An output that is kept because it exists endangers nothing, unless it is its own input.
        if (lost != sources.end() && (policy != OutputPolicy::kKeep || lost->second == &file)) {
            throw Failure(
                Fault::kTargetIsSource, file.source.string(),
                fmt::format("its output would replace the input {}", lost->second->source.string()));
        }
    }
}

/// Whether the search asks for @p found by its ending, in a pattern or by its name: what "*rough*" and
/// "rock_AO.png" do, and "rock_*" and "metal*" do not.
bool asks_for(NameEnding const& ending, FoundFile const& found, Search const& search)
{
    std::string name = lower_case(found.file.filename().string());
    name.erase(name.rfind(ending.text), ending.text.size());
    auto const means_it = [&](std::string const& pattern) {
        return lower_case(pattern).find(ending.text.substr(1)) != std::string::npos &&
               !matches(pattern, name);
    };
    return std::ranges::any_of(found.asked_for, means_it) || std::ranges::any_of(search.include, means_it);
}

/// The ending for which @p found is left alone; null if it is not.
NameEnding const* reason_to_leave_alone(FoundFile const& found, BatchChoice const& choice)
{
    NameEnding const* const ending = ending_of_name(found.file);
    if (ending == nullptr || choice.endings == Endings::kAny) {
        return nullptr;
    }
    bool const wanted = choice.endings == Endings::kSurface   ? ending->kind.has_value()
                        : choice.endings == Endings::kHeights ? ending->kind == Kind::kHeightMap
                                                              : ending->kind == Kind::kNormalMap;
    return wanted || asks_for(*ending, found, choice.search) ? nullptr : ending;
}

Failure nothing_found(BatchChoice const& choice, BatchPlan const& plan)
{
    std::string const where =
        choice.search.places.size() == 1 ? choice.search.places.front() : std::string("input");
    if (plan.outputs_left_out > 0) {
        return {Fault::kOnlyOutputsFound, where, "all that is found there are outputs of earlier runs"};
    }
    if (!plan.left_alone.empty()) {
        LeftAlone const& one = plan.left_alone.front();
        return {Fault::kOnlyOthersFound, where,
                fmt::format("what is found there is left alone for its name, such as {}",
                            one.file.filename().string()),
                one.ending};
    }
    return {choice.search.recurse ? Fault::kNothingFound : Fault::kNothingFoundAtTop, where,
            "no picture is found there"};
}

} // namespace

BatchPlan plan_batch(BatchChoice const& choice)
{
    SearchResult found = find_files(choice.search);
    BatchPlan plan;
    plan.failures = std::move(found.failures);
    for (FoundFile const& each : found.files) {
        if (is_temporary_name(each.file)) {
            continue;
        }
        if (!choice.include_outputs && is_output_of_a_run(each.file, choice)) {
            ++plan.outputs_left_out;
            continue;
        }
        if (NameEnding const* const ending = reason_to_leave_alone(each, choice)) {
            plan.left_alone.push_back({each.file, std::string(ending->text)});
            continue;
        }
        for (int part = 0; part < choice.parts; ++part) {
            BatchFile file{each.file, target_for(each, choice, part)};
            file.part = part;
            plan.files.push_back(std::move(file));
        }
    }
    if (plan.files.empty() && plan.failures.empty()) {
        throw nothing_found(choice, plan);
    }
    check_targets(plan.files, choice.policy);
    return plan;
}

void check_targets(std::vector<BatchFile> const& files, OutputPolicy policy)
{
    check_that_targets_differ(files);
    check_that_no_source_is_lost(files, policy);
}

std::optional<std::string> reason_to_skip(BatchFile const& file, OutputPolicy policy)
{
    std::error_code error;
    if (policy == OutputPolicy::kReplace || file.outdated || !fs::is_regular_file(file.target, error)) {
        return std::nullopt;
    }
    if (policy == OutputPolicy::kKeep) {
        return "its output is already there";
    }
    auto const source_time = fs::last_write_time(file.source, error);
    if (error || source_time > fs::last_write_time(file.target, error) || error) {
        return std::nullopt;
    }
    return "its output is up to date";
}

} // namespace umbrixlib::toolkit
