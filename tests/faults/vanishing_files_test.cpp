// SPDX-License-Identifier: MIT
/// Folders that take nothing or go away, and sources that change while they are read.
#include "batch_folder.h"

#include <atomic>
#include <random>
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
    for (std::string const& nowhere :
         {(folder() / "hill.tga").string(), std::string("/proc"), std::string("/gone")}) {
        Outcome const outcome = RunningTool(folder(), {"map", "hill.tga"}, {{"TMPDIR", nowhere}}).finish();
        expect_one_sentence(outcome, nowhere == "/proc" ? "/proc" : "TMPDIR");
    }
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
    for (std::string const gone : {"in", "out", "scratch"}) {
        SCOPED_TRACE(gone);
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(48));
        }
        Arguments const batch{"batch", "in", "--keep-tree", "out", "--rays", "200", "--jobs", "2", "--json"};
        fs::path const temporary = folder() / "scratch";
        fs::create_directories(temporary);
        Environment const environment{{"TMPDIR", temporary.string()}};
        EXPECT_EQ(RunningTool(folder(), batch, environment).finish().code, 0);
        Bytes const whole = read("out/0_Umbrix.tga");
        for (auto const delay : {20ms, 60ms, 120ms}) {
            fs::remove_all(folder() / "out");
            for (int i = 0; i < kFiles; ++i) {
                put("in/" + std::to_string(i) + ".tga", hill(48));
            }
            fs::create_directories(temporary);
            RunningTool tool(folder(), batch, environment);
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
        fs::create_directories(temporary);
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(48));
        }
        EXPECT_EQ(RunningTool(folder(), batch, environment).finish().code, 0);
        EXPECT_EQ(contents(folder() / "out").size(), static_cast<std::size_t>(kFiles));
        EXPECT_TRUE(fs::is_empty(temporary));
        fs::remove_all(folder() / "out");
    }
}

/// Does something to a file all the time.
class Meddler {
public:
    template <typename Body>
    explicit Meddler(Body body)
        : thread_([this, body] {
              while (!ended_) {
                  body();
              }
          })
    {
    }
    ~Meddler()
    {
        ended_ = true;
        thread_.join();
    }
    Meddler(Meddler const&) = delete;
    Meddler& operator=(Meddler const&) = delete;

private:
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

class ChangingSource : public VanishingFiles {
protected:
    static constexpr int kRounds = 40;

    /// The map of @p source as it lies there; nothing if it is refused.
    Bytes map_of(std::string const& source) const
    {
        std::error_code ignored;
        fs::remove(folder() / "out.tga", ignored);
        Outcome const outcome = run({"map", source, "-o", "out.tga", "--rays", "1", "--height-map"});
        if (outcome.code != 0) {
            expect_one_sentence(outcome, source);
            EXPECT_FALSE(fs::exists(folder() / "out.tga"));
            return {};
        }
        return read("out.tga");
    }

    /// Maps of a source that changes meanwhile are those of one of the @p states.
    void expect_one_of(std::string const& source, std::vector<Bytes> const& states) const
    {
        std::size_t refused = 0;
        std::vector<std::size_t> counts(states.size());
        for (int round = 0; round < kRounds; ++round) {
            Bytes const map = map_of(source);
            auto const found = std::find(states.begin(), states.end(), map);
            EXPECT_TRUE(map.empty() || found != states.end()) << "a map of something between";
            refused += map.empty() ? 1 : 0;
            if (!map.empty() && found != states.end()) {
                counts[static_cast<std::size_t>(found - states.begin())] += 1;
            }
        }
        std::printf("%s: %zu and %zu maps, %zu refused\n", source.c_str(), counts[0], counts[1], refused);
    }
};

TEST_F(ChangingSource, ThatIsReplacedIsTheOldOrTheNewOne)
{
    for (std::string const extension : {"tga", "png"}) {
        write("hill.tga", hill(300));
        EXPECT_EQ(run({"normal", "hill.tga", "-o", "one." + extension}).code, 0);
        EXPECT_EQ(run({"relight", "hill.tga", "-o", "two." + extension}).code, 0);
        std::string const source = "source." + extension;
        Bytes const one = read("one." + extension);
        Bytes const two = read("two." + extension);
        ASSERT_NE(one, two);
        std::vector<Bytes> const states{map_of("one." + extension), map_of("two." + extension)};
        write(source, one);
        int turn = 0;
        Meddler const meddler([&] {
            write("next", ++turn % 2 == 0 ? one : two);
            fs::rename(folder() / "next", folder() / source);
            std::this_thread::sleep_for(std::chrono::microseconds(turn * 37 % 3000));
        });
        expect_one_of(source, states);
    }
}

TEST_F(ChangingSource, ThatIsCutOffIsWholeOrCutOff)
{
    write("hill.tga", hill(300));
    for (std::string const extension : {"tga", "png"}) {
        EXPECT_EQ(run({"normal", "hill.tga", "-o", "one." + extension}).code, 0);
        std::string const source = "source." + extension;
        Bytes const whole = read("one." + extension);
        Bytes const half(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
        write(source, half);
        Bytes const map_of_half = map_of(source);
        write(source, whole);
        std::vector<Bytes> const states{map_of(source), map_of_half};
        int turn = 0;
        int const file = open((folder() / source).c_str(), O_RDWR | O_CLOEXEC);
        {
            Meddler const meddler([&] {
                EXPECT_EQ(ftruncate(file, static_cast<off_t>(half.size())), 0);
                std::this_thread::sleep_for(std::chrono::microseconds(++turn * 37 % 3000));
                EXPECT_EQ(pwrite(file, whole.data() + half.size(), whole.size() - half.size(),
                                 static_cast<off_t>(half.size())),
                          static_cast<ssize_t>(whole.size() - half.size()));
                std::this_thread::sleep_for(std::chrono::microseconds(turn * 41 % 3000));
            });
            expect_one_of(source, states);
        }
        close(file);
    }
}

} // namespace
} // namespace umbrixlib::test
