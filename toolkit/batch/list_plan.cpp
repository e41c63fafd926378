// SPDX-License-Identifier: MIT
#include "toolkit/batch/list_plan.h"

#include "toolkit/base/failure.h"
#include "toolkit/lists/list_job.h"
#include "toolkit/pictures/naming.h"

#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr char const* kSuffix = "_Umbrix";

/// Files of one job. The places that cannot be looked into go to @p failures.
std::vector<BatchFile> files_of(umbrix_node const& job, ListChoice const& choice,
                                std::vector<Failure>& failures)
{
    std::error_code error;
    if (!fs::is_directory(job.filename, error)) {
        return {{job.filename, default_output(job.filename, kSuffix)}};
    }
    BatchChoice folder;
    folder.search.places = {job.filename};
    if (!job.search_str.empty()) {
        folder.search.include = {job.search_str};
    }
    folder.search.recurse = choice.recurse;
    folder.suffix = kSuffix;
    folder.policy = choice.policy;
    try {
        BatchPlan plan = plan_batch(folder);
        std::move(plan.failures.begin(), plan.failures.end(), std::back_inserter(failures));
        return plan.files;
    } catch (Failure const& failure) {
        if (failure.fault == Fault::kSameTarget || failure.fault == Fault::kTargetIsSource) {
            throw;
        }
        failures.push_back(failure);
        return {};
    }
}

/// In a folder, a job that makes its normals from layers takes the file at work for each of them.
void fill_layers(umbrix_node& job, fs::path const& file)
{
    for (auto* each = job.layers.head; each != nullptr; each = each->next) {
        each->data.filename = file.string();
    }
}

/// A map of the graphics processor is another one than that of the processor; all devices make the same.
std::uint8_t road_of(Graphics const& graphics)
{
    return static_cast<std::uint8_t>(graphics.device ? (graphics.match_cpu ? 2 : 1) : 0);
}

/// Adds to what a picture is made of how it is saved; as lists always were, nothing. Its compression does not
/// make another picture.
void add_saving(std::vector<unsigned char>& made_of, Saving saving)
{
    saving.compression = Compression::kDefault;
    if (saving != Saving{}) {
        int const depth = saving.depth ? static_cast<int>(*saving.depth) : -1;
        for (int const each : {depth, static_cast<int>(saving.rounding), saving.dither ? 1 : 0}) {
            made_of.push_back(static_cast<unsigned char>(each));
        }
    }
}

/// The same of how heights are read.
void add_reading(std::vector<unsigned char>& made_of, HeightReading const& reading)
{
    if (reading != HeightReading{}) {
        std::string const text =
            fmt::format("{} {} {} {}", static_cast<int>(reading.channel), text_of(reading.invalid),
                        text_of(reading.range), reading.invert);
        made_of.insert(made_of.end(), text.begin(), text.end());
    }
}

ListPiece piece_of(umbrix_node job, fs::path const& file, ListChoice const& choice)
{
    bool const of_folder = job.filename != file.string();
    if (of_folder && job.generate_normal) {
        fill_layers(job, file);
    }
    job.filename = file.string();
    ListPiece piece;
    piece.job.data = job;
    piece.job.layers = layers_of(job);
    piece.job.graphics = choice.graphics;
    piece.job.reading = choice.reading;
    std::vector<fs::path> read{file};
    for (n_layer const& layer : piece.job.layers) {
        read.emplace_back(layer.filename);
    }
    std::vector<std::uint8_t> made_of = pack_list_job(job);
    made_of.push_back(road_of(choice.graphics));
    add_saving(made_of, choice.saving);
    add_reading(made_of, choice.reading);
    piece.digest = digest_of(made_of, read);
    return piece;
}

} // namespace

ListPlan plan_list(umbrix_list& list, ListChoice const& choice, ListLog const& log)
{
    ListPlan plan;
    for (int i = 0; i < list.get_size(); ++i) {
        if (!choice.shard.holds(i)) {
            continue;
        }
        umbrix_node const job = list.get_node(i);
        for (BatchFile file : files_of(job, choice, plan.batch.failures)) {
            ListPiece piece = piece_of(job, file.source, choice);
            std::uint64_t const maker = log.maker_of(file.target);
            file.outdated = maker != 0 && maker != piece.digest;
            file.origin = plan.pieces.size();
            plan.batch.files.push_back(std::move(file));
            plan.pieces.push_back(std::move(piece));
        }
    }
    check_targets(plan.batch.files, choice.policy);
    return plan;
}

} // namespace umbrixlib::toolkit
