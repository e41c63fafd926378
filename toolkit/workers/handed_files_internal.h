// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/jobs.h"

#include <cstddef>
#include <sys/types.h>
#include <vector>

namespace umbrixlib::toolkit {

/// The open files of a job on their way through a socket, from the process that opened them to a worker that
/// may open none. Owns the descriptors at either end.
class HandedFiles {
public:
    HandedFiles() = default;
    ~HandedFiles() { close_all(); }
    HandedFiles(HandedFiles const&) = delete;
    HandedFiles& operator=(HandedFiles const&) = delete;

    /// Opens the files that @p job names. False if there are more than can be handed at a time, or one is not
    /// as open_for_another() wants it: then it has none.
    bool open(Job const& job);

    bool empty() const { return descriptors_.empty(); }

    /// As send() does, without a signal and without waiting: the files go along with the first byte.
    ssize_t send(int socket, char const* bytes, std::size_t size) const;

    void close_all();

    /// As read() does; keeps the files that come along.
    ssize_t receive(int socket, char* bytes, std::size_t size);

    /// Has those that came, if any, count as opened ahead under the names of @p job. Garbled if they are not
    /// as many as it has files.
    void take_for(Job const& job);

private:
    std::vector<int> descriptors_; ///< In the order of files_of(), each name once.
};

} // namespace umbrixlib::toolkit
