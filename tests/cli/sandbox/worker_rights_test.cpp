// SPDX-License-Identifier: MIT
/// What the kernel tells of the workers of each command.
#include "cli/sandbox/traced_tool.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <regex>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace umbrixlib::test {
namespace {

class WorkerRights : public ToolTest {
protected:
    WorkerRights()
    {
        write("hill.tga", hill(24));
        std::filesystem::create_directory(folder() / "in");
        write("in/a.tga", hill(24));
        write("in/b.tga", hill(24));
        std::ofstream(folder() / "stack.toml") << "[[layer]]\nfile = \"hill.tga\"\n";
        run({"normal", "hill.tga", "-o", "hill_n.tga"});
        run({"list", "add", "jobs.ulist", "hill.tga", "--rays", "4"});
    }

    /// The tool has a graphics device, and no variables but these.
    TracedRun traced(Arguments const& arguments, std::vector<std::string> environment = {}) const
    {
        environment.emplace_back("LD_PRELOAD=" UMBRIX_GRAPHICS_STAND_IN);
        environment.emplace_back("OCL_STAND_IN_DEVICES=Card A=opencl");
        return TracedTool(folder(), arguments, environment).finish();
    }

    static std::set<std::string> names(TracedRun const& run)
    {
        std::set<std::string> all;
        for (SeenWorker const& worker : run.workers) {
            all.insert(worker.name);
        }
        return all;
    }

    /// The test may run in a container that has filters of its own.
    std::map<std::string, std::string> const own_ = status_of("/proc/self");

