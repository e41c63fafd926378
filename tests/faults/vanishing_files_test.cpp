// SPDX-License-Identifier: MIT
/// Folders that take nothing or go away, and sources that change while they are read.
#include "batch_folder.h"
#include "system_call_watch.h"

#include <fstream>
#include <functional>
#include <limits>
#include <thread>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class VanishingFiles : public BatchTest {
protected:
    static void expect_one_sentence(Outcome const& outcome, std::string const& about)
    {
        EXPECT_EQ(outcome.code, 1) << about;
        std::size_t const at = outcome.err.find(": error: ");
        ASSERT_NE(at, std::string::npos) << about;
        EXPECT_EQ(outcome.err.find('\n', at), outcome.err.size() - 1) << outcome.err;
        EXPECT_NE(outcome.err.find("; ", at), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find("should not happen"), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find("broke down"), std::string::npos) << outcome.err;
        EXPECT_NE((outcome.err.substr(at) + outcome.out).find(about), std::string::npos)
            << outcome.err << outcome.out;
    }
};

/// Permissions do not bind the superuser; nobody can put a file into these.
TEST_F(VanishingFiles, AFolderThatTakesNothingIsNamed)
{
    write("hill.tga", hill(16));
    EXPECT_EQ(run({"normal", "hill.tga", "-o", "normal.png"}).code, 0);
    EXPECT_EQ(run({"list", "add", "jobs.ulist", "hill.tga"}).code, 0);
    put_text("stack.toml", "[[layer]]\nfile = \"hill.tga\"\n");
    auto const before = tree();
    for (std::string const nowhere : {"hill.tga/", "gone/", "/proc/"}) {
        expect_one_sentence(run({"map", "hill.tga", "-o", nowhere + "a.png"}), nowhere);
        expect_one_sentence(run({"normal", "hill.tga", "-o", nowhere + "a.png"}), nowhere);
        expect_one_sentence(run({"stack", "stack.toml", "-o", nowhere + "a.png"}), nowhere);
        expect_one_sentence(run({"relight", "normal.png", "-o", nowhere + "a.png"}), nowhere);
        expect_one_sentence(run({"preset", "save", nowhere + "a.toml"}), nowhere);
        expect_one_sentence(run({"list", "add", nowhere + "a.ulist", "hill.tga"}), nowhere);
        expect_one_sentence(run({"list", "export", "jobs.ulist", "-o", nowhere + "a.toml"}), nowhere);
    }
    expect_one_sentence(run({"batch", "hill.tga", "--keep-tree", "normal.png/tree"}), "normal.png/tree");
    expect_one_sentence(run({"batch", "hill.tga", "--keep-tree", "/proc/tree"}), "/proc/tree");
    EXPECT_EQ(tree(), before);
}

TEST_F(VanishingFiles, TheCurrentFolderMayBeGone)
{
    write("hill.tga", hill(16));
    std::string const source = (folder() / "hill.tga").string();
    for (Arguments const& arguments :
         {Arguments{"map", "hill.tga"}, Arguments{"map", source, "-o", "out.png"}, Arguments{"batch", "."},
          Arguments{"list", "add", "jobs.ulist", source}, Arguments{"preset", "save", "a.toml"},
          Arguments{"stack", "--new", "a.toml"}}) {
        fs::create_directory(folder() / "gone");
        Outcome const outcome = run(arguments, {}, [&] {
            if (chdir("gone") != 0 || rmdir("../gone") != 0) {
                _exit(124);
            }
        });
        expect_one_sentence(outcome, "");
    }
    EXPECT_EQ(files(), std::set<std::string>{"hill.tga"});
}

TEST_F(VanishingFiles, AFolderMayGoWhileABatchIsAtWork)
{
    constexpr int kFiles = 8;
    for (std::string const gone : {"in", "out"}) {
        SCOPED_TRACE(gone);
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(48));
        }
        Arguments const batch{"batch", "in", "--keep-tree", "out", "--rays", "200", "--jobs", "2", "--json"};
        EXPECT_EQ(run(batch).code, 0);
        Bytes const whole = read("out/0_Umbrix.tga");
        for (auto const delay : {20ms, 60ms, 120ms}) {
            fs::remove_all(folder() / "out");
            for (int i = 0; i < kFiles; ++i) {
                put("in/" + std::to_string(i) + ".tga", hill(48));
            }
            RunningTool tool(folder(), batch, with_scratch());
            while (!fs::exists(folder() / "out")) {
                std::this_thread::sleep_for(1ms);
            }
            std::this_thread::sleep_for(delay);
            std::error_code ignored; // a file may be put there meanwhile
            fs::remove_all(folder() / gone, ignored);
            Outcome const outcome = tool.finish();
            auto const all = objects(outcome);
            int const failed = all.at("").at("failed").get<int>();
            EXPECT_EQ(outcome.code, failed == 0 ? 0 : 1);
            EXPECT_EQ(all.at("").at("done").get<int>() + failed, kFiles);
            if (failed > 0) {
                expect_one_sentence(outcome, "");
                EXPECT_EQ(outcome.out.find("broke down"), std::string::npos) << outcome.out;
            }
            if (fs::exists(folder() / "out")) {
                for (auto const& [name, bytes] : contents(folder() / "out")) {
                    EXPECT_EQ(bytes, whole) << name;
                }
            }
        }
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(48));
        }
        EXPECT_EQ(run(batch).code, 0);
        EXPECT_EQ(contents(folder() / "out").size(), static_cast<std::size_t>(kFiles));
        EXPECT_TRUE(fs::is_empty(scratch()));
        fs::remove_all(folder() / "out");
    }
}

