// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/jobs.h"

#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A job for a stand-in. It does @p acts one after the other, pairs of a name and a word, and then reports a
/// map: its reason repeats the acts, its difference holds the numbers of the processors that the stand-in may
/// use, its width tells how many OpenMP counts, and its height the number of its process. A map with an
/// output, as those of a batch have, has its acts in its input.
///
///     abort now         ends as a crash does
///     exit 3            ends with that code
///     phase 1           begins that Phase; of reading and making the file is "in", else "out"
///     note a            tells a note about "in"; a detail if the word is that
///     stage a           tells a stage
///     fail badly        tells a failure of "in"
///     raise 2           sends itself that signal
///     rave on           writes nonsense where events are expected
///     wait 20           sleeps so many milliseconds
///     say hello         prints
///     take 64           takes so many MiB of memory
///     listen 50         looks every so many milliseconds whether it is to stop, until it is
///     write map         writes that word to the output
///     read on           tells a note with the first bytes of the input
///     count on          tells a note with the number of its open descriptors
///     alter word        that word comes before the acts in its further reports
///     haunt abort-now   does these acts before those of its next job
///     linger raise-9    does these after the report
///     deaf 20           closes its standard input and sleeps so many milliseconds
MapJob job_to_act(std::string const& acts);

/// The same for a walk.
FolderJob walk_to_act(std::string const& acts);

std::vector<int> own_processors();

} // namespace umbrixlib::toolkit
