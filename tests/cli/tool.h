// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Runs the built tool as a user does, in a folder of its own.

#include "picture_files.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <poll.h>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace umbrixlib::test {

using Arguments = std::vector<std::string>;
using Environment = std::vector<std::pair<std::string, std::string>>;

struct Outcome {
    int code; ///< Exit code, or minus the signal.
    std::string out;
    std::string err;
};

/// The tool while it runs, in the current folder of the test.
class RunningTool {
public:
    /// @param prepare Called in the new process before the tool takes it over.
    RunningTool(std::filesystem::path const& folder, Arguments const& arguments,
                Environment const& environment = {}, std::function<void()> const& prepare = {})
    {
        int out[2];
        int err[2];
        if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipes");
        }
        process_ = fork();
        if (process_ == 0) {
            become_tool(folder, arguments, environment, prepare, out[1], err[1]);
        }
        close(out[1]);
        close(err[1]);
        out_ = out[0];
        err_ = err[0];
    }
    ~RunningTool()
    {
        if (process_ > 0) {
            send(SIGKILL);
            finish();
        }
    }
    RunningTool(RunningTool const&) = delete;
    RunningTool& operator=(RunningTool const&) = delete;

    pid_t process() const { return process_; }
    void send(int signal) const { kill(process_, signal); }

    /// Processes that it has started.
    std::vector<pid_t> children() const
    {
        std::string const name = std::to_string(process_);
        std::ifstream list("/proc/" + name + "/task/" + name + "/children");
        return {std::istream_iterator<pid_t>(list), std::istream_iterator<pid_t>()};
    }

    /// Reads until standard error holds @p text. False if the tool ends before.
    bool wait_for_text(std::string const& text) { return wait_for(outcome_.err, text); }

    /// The same for standard output.
    bool wait_for_result(std::string const& text) { return wait_for(outcome_.out, text); }

    Outcome finish()
    {
        while (read_more()) {
        }
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = -1;
        close(out_);
        close(err_);
        outcome_.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        return outcome_;
    }

private:
    [[noreturn]] static void become_tool(std::filesystem::path const& folder, Arguments const& arguments,
                                         Environment const& environment, std::function<void()> const& prepare,
                                         int out, int err)
    {
        std::vector<char*> words{const_cast<char*>("umbrix")};
        for (std::string const& argument : arguments) {
            words.push_back(const_cast<char*>(argument.c_str()));
        }
        words.push_back(nullptr);
        for (auto const& [name, value] : environment) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        if (chdir(folder.c_str()) != 0) {
            _exit(126);
        }
        if (prepare) {
            prepare();
        }
        execv(UMBRIX_TOOL, words.data());
        _exit(127);
    }

    bool wait_for(std::string const& stream, std::string const& text)
    {
        while (stream.find(text) == std::string::npos) {
            if (!read_more()) {
                return false;
            }
        }
        return true;
    }

    bool read_more()
    {
        pollfd waiting[] = {{out_open_ ? out_ : -1, POLLIN, 0}, {err_open_ ? err_ : -1, POLLIN, 0}};
        if (!out_open_ && !err_open_) {
            return false;
        }
        poll(waiting, 2, -1);
        if (waiting[0].revents != 0) {
            out_open_ = append(out_, outcome_.out);
        }
        if (waiting[1].revents != 0) {
            err_open_ = append(err_, outcome_.err);
        }
        return out_open_ || err_open_;
    }

    static bool append(int from, std::string& to)
    {
        char piece[4096];
        ssize_t const got = read(from, piece, sizeof piece);
        to.append(piece, static_cast<std::size_t>(got > 0 ? got : 0));
        return got > 0;
    }

    pid_t process_ = -1;
    int out_ = -1;
    int err_ = -1;
    bool out_open_ = true;
    bool err_open_ = true;
    Outcome outcome_{};
};

/// A test with a folder for its files and another for temporary files of the system, which has to stay empty.
class ToolTest : public testing::Test {
protected:
    ToolTest()
    {
        std::string name = (std::filesystem::temp_directory_path() / "umbrix-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder for the test");
        }
        root_ = name;
        std::filesystem::create_directory(folder());
        std::filesystem::create_directory(scratch());
    }
    ~ToolTest() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    std::filesystem::path folder() const { return root_ / "pictures"; }
    std::filesystem::path scratch() const { return root_ / "scratch"; }

    Environment with_scratch(Environment environment = {}) const
    {
        environment.emplace_back("TMPDIR", scratch().string());
        return environment;
    }

    Outcome run(Arguments const& arguments, Environment const& environment = {},
                std::function<void()> const& prepare = {}) const
    {
        return RunningTool(folder(), arguments, with_scratch(environment), prepare).finish();
    }

    void write(std::string const& name, Bytes const& bytes) const { write_file(folder() / name, bytes); }
    Bytes read(std::string const& name) const { return read_file(folder() / name); }
    TgaPicture tga(std::string const& name) const { return read_tga(folder() / name); }

    /// Names of all that is in the test's folders.
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (auto const& each : {folder(), scratch()}) {
            for (auto const& entry : std::filesystem::directory_iterator(each)) {
                names.insert(entry.path().filename().string());
            }
        }
        return names;
    }

private:
    std::filesystem::path root_;
};

/// Grey RGB texels of a height for each x and y, y counted from the bottom, as a 24-bit TGA.
template <typename Height>
Bytes height_map(int width, int height, Height&& height_at)
{
    Bytes pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            auto const value = static_cast<std::uint8_t>(height_at(x, y));
            pixels.insert(pixels.end(), {value, value, value});
        }
    }
    return tga_bytes(width, height, 3, pixels);
}

/// A smooth round hill in the middle.
inline Bytes hill(int side)
{
    return height_map(side, side, [side](int x, int y) {
        double const dx = (x - side / 2) * 4.0 / side;
        double const dy = (y - side / 2) * 4.0 / side;
        return 255.0 / (1.0 + dx * dx + dy * dy);
    });
}

/// One sentence about what went wrong, which names @p file.
inline testing::AssertionResult complains_about(Outcome const& outcome, std::string const& command,
                                                std::string const& file)
{
    std::string const start = command + ": error: " + file + ": ";
    std::size_t const at = outcome.err.find(start);
    bool const last_line = at != std::string::npos && outcome.err.find('\n', at) == outcome.err.size() - 1;
    bool const advice = outcome.err.find("; ", at == std::string::npos ? 0 : at) != std::string::npos;
    if (last_line && advice) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "code " << outcome.code << ", standard error:\n" << outcome.err;
}

} // namespace umbrixlib::test
