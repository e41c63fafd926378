// SPDX-License-Identifier: MIT
/// A batch of damaged and sound pictures, again and again: what comes out does not depend on what was in the
/// memory that the workers get, nor on the number of their threads.
#include "hostile_corpus.h"

#include <map>

namespace umbrixlib::test {
namespace {

constexpr int kRepeats = 10;
constexpr int kThreads[] = {1, 2, 3, 8};

class HostileDeterminism : public HostileCorpus {
protected:
    struct Result {
        int code = 0;
        std::map<std::string, std::string> reasons{}; ///< By the name of the file, empty where it is done.
        std::map<std::string, Bytes> maps{};
    };

    Result result_of(int repeat) const
    {
        // Without its caches for each thread, all memory that is handed out is filled.
        Environment const machine{{"MALLOC_PERTURB_", std::to_string(repeat * 28)},
                                  {"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0"},
                                  {"LD_PRELOAD", UMBRIX_CLAIMED_PROCESSORS},
                                  {"OMP_CLAIMED_PROCESSORS", std::to_string(kThreads[repeat % 4])}};
        Outcome const outcome = run({"batch", "in", "--keep-tree", "out", "--height-map", "--rays", "4",
                                     "--radius", "0.1", "--jobs", "2", "--timeout=20", "--json"},
                                    machine);
        Result result{outcome.code};
        for (auto const& [source, object] : objects(outcome)) {
            result.reasons[source] = object.value("reason", "");
        }
        result.maps = contents(folder() / "out");
        std::filesystem::remove_all(folder() / "out");
        return result;
    }

    static std::vector<std::string> differences(std::map<std::string, Bytes> const& left,
                                                std::map<std::string, Bytes> const& right)
    {
        std::vector<std::string> names;
        for (auto const& [name, bytes] : left) {
            if (!right.contains(name) || right.at(name) != bytes) {
                names.push_back(name);
            }
        }
        return names;
    }
};

TEST_F(HostileDeterminism, MakesTheSameOfABatchForAllThreadsAndMemory)
{
    std::filesystem::create_directories(folder() / "in");
    std::size_t const damaged = write_corpus(8 * test_share(), "in/").size();
    for (char const* const sound : {"bricks_height.png", "cloth_height.png", "dunes_height.png"}) {
        std::filesystem::copy_file(std::filesystem::path(UMBRIX_EXAMPLES) / "textures" / sound,
                                   folder() / "in" / sound);
    }
    Result const first = result_of(0);
    EXPECT_EQ(first.code, 1);
    EXPECT_EQ(first.reasons.size(), damaged + 3 + 1); // and the line of sums
    EXPECT_GT(first.maps.size(), 3U);
    EXPECT_LT(first.maps.size(), damaged);
    for (int repeat = 1; repeat < kRepeats; ++repeat) {
        Result const again = result_of(repeat);
        EXPECT_EQ(again.code, first.code) << repeat;
        EXPECT_EQ(again.reasons, first.reasons) << repeat;
        EXPECT_EQ(again.maps.size(), first.maps.size()) << repeat;
        EXPECT_EQ(differences(first.maps, again.maps), std::vector<std::string>{}) << repeat;
    }
    std::printf("%zu damaged pictures and 3 sound ones, %zu maps\n", damaged, first.maps.size());
}

} // namespace
} // namespace umbrixlib::test
