// SPDX-License-Identifier: MIT
/// The test's program plays its own workers.
#include "stand_in_worker.h"

#include "toolkit/workers/processor_share.h"
#include "toolkit/workers/worker_channel.h"
#include "toolkit/workers/worker_program.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <omp.h>
#include <sstream>
#include <string_view>
#include <thread>
#include <unistd.h>

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

void act(WorkerChannel& channel, std::string const& output, std::string const& name, std::string const& word)
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
        std::ofstream(output) << word;
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

int play_a_worker()
{
    alarm(60);
    WorkerChannel channel;
    Job const job = channel.read_job();
    auto const* const map = std::get_if<MapJob>(&job);
    std::string const acts = map != nullptr ? acts_of(*map) : acts_of(std::get<FolderJob>(job));
    try {
        std::istringstream words(acts);
        for (std::string name, word; words >> name >> word;) {
            act(channel, map != nullptr ? map->files.output.file : "", name, word);
        }
        if (map == nullptr) {
            channel.send(FolderReport{true});
            return 0;
        }
        MapReport report;
        report.reason = acts;
        report.difference = own_processors();
        report.width = omp_get_num_procs();
        channel.send(report);
    } catch (Failure const& failure) {
        channel.send(failure);
    }
    return 0;
}

} // namespace

} // namespace umbrixlib::toolkit

int main(int count, char** words)
{
    if (std::string_view(words[0]) == "umbrix-worker") {
        return umbrixlib::toolkit::play_a_worker();
    }
    testing::InitGoogleTest(&count, words);
    return RUN_ALL_TESTS();
}