    Arguments const map_{"map", "hill.tga", "-o", "o.tga", "--overwrite", "--rays", "4"};
    Arguments const map_on_device_{"map", "hill.tga", "-o", "o.tga", "--overwrite", "--gpu"};
};

/// A command as the page names it, and what runs it here.
struct Command {
    std::string name;
    Arguments arguments;
};

std::vector<Command> const& commands()
{
    static std::vector<Command> const all{
        {"map", {"map", "hill.tga", "-o", "o.tga", "--overwrite"}},
        {"normal", {"normal", "hill.tga", "-o", "o.tga", "--overwrite"}},
        {"height", {"height", "hill_n.tga", "-o", "o.tga", "--overwrite", "--height-range", "auto"}},
        {"curvature", {"curvature", "hill.tga", "-o", "o.tga", "--overwrite"}},
        {"bent", {"bent", "hill.tga", "-o", "o.tga", "--occlusion", "a.tga", "--overwrite"}},
        {"horizon", {"horizon", "hill.tga", "-o", "o.tga", "--later", "a.tga", "--overwrite"}},
        {"relight", {"relight", "hill.tga", "-o", "o.tga", "--overwrite"}},
        {"view", {"view", "hill.tga", "-o", "o.html", "--overwrite"}},
        {"convert", {"convert", "hill.tga", "-o", "o.png", "--overwrite"}},
        {"export", {"export", "hill.tga", "-o", "o.dds", "--overwrite"}},
        {"pack", {"pack", "R=hill.tga", "G=hill_n.tga", "-o", "o.png", "--overwrite"}},
        {"info", {"info", "hill.tga"}},
        {"check", {"check", "hill.tga"}},
        {"fit", {"fit", "hill.tga", "hill_n.tga"}},
        {"stack", {"stack", "stack.toml", "-o", "o.tga", "--map", "m.tga", "--overwrite"}},
        {"batch", {"batch", "in", "--keep-tree", "out", "--overwrite"}},
        {"list run", {"list", "run", "jobs.ulist", "--overwrite"}},
        {"batch --plain", {"batch", "--plain", "in", "--height-map", "--n-scale", "2", "--pattern", "*.tga"}},
        {"devices", {"devices"}},
        {"map --gpu", {"map", "hill.tga", "-o", "o.tga", "--overwrite", "--gpu"}},
        {"stack --gpu", {"stack", "stack.toml", "-o", "o.tga", "--map", "m.tga", "--overwrite", "--gpu"}},
        {"batch --gpu", {"batch", "in", "--keep-tree", "gpu", "--gpu"}},
    };
    return all;
}

/// Name of the rights of each command, in the table of the page.
std::map<std::string, std::string> rights_on_page()
{
    std::map<std::string, std::string> rights;
    std::regex const row(R"(\| `([a-z -]+)` \| (decoding|folder|graphics) \|)");
    std::ifstream page(UMBRIX_SECURITY_PAGE);
    for (std::string line; std::getline(page, line);) {
        if (std::smatch parts; std::regex_match(line, parts, row)) {
            rights[parts[1]] = parts[2];
        }
    }
    return rights;
}

TEST_F(WorkerRights, AreThoseThatThePageTells)
{
    auto const page = rights_on_page();
    EXPECT_EQ(page.size(), commands().size());
    for (Command const& command : commands()) {
        SCOPED_TRACE(command.name);
        TracedRun const run = traced(command.arguments);
        EXPECT_EQ(names(run), std::set<std::string>{"umbrix-" + page.at(command.name)});
        EXPECT_EQ(run.code, 0);
        EXPECT_FALSE(run.workers.empty());
        for (SeenWorker const& worker : run.workers) {
            EXPECT_EQ(worker.status.at("Seccomp"), "2");
            EXPECT_EQ(std::stoi(worker.status.at("Seccomp_filters")),
                      std::stoi(own_.at("Seccomp_filters")) + 1);
            EXPECT_EQ(worker.status.at("NoNewPrivs"), "1");
            if (worker.name == "umbrix-decoding") {
                EXPECT_EQ(worker.status.at("CapEff"), "0000000000000000");
            }
        }
    }
}

TEST_F(WorkerRights, AreKeptForDebuggers)
{
    for (Command const& command : commands()) {
        SCOPED_TRACE(command.name);
        Arguments arguments = command.arguments;
        arguments.emplace_back("--no-sandbox");
        TracedRun const run = traced(arguments, {"SECRET=token"});
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(names(run), std::set<std::string>{"umbrix-worker"});
        for (SeenWorker const& worker : run.workers) {
            EXPECT_EQ(worker.status.at("Seccomp_filters"), own_.at("Seccomp_filters"));
            EXPECT_EQ(worker.status.at("NoNewPrivs"), own_.at("NoNewPrivs"));
            EXPECT_TRUE(worker.environment.contains("SECRET=token"));
            EXPECT_EQ(worker.limits.at("Max address space"), "unlimited unlimited");
        }
    }
}

std::size_t count_of(std::string const& word, std::string const& text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += word.size()) {
        ++count;
    }
    return count;
}

TEST_F(WorkerRights, ThatAreKeptAreToldOnce)
{
    EXPECT_EQ(run(map_).err.find("rights"), std::string::npos);
    Arguments batch{"batch", "in", "--no-sandbox", "--keep-tree", "out"};
    Outcome const outcome = run(batch);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(count_of("umbrix batch: note: --no-sandbox: ", outcome.err), 1U) << outcome.err;
    batch.emplace_back("--dry-run");
    EXPECT_EQ(run(batch).err, "") << "no worker, no note";
}

/// A system that does not know of seccomp's filters.
void forget_filters()
{
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_seccomp, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog const filter{std::size(program), program};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

TEST_F(WorkerRights, ThatCannotBeTakenAreToldOnceAndTheWorkIsDone)
{
    Outcome const outcome = run({"batch", "in", "--keep-tree", "out"}, {}, forget_filters);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(count_of("umbrix batch: note: this system has no filter of system calls", outcome.err), 1U)
        << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(folder() / "out/a_Umbrix.tga"));
}

