// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/files/file_search.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What becomes of outputs that exist.
enum class OutputPolicy {
    kKeep,    ///< They stay, and their inputs are skipped.
    kUpdate,  ///< They are replaced if their input is newer.
    kReplace, ///< They are replaced.
};

/// Pictures of a material that a batch does without, as their names' endings tell.
enum class Endings {
    kAny,     ///< None.
    kSurface, ///< All but heights and normals.
    kHeights, ///< All but heights.
    kNormals, ///< All but normals.
};

/// Which files a batch works on and where their outputs go.
struct BatchChoice {
    Search search;
    bool include_outputs = false;    ///< Take outputs of earlier runs as inputs.
    Endings endings = Endings::kAny; ///< Those that the search has in a pattern or a name are taken.
    std::string suffix;              ///< Of the outputs: "_Umbrix".
    std::string extension;           ///< Of the outputs; empty: as default_output() has it.
    int parts = 1; ///< Outputs of each input. If there are more, their numbers follow the suffix, from 1.
    std::string keep_tree; ///< Folder that the outputs go to, in the tree of the inputs; empty: beside them.
    OutputPolicy policy = OutputPolicy::kKeep;
};

/// One file of a batch. Its name is the input's as the user would call it.
struct BatchFile {
    std::filesystem::path source;
    std::filesystem::path target;
    bool outdated = false;  ///< What stands at the target is known to be replaceable.
    int part = 0;           ///< Number of the output, from 0.
    std::size_t origin = 0; ///< For whoever made the plan: where the file comes from.
};

/// A picture that a batch does without.
struct LeftAlone {
    std::filesystem::path file;
    std::string ending; ///< Of its name.
};

struct BatchPlan {
    std::vector<BatchFile> files;      ///< By source.
    std::vector<Failure> failures;     ///< Places where no files can be looked for.
    std::size_t outputs_left_out = 0;  ///< Outputs of earlier runs.
    std::vector<LeftAlone> left_alone; ///< For their endings.
};

/// Finds the files and names their outputs. A Failure if there are none, or if two inputs lead to one output,
/// or if an output would replace an input.
BatchPlan plan_batch(BatchChoice const& choice);

/// Throws a Failure unless all files have outputs of their own that are no inputs, so that nothing is lost.
void check_targets(std::vector<BatchFile> const& files, OutputPolicy policy);

/// Why there is nothing to do for @p file, or nothing.
std::optional<std::string> reason_to_skip(BatchFile const& file, OutputPolicy policy);

} // namespace umbrixlib::toolkit
