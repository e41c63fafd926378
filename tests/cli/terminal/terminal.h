// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Runs the tool on a terminal.

#include "cli/tool.h"

#include <initializer_list>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>

namespace umbrixlib::test {

/// A terminal that leaves what it is given as it is.
class Terminal {
public:
    explicit Terminal(unsigned short columns = 200) : outside_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (outside_ < 0 || grantpt(outside_) != 0 || unlockpt(outside_) != 0) {
            throw std::runtime_error("no terminal");
        }
        inside_ = open(ptsname(outside_), O_RDWR | O_NOCTTY | O_CLOEXEC);
        winsize const size{24, columns, 0, 0};
        termios way = {};
        tcgetattr(inside_, &way);
        cfmakeraw(&way);
        if (tcsetattr(inside_, TCSANOW, &way) != 0 || ioctl(inside_, TIOCSWINSZ, &size) != 0) {
            throw std::runtime_error("no terminal of that size");
        }
    }
    ~Terminal()
    {
        leave();
        close(outside_);
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    int inside() const { return inside_; }

    /// From now on only the tool holds it.
    void leave()
    {
        if (inside_ >= 0) {
            close(inside_);
        }
        inside_ = -1;
    }

    /// The next of what it shows; empty when nobody holds it any more.
    std::string read_some() const
    {
        char piece[4096];
        ssize_t const got = read(outside_, piece, sizeof piece);
        return {piece, static_cast<std::size_t>(got > 0 ? got : 0)};
    }

private:
    int outside_;
    int inside_ = -1;
};

struct Shown {
    Outcome outcome; ///< With the streams that are no terminal.
    std::string text;
};

/// Runs the tool with a terminal in place of some of its streams.
inline Shown run_on_terminal(std::filesystem::path const& folder, Arguments const& arguments,
                             Environment const& environment,
                             std::initializer_list<int> streams = {STDOUT_FILENO, STDERR_FILENO},
                             unsigned short columns = 200)
{
    Terminal terminal(columns);
    RunningTool tool(folder, arguments, environment, [&] {
        for (int const stream : streams) {
            dup2(terminal.inside(), stream);
        }
    });
    terminal.leave();
    Shown shown;
    std::thread reader([&] {
        for (std::string more; !(more = terminal.read_some()).empty();) {
            shown.text += more;
        }
    });
    shown.outcome = tool.finish();
    reader.join();
    return shown;
}

} // namespace umbrixlib::test
