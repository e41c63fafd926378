// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/flush_to_disk.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/files/temporary.h"
#include "toolkit/lists/list_check.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

/// The file behind @p file if it is a link, so that the link stays one.
fs::path target_of(fs::path const& file, bool overwrite)
{
    std::error_code error;
    fs::path const folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) {
        throw Failure(Fault::kMissingFolder, file.string(), "its folder does not exist");
    }
    fs::file_status const status = fs::status(file, error);
    if (!fs::exists(status)) {
        return folder / file.filename();
    }
    if (!fs::is_regular_file(status)) {
        throw Failure(Fault::kNotPlainFile, file.string(),
                      fs::is_directory(status) ? "it is a folder" : "it is not a plain file", "name a file");
    }
    if (!overwrite) {
        throw Failure(Fault::kOutputExists, file.string(), "it exists");
    }
    fs::path const behind_links = fs::canonical(file, error);
    return error ? file : behind_links; // it may vanish meanwhile
}

bool is_whole_list(fs::path const& file)
{
    try {
        check_list(file);
        return true;
    } catch (Failure const&) {
        return false;
    }
}

} // namespace

void check_readable(fs::path const& file, std::string const& remedy)
{
    std::error_code error;
    fs::file_status const status = fs::status(file, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw Failure(Fault::kNotPlainFile, file.string(),
                      fs::is_directory(status) ? "it is a folder" : "it is not a plain file", remedy);
    }
    check_input(file);
}

void read_list(fs::path const& file, umbrix_list& list)
{
    check_readable(file, "name a work list");
    check_list(file);
    if (!list.load_list(file.string())) {
        throw Failure(Fault::kListChanged, file.string(), "it cannot be read any more");
    }
}

void write_list(umbrix_list& list, fs::path const& file, bool overwrite)
{
    fs::path const target = target_of(file, overwrite);
    remove_leftovers_beside(file);
    OutputFile output(target, ".ulist");
    list.save_list(output.temporary().string());
    if (!is_whole_list(output.temporary()) || !flush_to_disk(output.temporary())) {
        throw Failure(Fault::kNotWritten, file.string(), "it could not be written");
    }
    output.move_into_place(overwrite);
}

int index_of_job(umbrix_list& list, std::string const& file, int number)
{
    if (number < 1 || number > list.get_size()) {
        throw Failure(Fault::kNoSuchJob, file,
                      fmt::format("there is no job {} among its {}", number, count_of_jobs(list.get_size())));
    }
    return number - 1;
}

std::string count_of_jobs(int jobs)
{
    return fmt::format("{} job{}", jobs, jobs == 1 ? "" : "s");
}

} // namespace umbrixlib::toolkit
