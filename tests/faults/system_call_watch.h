// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Lets a test see calls of the system in a program that it runs, and in all processes that this starts,
/// before they happen. Nothing of the program is replaced, and nothing needs to be mounted.

#include <atomic>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
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
#include <utility>
#include <vector>

namespace umbrixlib::test {

class SystemCallWatch {
public:
    /// Says what is to become of a call: 0 lets it happen, anything else is the error that it fails with.
    using Decision = std::function<int(seccomp_notif const& asked)>;

    SystemCallWatch(std::vector<int> calls, Decision decision)
        : calls_(std::move(calls)), decision_(std::move(decision))
    {
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_) != 0) {
            throw std::runtime_error("no socket pair");
        }
    }
    ~SystemCallWatch() { stop(); }
    SystemCallWatch(SystemCallWatch const&) = delete;
    SystemCallWatch& operator=(SystemCallWatch const&) = delete;

    /// In the new process, before the program takes it over.
    void install() const
    {
        std::vector<sock_filter> program{
            BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        };
        for (int const call : calls_) {
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

private:
    /// A message of one byte, with room for a descriptor.
    struct DescriptorMessage {
        DescriptorMessage()
        {
            head.msg_iov = &content;
            head.msg_iovlen = 1;
            head.msg_control = control;
            head.msg_controllen = sizeof control;
        }
        DescriptorMessage(DescriptorMessage const&) = delete;
        DescriptorMessage& operator=(DescriptorMessage const&) = delete;

        char byte = 0;
        iovec content{&byte, 1};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr head{};
    };

    static void send_descriptor(int socket, int descriptor)
    {
        DescriptorMessage message;
        cmsghdr* const part = CMSG_FIRSTHDR(&message.head);
        part->cmsg_level = SOL_SOCKET;
        part->cmsg_type = SCM_RIGHTS;
        part->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(part), &descriptor, sizeof descriptor);
        sendmsg(socket, &message.head, 0);
    }

    static int receive_descriptor(int socket)
    {
        DescriptorMessage message;
        int descriptor = -1;
        if (recvmsg(socket, &message.head, MSG_CMSG_CLOEXEC) == 1 &&
            CMSG_FIRSTHDR(&message.head) != nullptr) {
            std::memcpy(&descriptor, CMSG_DATA(CMSG_FIRSTHDR(&message.head)), sizeof descriptor);
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
        reply.error = -decision_(asked);
        reply.flags = reply.error == 0 ? SECCOMP_USER_NOTIF_FLAG_CONTINUE : 0;
        ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &reply);
    }

    std::vector<int> calls_;
    Decision decision_;
    int ends_[2] = {-1, -1};
    std::thread thread_;
    std::atomic<bool> ended_ = false;
};

inline std::string process_file(std::uint32_t process, std::string const& name)
{
    return "/proc/" + std::to_string(process) + "/" + name;
}

/// The file behind a descriptor of a process.
inline std::string file_behind(std::uint32_t process, std::uint64_t descriptor)
{
    std::error_code error;
    return std::filesystem::read_symlink(process_file(process, "fd/" + std::to_string(descriptor)), error);
}

} // namespace umbrixlib::test