/// Something that happens to a source, by its path.
struct Change {
    char const* name;
    void (*happen)(fs::path const& source, Bytes const& other);
};

Change const kChanges[]{
    {"cut off",
     [](fs::path const& source, Bytes const&) { fs::resize_file(source, fs::file_size(source) / 2); }},
    {"written over",
     [](fs::path const& source, Bytes const& other) {
         std::fstream(source, std::ios::binary | std::ios::in | std::ios::out)
             .write(reinterpret_cast<char const*>(other.data()), static_cast<std::streamsize>(other.size()));
     }},
    {"replaced",
     [](fs::path const& source, Bytes const& other) {
         write_file(source.string() + ".next", other);
         fs::rename(source.string() + ".next", source);
     }},
};

/// A source that changes right before one of the reads of it.
class ChangingSource : public VanishingFiles {
protected:
    static constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

    struct Run {
        Bytes map; ///< Empty if the source was refused.
        std::size_t reads;
    };

    /// Makes the map of @p source, to which @p change happens before read number @p moment.
    Run make_map(fs::path const& source, std::size_t moment, std::function<void()> const& change) const
    {
        fs::remove(folder() / "out.tga");
        std::size_t reads = 0;
        SystemCallWatch watch({SYS_read}, [&](seccomp_notif const& asked) {
            if (file_behind(asked.pid, asked.data.args[0]) == source && reads++ == moment) {
                change();
            }
            return 0;
        });
        RunningTool tool(folder(), {"map", source.filename(), "-o", "out.tga", "--rays", "1", "--height-map"},
                         with_scratch(), [&] { watch.install(); });
        watch.start();
        Outcome const outcome = tool.finish();
        watch.stop();
        if (outcome.code == 0) {
            return {read("out.tga"), reads};
        }
        expect_one_sentence(outcome, source.filename());
        EXPECT_FALSE(fs::exists(folder() / "out.tga"));
        return {{}, reads};
    }

    /// Sources are an hour old: the times of two changes within one tick of the clock can be the same.
    static void put_source(fs::path const& source, Bytes const& bytes)
    {
        write_file(source, bytes);
        fs::last_write_time(source, fs::file_time_type::clock::now() - 1h);
    }
};

TEST_F(ChangingSource, IsRefusedOrReadAsItIsAfterwards)
{
    write("hill.tga", hill(120));
    for (std::string const extension : {"tga", "png"}) {
        EXPECT_EQ(run({"normal", "hill.tga", "-o", "one." + extension}).code, 0);
        EXPECT_EQ(run({"relight", "hill.tga", "-o", "two." + extension}).code, 0);
        Bytes const one = read("one." + extension);
        Bytes const two = read("two." + extension);
        fs::path const source = fs::canonical(folder()) / ("source." + extension);
        for (Change const& change : kChanges) {
            SCOPED_TRACE(extension + " " + change.name);
            put_source(source, one);
            Run const before = make_map(source, kNever, {});
            EXPECT_FALSE(before.map.empty());
            change.happen(source, two);
            Run const after = make_map(source, kNever, {});
            EXPECT_NE(before.map, after.map);
            std::size_t refused = 0;
            for (std::size_t moment = 0; moment < before.reads; ++moment) {
                put_source(source, one);
                Run const run = make_map(source, moment, [&] { change.happen(source, two); });
                EXPECT_TRUE(run.map.empty() || run.map == after.map) << "changed before read " << moment;
                refused += run.map.empty() ? 1 : 0;
            }
            EXPECT_GT(refused, 0U);
            std::printf("%s, %s before each of %zu reads: refused %zu times\n", extension.c_str(),
                        change.name, before.reads, refused);
        }
    }
}

} // namespace
} // namespace umbrixlib::test
