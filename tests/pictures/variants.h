// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::test {

/// A line of index.tsv: a file, and what has to become of it.
struct Variant {
    std::string file; ///< Below files/.
    std::string format;
    std::string what; ///< What is special.
    bool taken;
    std::string expected; ///< The name of a reference, or a sentence.
    double tolerance;     ///< In the numbers of the samples.
    std::string remark{}; ///< What is not as one might think; often empty.
};

/// What became of one.
struct Result {
    bool taken = false;
    std::string format{};   ///< As the reader calls it; empty where it is refused.
    std::string sentence{}; ///< Why it is refused.
    double difference = 0;  ///< The largest, in the numbers of the samples.
    std::string fault{};    ///< What is wrong with it; empty if nothing is.
};

/// All lines of the index in @p folder.
std::vector<Variant> read_index(std::filesystem::path const& folder);

/// Reads the file of @p variant and compares it with its reference.
Result try_variant(std::filesystem::path const& folder, Variant const& variant);

} // namespace umbrixlib::test
