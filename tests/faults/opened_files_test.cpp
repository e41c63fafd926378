// SPDX-License-Identifier: MIT
/// A command opens nothing for writing but what it is asked for.
#include "batch_folder.h"
#include "system_call_watch.h"

#include <mutex>
#include <optional>
#include <sys/mman.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

/// A text in the memory of a process.
std::string text_of(std::uint32_t process, std::uint64_t address)
{
    std::ifstream memory(process_file(process, "mem"), std::ios::binary);
    memory.seekg(static_cast<std::streamoff>(address));
    std::string text;
    std::getline(memory, text, '\0');
    return text;
}

class OpenedFiles : public BatchTest {
protected:
    OpenedFiles()
    {
        write("hill.tga", hill(24));
        write("deep.png", png_bytes(16, PngColour::kGrey, 16, std::vector<Bytes>(16, Bytes(32, 7))));
        put_text("stack.toml", "[[layer]]\nfile = \"hill.tga\"\n[[layer]]\nfile = \"deep.png\"\n");
    }

    /// What @p arguments open for writing, how often, by name, where "temporary" is any of the hidden ones
    /// that become outputs. Folders and memory under a name of a file are written down, too.
    std::map<std::string, int> opened_by(Arguments const& arguments)
    {
        std::map<std::string, int> opened;
        SystemCallWatch watch({SYS_open, SYS_openat, SYS_creat, SYS_memfd_create, SYS_mkdir, SYS_mkdirat},
                              [&](seccomp_notif const& asked) {
                                  if (auto const name = written(asked)) {
                                      ++opened[*name];
                                  }
                                  return 0;
                              });
        RunningTool tool(folder(), arguments, with_scratch(), [&] { watch.install(); });
        watch.start();
        Outcome const outcome = tool.finish();
        watch.stop();
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return opened;
    }

private:
    /// The name of what is opened for writing, or made; none if it is only read.
    static std::optional<std::string> written(seccomp_notif const& asked)
    {
        auto const& values = asked.data.args;
        switch (asked.data.nr) {
        case SYS_memfd_create:
            return "memory";
        case SYS_mkdir:
        case SYS_creat:
            return name_of(asked, values[0]);
        case SYS_mkdirat:
            return name_of(asked, values[1]);
        default:
            break;
        }
        bool const is_at = asked.data.nr == SYS_openat;
        auto const flags = static_cast<int>(values[is_at ? 2 : 1]);
        if ((flags & O_ACCMODE) == O_RDONLY && (flags & O_CREAT) == 0) {
            return std::nullopt;
        }
        std::string const name = name_of(asked, values[is_at ? 1 : 0]);
        if (name.starts_with("/dev/shm/__KMP_REGISTERED_LIB_")) {
            return std::nullopt; // clang's OpenMP looks whether the process has another one
        }
        if (name == "clear_refs") {
            return std::nullopt; // no file: the largest memory of a worker counts anew for its next job
        }
        // Whoever removes leftovers asks each temporary for its lock, and leaves the bytes alone.
        bool const keeps_bytes = (flags & (O_CREAT | O_TRUNC)) == 0;
        return name == "temporary" && keeps_bytes ? "lock of a temporary" : name;
    }

    static std::string name_of(seccomp_notif const& asked, std::uint64_t address)
    {
        std::string const path = text_of(asked.pid, address);
        std::string const name = fs::path(path).filename();
        return path.starts_with("/dev/") ? path : name.starts_with(".umbrix-") ? "temporary" : name;
    }
};

using Opened = std::map<std::string, int>;

/// Made by the command, filled by the encoder.
constexpr int kMadeAndFilled = 2;

TEST_F(OpenedFiles, AreTheOutputOfASinglePicture)
{
    for (std::string const source : {"hill.tga", "deep.png"}) {
        for (std::string const output : {"out.png", "out.tga"}) {
            EXPECT_EQ(opened_by({"map", source, "-o", output, "--overwrite", "--rays", "4"}),
                      (Opened{{"temporary", kMadeAndFilled}}));
            EXPECT_EQ(opened_by({"normal", source, "-o", output, "--overwrite"}),
                      (Opened{{"temporary", kMadeAndFilled}}));
            EXPECT_EQ(opened_by({"relight", source, "-o", output, "--overwrite"}),
                      (Opened{{"temporary", kMadeAndFilled}}));
        }
    }
    EXPECT_EQ(opened_by({"info", "hill.tga"}), Opened{});
    EXPECT_EQ(opened_by({"fit", "hill.tga", "hill.tga"}), Opened{});
}

TEST_F(OpenedFiles, AreTheThreeOutputsOfAStack)
{
    for (char const* const how : {"--tile", "--map-from-layers"}) {
        EXPECT_EQ(opened_by({"stack", "stack.toml", "-o", "n.png", "--height", "h.tga", "--map", "m.tga",
                             "--overwrite", "--rays", "4", how}),
                  (Opened{{"temporary", 3 * kMadeAndFilled}, {"lock of a temporary", 1 + 2}}));
    }
}

TEST_F(OpenedFiles, AreTheOutputsOfAListAndItsLog)
{
    for (char const* const source : {"hill.tga", "deep.png"}) {
        ASSERT_EQ(run({"list", "add", "jobs.ulist", source, "--rays", "4"}).code, 0);
    }
    Opened opened = opened_by({"list", "run", "jobs.ulist", "--jobs", "1"});
    EXPECT_EQ(opened["temporary"], 2 * kMadeAndFilled);
    opened.erase("temporary");
    opened.erase("jobs.ulist.log");
    EXPECT_EQ(opened, Opened{});
}

} // namespace
} // namespace umbrixlib::test
