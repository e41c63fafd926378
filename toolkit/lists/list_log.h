// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// One of N shares of a list: every N-th job.
struct Shard {
    int number = 1;
    int count = 1;

    bool holds(int job) const { return job % count == number - 1; } ///< @p job counts from 0.
};

/// What a run of a work list has done, line by line in a file beside the list, so that the next run goes on
/// from there. Each shard writes a log of its own, and all read those of all.
class ListLog {
public:
    /// Reads what there is.
    ListLog(std::filesystem::path const& list, Shard const& shard);
    ~ListLog();
    ListLog(ListLog const&) = delete;
    ListLog& operator=(ListLog const&) = delete;

    /// Before the first add(). A Failure if the log of the shard cannot be written.
    void open_for_adding();

    std::filesystem::path const& file() const { return file_; }

    /// Digest of the job that made @p target, or 0 if no run did.
    std::uint64_t maker_of(std::filesystem::path const& target) const;

    void add(std::filesystem::path const& target, std::uint64_t digest, std::string const& state,
             std::string const& reason);

private:
    std::filesystem::path file_;
    int descriptor_ = -1;
    std::map<std::string, std::uint64_t> makers_; ///< By the target's name.
};

/// Tells whether the outcome of a job may differ from that of an earlier run: of the job itself and of the
/// size and time of the files that it reads.
std::uint64_t digest_of(std::vector<std::uint8_t> const& job,
                        std::vector<std::filesystem::path> const& files);

} // namespace umbrixlib::toolkit
