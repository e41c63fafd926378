// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Makes calls of the system fail in a program that a test runs, and in all processes that it starts:
/// whatever would put something into the files below a folder asks this process first. Nothing of the program
/// is replaced, and nothing needs to be mounted.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace umbrixlib::test {

struct Fault {
    std::size_t first = 0; ///< The call that fails, counted from 0.
    bool lasts = false;    ///< All later ones, too, as on a disk that is full.
    int error = 0;         ///< ENOSPC, ...
};

class FaultInjection {
public:
    FaultInjection(std::filesystem::path const& folder, Fault fault)
        : folder_(std::filesystem::canonical(folder).string() + '/'), fault_(fault)
    {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_) != 0) {
            throw std::runtime_error("no socket pair");
        }
    }
    ~FaultInjection() { stop(); }
    FaultInjection(FaultInjection const&) = delete;
    FaultInjection& operator=(FaultInjection const&) = delete;

    /// In the new process, before the program takes it over.
    void install() const
    {
        std::vector<sock_filter> program{
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        };
        for (int const call : kWatched) {
            program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
            program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
        }
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
        sock_fprog const filter{static_cast<unsigned short>(program.size()), program.data()};
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        auto const listener = static_cast<int>(
            syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
        if (listener < 0) {
            _exit(125);
        }
        send_descriptor(ends_[1], listener);
    }

    /// In the test, after the process was started.
    void start()
    {
        close(std::exchange(ends_[1], -1));
        thread_ = std::thread([this] { serve(); });
    }

    /// After the end of the process.
    void stop()
    {
        ended_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        for (int& end : ends_) {
            if (end >= 0) {
                close(std::exchange(end, -1));
            }
        }
    }

    /// How many calls there were that could fail.
    std::size_t calls() const { return calls_; }

private:
    static constexpr int kWatched[] = {
        SYS_write,  SYS_pwrite64,  SYS_writev,   SYS_fsync,  SYS_ftruncate, SYS_close,
        SYS_openat, SYS_renameat2, SYS_renameat, SYS_linkat, SYS_mkdirat,
#if defined(SYS_open)
        SYS_open,   SYS_creat,     SYS_rename,   SYS_link,   SYS_mkdir,
#endif
    };

    static void send_descriptor(int socket, int descriptor)
    {
        char byte = 0;
        iovec content{&byte, 1};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr message{};
        message.msg_iov = &content;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr* const head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(head), &descriptor, sizeof descriptor);
        sendmsg(socket, &message, 0);
    }

    static int receive_descriptor(int socket)
    {
        char byte = 0;
        iovec content{&byte, 1};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr message{};
        message.msg_iov = &content;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        int descriptor = -1;
        if (recvmsg(socket, &message, MSG_CMSG_CLOEXEC) == 1 && CMSG_FIRSTHDR(&message) != nullptr) {
            std::memcpy(&descriptor, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof descriptor);
        }
        return descriptor;
    }

    void serve()
    {
        int const listener = receive_descriptor(ends_[0]);
        while (listener >= 0 && !ended_) {
            pollfd waiting{listener, POLLIN, 0};
            if (poll(&waiting, 1, 10) > 0) {
                if ((waiting.revents & POLLIN) == 0) {
                    break; // the last process has ended
                }
                answer(listener);
            }
        }
        close(listener);
    }

    void answer(int listener)
    {
        seccomp_notif asked{};
        if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &asked) != 0) {
            return; // killed meanwhile
        }
        seccomp_notif_resp reply{};
        reply.id = asked.id;
        if (puts_something_there(asked) && is_to_fail(calls_++)) {
            reply.error = -fault_.error;
        } else {
            reply.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        }
        ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &reply);
    }

    bool is_to_fail(std::size_t call) const
    {
        return call == fault_.first || (fault_.lasts && call > fault_.first);
    }

    bool puts_something_there(seccomp_notif const& asked) const
    {
        auto const& words = asked.data.args;
        auto const creates = [](std::uint64_t flags) { return (flags & O_CREAT) != 0; };
        switch (asked.data.nr) {
        case SYS_openat:
            return creates(words[2]) && is_path_below(asked.pid, words[1]);
        case SYS_mkdirat:
            return is_path_below(asked.pid, words[1]);
        case SYS_renameat:
        case SYS_renameat2:
        case SYS_linkat:
            return is_path_below(asked.pid, words[3]);
#if defined(SYS_open)
        case SYS_open:
            return creates(words[1]) && is_path_below(asked.pid, words[0]);
        case SYS_creat:
        case SYS_mkdir:
            return is_path_below(asked.pid, words[0]);
        case SYS_rename:
        case SYS_link:
            return is_path_below(asked.pid, words[1]);
#endif
        case SYS_close:
            return is_file_below(asked.pid, words[0]) && is_open_for_writing(asked.pid, words[0]);
        default:
            return is_file_below(asked.pid, words[0]);
        }
    }

    static std::string process_file(std::uint32_t process, std::string const& name)
    {
        return "/proc/" + std::to_string(process) + "/" + name;
    }

    bool is_file_below(std::uint32_t process, std::uint64_t descriptor) const
    {
        std::error_code error;
        std::string const file =
            std::filesystem::read_symlink(process_file(process, "fd/" + std::to_string(descriptor)), error);
        return file.starts_with(folder_);
    }

    static bool is_open_for_writing(std::uint32_t process, std::uint64_t descriptor)
    {
        std::ifstream info(process_file(process, "fdinfo/" + std::to_string(descriptor)));
        std::string word;
        while (info >> word && word != "flags:") {
        }
        unsigned flags = 0;
        info >> std::oct >> flags;
        return (flags & O_ACCMODE) != O_RDONLY;
    }

    /// A path that does not begin at the root is one in the tool's current folder, which is watched.
    bool is_path_below(std::uint32_t process, std::uint64_t address) const
    {
        char text[4096] = {};
        int const memory = open(process_file(process, "mem").c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t const got = pread(memory, text, sizeof text - 1, static_cast<off_t>(address));
        close(memory);
        return got > 0 && (text[0] != '/' || std::string(text).starts_with(folder_));
    }

    std::string folder_;
    Fault fault_;
    int ends_[2] = {-1, -1};
    std::thread thread_;
    std::atomic<bool> ended_ = false;
    std::atomic<std::size_t> calls_ = 0;
};

} // namespace umbrixlib::test
