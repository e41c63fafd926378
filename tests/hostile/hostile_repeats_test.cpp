// SPDX-License-Identifier: MIT
/// Some damaged pictures of each format through the tool, again and again: what becomes of a file does not
/// depend on what was in the memory that the tool and its workers get.
#include "hostile_corpus.h"

#include <atomic>
#include <thread>

namespace umbrixlib::test {
namespace {

constexpr int kRuns = 10;
constexpr std::size_t kStep = 16; ///< Of the variants of a format.

class HostileRepeats : public HostileCorpus {
protected:
    struct Fate {
        int code = 0;
        std::string sentence{};
        Bytes normals{};

        bool operator==(Fate const&) const = default;
    };

    Fate fate_of(DamagedFile const& file, int run_number) const
    {
        std::string const output = "out_" + file.name + std::to_string(run_number) + ".png";
        // Without its caches for each thread, all memory that is handed out is filled.
        Environment const filled{{"MALLOC_PERTURB_", std::to_string(run_number * 28)},
                                 {"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0"}};
        Outcome const outcome =
            run({"normal", file.name, "-o", output, "--timeout=20", "--progress", "none"}, filled);
        std::string sentence = outcome.err;
        if (auto const at = sentence.find(output); at != std::string::npos) {
            sentence.erase(at, output.size()); // a note of what was written
        }
        Fate fate{outcome.code, sentence, {}};
        if (outcome.code == 0) {
            fate.normals = read(output);
            std::filesystem::remove(folder() / output);
        }
        return fate;
    }
};

TEST_F(HostileRepeats, EndEachTimeInTheSame)
{
    std::vector<DamagedFile> const files = write_corpus(std::min(kStep * test_share(), kDamagedVariants / 2));
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> done = 0;
    auto const work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            Fate const first = fate_of(files[i], 0);
            done += first.code == 0 ? 1 : 0;
            for (int run = 1; run < kRuns; ++run) {
                Fate const again = fate_of(files[i], run);
                EXPECT_TRUE(again == first)
                    << files[i].name << ", run " << run << ": " << first.code << ' ' << first.sentence
                    << " and " << again.code << ' ' << again.sentence;
            }
        }
    };
    std::thread other(work);
    work();
    other.join();
    std::printf("%zu files, %zu done\n", files.size(), done.load());
    EXPECT_GT(done.load(), 0U);
    EXPECT_LT(done.load(), files.size());
}

} // namespace
} // namespace umbrixlib::test
