// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/batch/batch_plan.h"
#include "toolkit/lists/list_log.h"
#include "toolkit/tasks/jobs.h"

#include <cstdint>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// How the jobs of a list are to be run.
struct ListChoice {
    Shard shard;
    bool recurse = false; ///< Look into the folders in folders.
    OutputPolicy policy = OutputPolicy::kKeep;
    Graphics graphics;
    Saving saving{};
    HeightReading reading{};
};

/// A file of a job of the list: what is to be done, and what the log remembers.
struct ListPiece {
    ListJob job; ///< Without the files.
    std::uint64_t digest = 0;
};

struct ListPlan {
    BatchPlan batch;               ///< `origin` of a file is the place of its piece.
    std::vector<ListPiece> pieces; ///< One for each file.
};

/// The files of the jobs in the shard, jobs in their order. What an earlier run made of the same job and
/// files is left alone, what it made of others is replaced. A Failure if two files lead to one output; a
/// folder without pictures is a failed place of the plan.
ListPlan plan_list(umbrix_list& list, ListChoice const& choice, ListLog const& log);

} // namespace umbrixlib::toolkit
