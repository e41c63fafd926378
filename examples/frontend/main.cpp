// SPDX-License-Identifier: MIT
// The toolkit in a front end: the maps of all pictures of a folder, made in processes of their own, with
// progress, and an end at Ctrl-C.
//   frontend FOLDER [PRESET]    as in: frontend textures stone
#include <csignal>
#include <cstdio>
#include <toolkit/base/failure.h>
#include <toolkit/batch/batch_run.h>
#include <toolkit/settings/preset.h>
#include <toolkit/workers/processor_share.h>

using namespace umbrixlib::toolkit;

static StopSource& stop_source()
{
    static StopSource source;
    return source;
}

static void ask_to_stop(int) // once: files at work are finished; twice: they are stopped
{
    stop_source().request();
}

/// Tells what happens in lines; a window would fill its table and its bar here.
class Lines : public BatchObserver {
    void begin(BatchFile const& file, BatchProgress const& progress) override
    {
        std::printf("%zu of %zu: %s\n", progress.number, progress.count, file.source.c_str());
    }

    void note(BatchFile const&, std::string const& name, Note const& note) override
    {
        std::printf("  note on %s: %s\n", name.c_str(), note.text.c_str());
    }

    void end(BatchResult const& result) override
    {
        char const* const names[] = {"skipped", "made", "stopped", "failed"};
        std::string const why = result.failure ? result.failure->what() : result.reason;
        std::printf("  %s: %s %s\n", names[static_cast<int>(result.state)], result.file.source.c_str(),
                    why.c_str());
    }

    void stopping(std::size_t running) override { std::printf("finishing %zu files\n", running); }
};

static int make_maps(char const* folder, char const* preset)
{
    BatchChoice choice;
    choice.search.places = {folder};
    choice.suffix = "_Umbrix";
    Settings const settings = preset != nullptr ? read_preset(preset).settings : kDefaults;
    MapJob const map{{}, settings, settings.kind, settings.normal_y};
    BatchOrders orders;
    orders.workers = default_workers();
    orders.job_for = [&](BatchFile const&) { return map; };
    Lines lines;
    BatchSummary const summary = run_batch(plan_batch(choice), orders, lines, stop_source());
    std::printf("%zu made, %zu skipped, %zu failed, %zu left\n", summary.done, summary.skipped,
                summary.failed, summary.left);
    return summary.stopped ? 130 : summary.failed > 0 ? 1 : 0;
}

int main(int count, char** words)
{
    if (count != 2 && count != 3) {
        return std::fputs("usage: frontend FOLDER [PRESET]\n", stderr), 2;
    }
    stop_source();
    std::signal(SIGINT, ask_to_stop);
    try {
        return make_maps(words[1], count == 3 ? words[2] : nullptr);
    } catch (Failure const& failure) {
        return std::fprintf(stderr, "%s: %s\n", failure.subject.c_str(), failure.what()), 1;
    }
}
