// SPDX-License-Identifier: MIT
/// The test's program plays its own workers.
#include "stand_in_worker.h"

#include "toolkit/files/opened_files.h"
#include "toolkit/workers/processor_share.h"
#include "toolkit/workers/service.h"
#include "toolkit/workers/worker_channel.h"
#include "toolkit/workers/worker_program.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <omp.h>
#include <sstream>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

/// The dynamic linker prefers this one to the library's.
std::filesystem::path worker_program()
{
    return "/proc/self/exe";
}

std::vector<int> own_processors()
{
    ProcessorSet set;
    sched_getaffinity(0, sizeof set, &set);
    std::vector<int> numbers;
    for (int number = 0; number < CPU_SETSIZE; ++number) {
        if (CPU_ISSET(number, &set)) {
            numbers.push_back(number);
        }
    }
    return numbers;
}

/// So many allow a stand-in to be silent for minutes.
constexpr double kTexels = 1e9;

MapJob job_to_act(std::string const& acts)
{
    MapJob job;
    job.files.input = "in";
    job.files.output.name = acts;
    job.files.max_texels = kTexels;
    return job;
}

FolderJob walk_to_act(std::string const& acts)
{
    FolderJob job;
    job.folder = acts;
    return job;
}

namespace {

/// What jobs leave in this process's memory.
struct Harm {
    std::string altered; ///< Comes before the acts in reports.
    std::string next;    ///< Acts before those of the next job.
    std::string after;   ///< Acts after the report.
};
Harm harm;

void act(WorkerChannel& channel, JobFiles const& files, std::string const& name, std::string const& word)
{
    if (name == "abort") {
        std::abort();
    } else if (name == "exit") {
        std::_Exit(std::stoi(word));
    } else if (name == "phase") {
        auto const phase = static_cast<Phase>(std::stoi(word));
        channel.begin(phase, phase == Phase::kReading || phase == Phase::kMaking ? "in" : "out");
    } else if (name == "note") {
        channel.note("in", {word, NoteKind::kPlain, word == "detail"});
    } else if (name == "stage") {
        channel.stage(word, 500);
    } else if (name == "fail") {
        throw Failure(Fault::kNotWorkedOn, "in", word);
    } else if (name == "raise") {
        raise(std::stoi(word));
    } else if (name == "rave") {
        std::string const nonsense = "{\"phase\": \"" + word + "\"}\n{]\n";
        if (write(kEventDescriptor, nonsense.data(), nonsense.size()) > 0) {
            pause();
        }
    } else if (name == "wait") {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(word)));
    } else if (name == "say") {
        if (write(STDOUT_FILENO, word.data(), word.size()) < 0) {
            std::_Exit(99);
        }
    } else if (name == "take") {
        std::vector<char> memory(static_cast<std::size_t>(std::stoi(word)) << 20U, 1);
        std::fill(memory.begin(), memory.end(), static_cast<char>(getpid()));
        channel.stage("taken", memory[memory.size() / 2]);
    } else if (name == "write") {
        std::ofstream(files.output.file) << word;
    } else if (name == "alter") {
        harm.altered = word + " ";
    } else if (name == "haunt") {
        harm.next = word;
    } else if (name == "linger") {
        harm.after = word;
    } else if (name == "deaf") {
        close(STDIN_FILENO);
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(word)));
    } else if (name == "count") {
        std::filesystem::directory_iterator const all("/proc/self/fd");
        channel.note("in", {std::to_string(std::distance(begin(all), end(all)))});
    } else if (name == "read") {
        int const file = open_file(files.input, OpenFor::kReading);
        char letters[64] = {};
        ssize_t const size = read(file, letters, sizeof letters);
        close(file);
        channel.note(
            "in", {size < 0 ? std::strerror(errno) : std::string(letters, static_cast<std::size_t>(size))});
    } else if (name == "listen") {
        while (!channel.stopping()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(word)));
        }
    }
}

std::string acts_of(MapJob const& job)
{
    if (job.files.output.file.empty()) {
        return job.files.output.name;
    }
    std::ifstream file(job.files.input);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string acts_of(FolderJob const& job)
{
    return job.folder;
}

/// False if it failed.
bool play(WorkerChannel& channel, Job const& job)
{
    auto const* const map = std::get_if<MapJob>(&job);
    std::string const acts = map != nullptr ? acts_of(*map) : acts_of(std::get<FolderJob>(job));
    try {
        std::istringstream words(acts);
        for (std::string name, word; words >> name >> word;) {
            act(channel, map != nullptr ? map->files : JobFiles(), name, word);
        }
        if (map == nullptr) {
            channel.send(FolderReport{true});
            return true;
        }
        MapReport report;
        report.reason = harm.altered + acts;
        report.difference = own_processors();
        report.width = omp_get_num_procs();
        report.height = getpid();
        close_opened_files();
        channel.send(report);
        return true;
    } catch (Failure const& failure) {
        channel.send(failure);
        return false;
    }
}

/// Acts with a dash for each space.
void act_dashed(WorkerChannel& channel, std::string dashed)
{
    std::ranges::replace(dashed, '-', ' ');
    std::istringstream words(dashed);
    for (std::string name, word; words >> name >> word;) {
        act(channel, {}, name, word);
    }
}

int play_a_worker(std::string_view service)
{
    WorkerChannel channel;
    for (bool goes_on = true; goes_on;) {
        alarm(60);
        std::optional<Job> const job = channel.read_job();
        if (!job) {
            return 0;
        }
        act_dashed(channel, std::exchange(harm.next, ""));
        goes_on = play(channel, *job) && service == name_of(Service::kManyJobs);
        act_dashed(channel, std::exchange(harm.after, ""));
    }
    return 0;
}

} // namespace

} // namespace umbrixlib::toolkit

int main(int count, char** words)
{
    if (std::string_view(words[0]) == "umbrix-worker") {
        return umbrixlib::toolkit::play_a_worker(words[3]);
    }
    testing::InitGoogleTest(&count, words);
    return RUN_ALL_TESTS();
}
