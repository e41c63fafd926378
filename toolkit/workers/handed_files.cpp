// SPDX-License-Identifier: MIT
#include "toolkit/workers/handed_files_internal.h"

#include "toolkit/files/opened_files.h"
#include "toolkit/workers/crossing_internal.h"

#include <cstring>
#include <set>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kMostHanded = 250; ///< Linux takes 253 at a time.

struct Purpose {
    std::string file;
    OpenFor purpose;
};

/// The files that @p job names, each once.
std::vector<Purpose> distinct_files(Job const& job)
{
    NamedFiles const files = files_of(job);
    std::vector<Purpose> distinct;
    std::set<std::string> known;
    auto const add = [&](std::vector<std::string> const& names, OpenFor purpose) {
        for (std::string const& name : names) {
            if (known.insert(name).second) {
                distinct.push_back({name, purpose});
            }
        }
    };
    add(files.inputs, OpenFor::kReading);
    add(files.outputs, OpenFor::kWriting);
    return distinct;
}

/// Room for the descriptors beside a message.
struct alignas(cmsghdr) Beside {
    char bytes[CMSG_SPACE(kMostHanded * sizeof(int))] = {};
};

} // namespace

bool HandedFiles::open(Job const& job)
{
    close_all();
    std::vector<Purpose> const files = distinct_files(job);
    bool good = files.size() <= kMostHanded;
    for (auto each = files.begin(); good && each != files.end(); ++each) {
        int const descriptor = open_for_another(each->file, each->purpose);
        good = descriptor >= 0;
        if (good) {
            descriptors_.push_back(descriptor);
        }
    }
    if (!good) {
        close_all();
    }
    return good;
}

ssize_t HandedFiles::send(int socket, char const* bytes, std::size_t size) const
{
    iovec text{const_cast<char*>(bytes), size};
    msghdr message{};
    message.msg_iov = &text;
    message.msg_iovlen = 1;
    Beside beside;
    if (!empty()) {
        std::size_t const all = descriptors_.size() * sizeof(int);
        message.msg_control = beside.bytes;
        message.msg_controllen = CMSG_SPACE(all);
        cmsghdr* const head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(all);
        std::memcpy(CMSG_DATA(head), descriptors_.data(), all);
    }
    return sendmsg(socket, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void HandedFiles::close_all()
{
    for (int const descriptor : std::exchange(descriptors_, {})) {
        close(descriptor);
    }
}

ssize_t HandedFiles::receive(int socket, char* bytes, std::size_t size)
{
    iovec text{bytes, size};
    Beside beside;
    msghdr message{};
    message.msg_iov = &text;
    message.msg_iovlen = 1;
    message.msg_control = beside.bytes;
    message.msg_controllen = sizeof beside.bytes;
    ssize_t const got = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    if (got < 0) {
        return got;
    }
    for (cmsghdr* head = CMSG_FIRSTHDR(&message); head != nullptr; head = CMSG_NXTHDR(&message, head)) {
        if (head->cmsg_level == SOL_SOCKET && head->cmsg_type == SCM_RIGHTS) {
            std::size_t const all = head->cmsg_len - CMSG_LEN(0);
            std::size_t const before = descriptors_.size();
            descriptors_.resize(before + all / sizeof(int));
            std::memcpy(descriptors_.data() + before, CMSG_DATA(head), all);
        }
    }
    return got;
}

void HandedFiles::take_for(Job const& job)
{
    if (empty()) {
        return;
    }
    std::vector<Purpose> const files = distinct_files(job);
    if (files.size() != descriptors_.size()) {
        throw Garbled("the files of the job are not those that came with it");
    }
    std::vector<int> const taken = std::exchange(descriptors_, {});
    for (std::size_t i = 0; i < files.size(); ++i) {
        take_opened(files[i].file, taken[i]);
    }
}

} // namespace umbrixlib::toolkit
