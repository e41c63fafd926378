// SPDX-License-Identifier: MIT
/// A disk that is full, or fails, at every single place where a command puts something on it.
#include "batch_folder.h"
#include "fault_injection.h"
#include "test_share.h"

#include <cstring>
#include <sched.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

Arguments const kSmallMap{"--rays", "4", "--radius", "0.1", "--overwrite"};
Bytes const kOld{'o', 'l', 'd'};

/// The pictures are tiny: threads would only wait for each other.
void use_one_processor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof one, &one);
}

class FullDisk : public BatchTest {
protected:
    FullDisk()
    {
        write("hill.tga", hill(16));
        for (std::string const file : {"a", "b"}) {
            put("in/" + file + ".tga", hill(16));
        }
        put_text("stack.toml", "[[layer]]\nfile = \"hill.tga\"\n[[layer]]\nfile = \"in/a.tga\"\n");
        EXPECT_EQ(run({"normal", "hill.tga", "-o", "normal.png"}).code, 0);
        EXPECT_EQ(run({"list", "add", "jobs.ulist", "in/a.tga", "--rays", "4"}).code, 0);
        EXPECT_EQ(run({"list", "add", "jobs.ulist", "in/b.tga", "--rays", "4"}).code, 0);
        EXPECT_EQ(run({"list", "export", "jobs.ulist", "-o", "jobs.toml"}).code, 0);
    }