TEST_F(WorkerRights, LeaveLimitsOnWhatAWorkerUses)
{
    TracedRun const run = traced({"info", "hill.tga", "--max-texels", "1000"});
    ASSERT_EQ(run.workers.size(), 1U);
    auto const& limits = run.workers[0].limits;
    EXPECT_EQ(limits.at("Max core file size"), "0 0");
    EXPECT_EQ(limits.at("Max file size"), "0 0") << "info writes nothing";
    for (char const* const name : {"Max cpu time", "Max address space"}) {
        EXPECT_EQ(limits.at(name).find("unlimited"), std::string::npos) << name;
    }
    TracedRun const map = traced(map_);
    ASSERT_EQ(map.workers.size(), 1U);
    EXPECT_EQ(map.workers[0].limits.at("Max file size").find("unlimited"), std::string::npos);
}

TEST_F(WorkerRights, LeaveTheVariablesThatAWorkerHasUseFor)
{
    std::vector<std::string> const known{"LANG=C",
                                         "LC_ALL=C.UTF-8",
                                         "TZ=UTC",
                                         "TMPDIR=/tmp",
                                         "OMP_NUM_THREADS=1",
                                         "OMP_STACKSIZE=4M",
                                         "OMP_WAIT_POLICY=active",
                                         "MALLOC_PERTURB_=7",
                                         "MALLOC_ARENA_MAX=1",
                                         "GLIBC_TUNABLES=glibc.malloc.tcache_count=0",
                                         "ASAN_OPTIONS=verbosity=0",
                                         "LD_LIBRARY_PATH=/there/is/none"};
    std::vector<std::string> const others{"HOME=/root",   "PATH=/bin",           "USER=me",
                                          "SECRET=token", "POCL_CACHE_DIR=/tmp", "OMP_THREAD_LIMIT=1"};
    std::vector<std::string> all = known;
    all.insert(all.end(), others.begin(), others.end());
    TracedRun const run = traced(map_, all);
    EXPECT_EQ(run.code, 0);
    ASSERT_EQ(run.workers.size(), 1U);
    std::set<std::string> expected(known.begin(), known.end());
    expected.insert({"OMP_DYNAMIC=false", "LD_PRELOAD=" UMBRIX_GRAPHICS_STAND_IN});
    EXPECT_EQ(run.workers[0].environment, expected);
}

TEST_F(WorkerRights, SetVariablesThatTheUserDoesNot)
{
    TracedRun const run = traced(map_);
    ASSERT_EQ(run.workers.size(), 1U);
    for (char const* const variable :
         {"OMP_DYNAMIC=false", "OMP_WAIT_POLICY=passive", "GLIBC_TUNABLES=glibc.malloc.hugetlb=1"}) {
        EXPECT_TRUE(run.workers[0].environment.contains(variable)) << variable;
    }
}

TEST_F(WorkerRights, LeaveDriversTheirsBesides)
{
    std::set<std::string> const known{"HOME=/root", "PATH=/bin", "POCL_CACHE_DIR=/tmp",
                                      "OCL_ICD_VENDORS=/etc/OpenCL/vendors", "CUDA_VISIBLE_DEVICES=0"};
    std::vector<std::string> all(known.begin(), known.end());
    all.emplace_back("SECRET=token");
    TracedRun const run = traced(map_on_device_, all);
    EXPECT_EQ(run.code, 0);
    ASSERT_EQ(run.workers.size(), 1U);
    auto const& environment = run.workers[0].environment;
    EXPECT_TRUE(std::includes(environment.begin(), environment.end(), known.begin(), known.end()));
    EXPECT_FALSE(environment.contains("SECRET=token"));
}

TEST_F(WorkerRights, GoWithTheNumberOfThreadsThatIsAskedFor)
{
    TracedRun const one = traced(map_, {"OMP_NUM_THREADS=1"});
    ASSERT_EQ(one.workers.size(), 1U);
    EXPECT_EQ(one.workers[0].status.at("Cpus_allowed_list").find_first_of(",-"), std::string::npos);
    TracedRun const too_many = traced(map_, {"OMP_NUM_THREADS=100000"});
    EXPECT_EQ(too_many.code, 0);
    ASSERT_EQ(too_many.workers.size(), 1U);
    EXPECT_FALSE(too_many.workers[0].environment.contains("OMP_NUM_THREADS=100000"));
}

} // namespace
} // namespace umbrixlib::test
