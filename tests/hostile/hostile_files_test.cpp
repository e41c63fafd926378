// SPDX-License-Identifier: MIT
/// Thousands of damaged pictures through every command. Each has to end in a result or in one sentence.
#include "hostile_corpus.h"

#include <fstream>
#include <map>
#include <mutex>
#include <sys/resource.h>
#include <thread>

namespace umbrixlib::test {
namespace {

constexpr char const* kTimeout = "--timeout=3"; ///< Some loaders never end.
constexpr double kSecondsAllowed = 60;          ///< Twenty times that, on a machine with other work.
constexpr double kMegabytesAllowed = 6144;      ///< Of one process: what a picture of 2^28 texels may take.

struct Trial {
    std::string file;
    std::string format;
    std::string command;
    std::string output; ///< Empty if the command writes none.
};

class HostileFiles : public HostileCorpus {
protected:
    /// Writes the damaged files and says what is to be done with each.
    std::vector<Trial> make_trials() const
    {
        std::vector<Trial> trials;
        for (DamagedFile const& each : write_corpus(test_share())) {
            constexpr char const* kCommands[] = {"map", "normal", "relight", "info", "stack"};
            std::string const command = each.variant == 0 ? "map" : kCommands[each.variant % 5];
            std::string const stem = std::filesystem::path(each.name).stem();
            trials.push_back(
                {each.name, each.format, command, command == "info" ? "" : "out_" + stem + ".tga"});
        }
        return trials;
    }

    Arguments arguments_of(Trial const& trial) const
    {
        if (trial.command == "info") {
            return {"info", trial.file, kTimeout};
        }
        if (trial.command == "stack") {
            std::string const stack = trial.file + ".toml";
            std::ofstream(folder() / stack) << "[[layer]]\nfile = \"" << trial.file << "\"\n";
            return {"stack", stack, "-o", trial.output, kTimeout};
        }
        Arguments arguments{trial.command, trial.file, "-o", trial.output, kTimeout};
        if (trial.command == "map") {
            arguments.insert(arguments.end(), {"--rays", "4", "--radius", "0.1"});
        }
        return arguments;
    }

    /// What is wrong with how the tool ended; empty if nothing is.
    std::string verdict(Trial const& trial, Outcome const& outcome) const
    {
        bool const written = !trial.output.empty() && std::filesystem::exists(folder() / trial.output);
        if (outcome.code == 0) {
            bool const whole = trial.output.empty() || (written && tga(trial.output).width > 0);
            return whole ? "" : "done, without a whole result";
        }
        if (outcome.code != 1) {
            return "exit code " + std::to_string(outcome.code);
        }
        std::size_t const first = outcome.err.find("umbrix " + trial.command + ": error: ");
        bool const one = first != std::string::npos &&
                         outcome.err.find(": error: ", first + 20) == std::string::npos &&
                         outcome.err.find('\n', first) == outcome.err.size() - 1;
        return written ? "failed, and left a result" : one ? "" : "failed without one clear sentence";
    }
};

TEST_F(HostileFiles, EndInAResultOrOneSentence)
{
    std::vector<Trial> const trials = make_trials();
    ASSERT_GE(trials.size(), 2500 / test_share());
    std::mutex guard;
    std::map<std::string, std::array<int, 2>> counts; // done and refused, by format
    double longest = 0;
    std::size_t next = 0;
    auto const work = [&] {
        for (;;) {
            Trial trial;
            {
                std::lock_guard const lock(guard);
                if (next == trials.size()) {
                    return;
                }
                trial = trials[next++];
            }
            auto const start = std::chrono::steady_clock::now();
            Outcome const outcome = run(arguments_of(trial));
            double const seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            std::string const wrong = verdict(trial, outcome);
            if (!trial.output.empty()) {
                std::filesystem::remove(folder() / trial.output);
            }
            std::lock_guard const lock(guard);
            EXPECT_EQ(wrong, "") << trial.command << ' ' << trial.file << '\n' << outcome.err;
            EXPECT_LT(seconds, kSecondsAllowed) << trial.command << ' ' << trial.file;
            longest = std::max(longest, seconds);
            counts[trial.format][outcome.code == 0 ? 0 : 1] += 1;
        }
    };
    std::thread other(work);
    work();
    other.join();

    rusage used{};
    getrusage(RUSAGE_CHILDREN, &used); // the largest process of them all, in kilobytes
    double const megabytes = static_cast<double>(used.ru_maxrss) / 1024.0;
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(megabytes, kMegabytesAllowed);
#endif
    for (auto const& [format, count] : counts) {
        std::printf("%-9s %4d done %4d refused\n", format.c_str(), count[0], count[1]);
        EXPECT_GT(count[0], 0) << format << ": not even the unharmed file was taken";
        EXPECT_GT(count[1], 0) << format;
    }
    std::printf("%zu files, longest %.1f s, largest process %.0f MB\n", trials.size(), longest, megabytes);
    for (std::string const& name : files()) {
        EXPECT_EQ(name.find("umbrix-"), std::string::npos) << name << " was left behind";
        EXPECT_NE(name[0], '.') << name << " was left behind";
    }
}

} // namespace
} // namespace umbrixlib::test