    static Arguments with(Arguments arguments, Arguments const& more)
    {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    /// The log of a list grows, and is no output.
    std::map<std::string, Bytes> all() const
    {
        auto files = contents(folder());
        std::erase_if(files, [](auto const& file) { return file.first.ends_with(".log"); });
        return files;
    }

    void restore(std::map<std::string, Bytes> const& files) const
    {
        fs::remove_all(folder());
        fs::create_directory(folder());
        for (auto const& [name, bytes] : files) {
            put(name, bytes);
        }
    }

    /// What is wrong with how the tool ended; empty if nothing is. Of @p several outputs, each is old or new.
    std::string verdict(Outcome const& outcome, std::map<std::string, Bytes> const& before,
                        std::map<std::string, Bytes> const& after, bool several) const
    {
        if (!fs::is_empty(scratch())) {
            return "something is left among the temporary files of the system";
        }
        std::map<std::string, Bytes> const now = all();
        for (auto const& [name, bytes] : now) {
            bool const is_old = before.contains(name) && before.at(name) == bytes;
            bool const is_new = after.contains(name) && after.at(name) == bytes;
            if (!is_old && !is_new) {
                return name + " is neither the old nor the new file";
            }
        }
        for (auto const& [name, bytes] : before) {
            if (!now.contains(name)) {
                return name + " is gone";
            }
        }
        if (outcome.code == 0) {
            return now == after ? "" : "done, with something missing";
        }
        if (outcome.code != 1) {
            return "exit code " + std::to_string(outcome.code);
        }
        if (!several && now != before) {
            return "failed, and changed something";
        }
        std::set<std::string> names{"jobs.ulist.log"};
        for (auto const& [name, bytes] : after) {
            names.insert(name);
        }
        return sentence_is_clear(outcome, names) ? "" : "failed without one clear sentence";
    }

    /// One sentence, with the name of a file, and it blames neither the decoder nor the program.
    bool sentence_is_clear(Outcome const& outcome, std::set<std::string> const& names) const
    {
        constexpr char const* kError = ": error: ";
        std::size_t const at = outcome.err.find(kError);
        bool const one = at != std::string::npos && outcome.err.find(kError, at + 1) == std::string::npos &&
                         outcome.err.find('\n', at) == outcome.err.size() - 1 &&
                         outcome.err.find("; ", at) != std::string::npos;
        std::string const said = outcome.err.substr(at == std::string::npos ? 0 : at) + outcome.out;
        bool names_file = false;
        for (std::string const& name : names) {
            names_file = names_file || said.find(name) != std::string::npos;
        }
        return one && names_file && said.find("broke down") == std::string::npos &&
               said.find("should not happen") == std::string::npos;
    }

    /// Runs the command once for each of the calls that can fail. @p output: an old file that it replaces.
    void expect_to_survive(Arguments const& arguments, std::string const& output = "")
    {
        std::string const name = arguments[0] + " " + arguments[1] + " " + output;
        SCOPED_TRACE(name);
        bool const several = arguments[0] == "stack" || arguments[0] == "batch" || arguments[1] == "run";
        std::map<std::string, Bytes> before = all();
        if (!output.empty()) {
            before[output] = kOld;
        }
        restore(before);
        ASSERT_EQ(run(arguments).code, 0);
        std::map<std::string, Bytes> const after = all();
        std::size_t refused = 0;
        for (Fault const kind : {Fault{0, true, ENOSPC}, Fault{0, false, EIO}}) {
            bool reached = true;
            for (std::size_t first = kinds_++ % test_share(); reached; first += test_share()) {
                restore(before);
                FaultInjection injection(folder().parent_path(), {first, kind.lasts, kind.error});
                RunningTool tool(folder(), arguments, with_scratch(), [&] {
                    use_one_processor();
                    injection.watch().install();
                });
                injection.watch().start();
                Outcome const outcome = tool.finish();
                injection.watch().stop();
                EXPECT_EQ(verdict(outcome, before, after, several), "")
                    << "call " << first << ", " << strerror(kind.error) << "\ncode " << outcome.code << '\n'
                    << outcome.err << outcome.out;
                refused += outcome.code == 0 ? 0 : 1;
                reached = injection.calls() > first; // else the run had no such call, and no fault
                EXPECT_TRUE(reached || outcome.code == 0);
                ++runs_;
            }
        }
        EXPECT_GT(refused, 2 / test_share());
        std::printf("%-28s %3zu of %3zu runs refused\n", name.c_str(), refused, std::exchange(runs_, 0));
        restore(before);
        if (!output.empty()) {
            fs::remove(folder() / output);
        }
    }

private:
    std::size_t runs_ = 0;
    std::size_t kinds_ = 0; ///< Of faults, so that each share has other calls.
};

TEST_F(FullDisk, LeavesTheOldMapInEachFormat)
{
    for (std::string const format :
         {"png", "tga", "tif", "tiff", "bmp", "psd", "sgi", "rgb",  "rgba", "bw",
          "pcx", "ppm", "pgm", "pbm",  "vtf", "jpg", "jpe", "jpeg", "dds",  "hdr"}) {
        expect_to_survive(with({"map", "hill.tga", "-o", "out." + format}, kSmallMap), "out." + format);
    }
}

TEST_F(FullDisk, LeavesTheOldPicturesOfTheOtherCommands)
{
    expect_to_survive({"normal", "hill.tga", "-o", "out.png", "--overwrite"}, "out.png");
    expect_to_survive({"relight", "normal.png", "-o", "out.png", "--overwrite", "--force"}, "out.png");
    put("height.png", kOld);
    put("map.png", kOld);
    expect_to_survive(with({"stack", "stack.toml", "-o", "out.png", "--height", "height.png"}, kSmallMap),
                      "out.png");
    expect_to_survive(with({"stack", "stack.toml", "-o", "out.png", "--map", "map.png"}, kSmallMap),
                      "out.png");
}

TEST_F(FullDisk, EndsABatchWithWholeFilesOnly)
{
    expect_to_survive(with({"batch", "in", "--jobs", "1"}, kSmallMap), "in/a_Umbrix.tga");
    expect_to_survive(with({"batch", "in", "--jobs", "1", "--keep-tree", "out."}, kSmallMap));
    expect_to_survive({"list", "run", "jobs.ulist", "--jobs", "1", "--overwrite"}, "in/a_Umbrix.tga");
}

TEST_F(FullDisk, LeavesTheOldListsAndTexts)
{
    expect_to_survive({"list", "add", "jobs.ulist", "hill.tga"});
    expect_to_survive({"list", "add", "new.ulist", "hill.tga"});
    expect_to_survive({"list", "set", "jobs.ulist", "1", "--rays", "9"});
    expect_to_survive({"list", "remove", "jobs.ulist", "1"});
    expect_to_survive({"list", "export", "jobs.ulist", "-o", "out.toml", "--overwrite"}, "out.toml");
    expect_to_survive({"list", "import", "jobs.toml", "-o", "out.ulist", "--overwrite"}, "out.ulist");
    expect_to_survive({"preset", "save", "out.toml", "--relief", "0.2", "--overwrite"}, "out.toml");
    expect_to_survive({"fit", "hill.tga", "normal.png", "--save-preset", "out.toml", "--overwrite"},
                      "out.toml");
    expect_to_survive({"stack", "--new", "out.toml", "--overwrite"}, "out.toml");
}

TEST_F(FullDisk, IsToldOfWhatIsPrinted)
{
    for (Arguments const& arguments :
         {Arguments{"list", "export", "jobs.ulist"}, Arguments{"list", "show", "jobs.ulist"},
          Arguments{"map", "hill.tga", "--rays", "4"}, Arguments{"completion", "bash"}}) {
        Outcome const outcome =
            run(arguments, {}, [] { dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); });
        EXPECT_EQ(outcome.code, 1) << arguments[0];
        EXPECT_NE(outcome.err.find(": error: standard output: it did not take all of the results; "),
                  std::string::npos)
            << outcome.err;
    }
    EXPECT_GT(tga("hill_Umbrix.tga").width, 0);
}

TEST_F(FullDisk, IsNotMindedWhereOnlyNotesGo)
{
    Outcome const outcome = run(with({"map", "hill.tga", "-o", "out.jpg"}, kSmallMap), {},
                                [] { dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDERR_FILENO); });
    EXPECT_EQ(outcome.code, 0) << outcome.out;
    EXPECT_GT(read("out.jpg").size(), 100U);
}

} // namespace
} // namespace umbrixlib::test
