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

void read_list(fs::path const& file, umbrix_list& list)
{
    check_input(file, "a work list");
    check_list(file);
    if (!list.load_list(file.string())) {
        throw Failure(Fault::kListChanged, file.string(), "it cannot be read any more");
    }
}

void write_list(umbrix_list& list, fs::path const& file, bool overwrite)
{
    fs::path const target = check_output_file(file, overwrite, "name a file");
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
