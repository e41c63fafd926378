// SPDX-License-Identifier: MIT
// The pipelines five hundred times in one process: memory, handles and threads after the first ten runs are
// those of the last.
#include "files/umbrix_file.h"
#include "files/umbrix_file_gpu.h"
#include "layers/nlayers.h"
#include "process_use.h"
#include "temporary_folder.h"
#include "test_picture.h"
#include "umbrix_test_options.h"

#include <functional>
#include <gtest/gtest.h>
#include <omp.h>

namespace {

using umbrixlib::test::neutral_options;
using umbrixlib::test::Picture;
using umbrixlib::test::ProcessUse;
using umbrixlib::test::TemporaryFolder;
using umbrixlib::test::use_of;

constexpr int kRuns = 500;
constexpr int kKindsOfRun = 10; // so all kinds have been seen after the first ten
constexpr long kSlackKib = 2048;

class LongRun : public testing::Test {
protected:
    LongRun()
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        for (int kind = 0; kind < kKindsOfRun; ++kind) {
            Picture picture(64 + 24 * kind, 200 - 12 * kind, kind % 2 == 0 ? 3 : 4, 0);
            for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
                picture.bytes[i] = static_cast<unsigned char>((i / 4) * 37 % 251);
            }
            picture.save(input(kind));
        }
    }

    std::string input(int kind) const { return (folder_.path() / (std::to_string(kind) + ".tga")).string(); }

    static umbrix_options options_of(int kind)
    {
        umbrix_options options = neutral_options();
        options.calc_type = calc_type_light_occlusion;
        options.rays = 5;
        options.h_scale = 0.2f;
        options.tile = options.h_tile = options.v_tile = true;
        options.height_map = kind % 3 != 0;
        options.generate_normal = kind % 4 != 0;
        options.keep_buffers = kind % 5 == 1;
        options.preserve = kind % 5 == 1;
        options.b_radius = kind % 2 == 0 ? 2.0f : 0.0f;
        options.smooth = kind % 3 == 1 ? 1.5f : 0.0f;
        options.gaussian = kind % 3 == 2 ? 1.5f : 0.0f;
        return options;
    }

    using Run = std::function<bool(std::string, std::string, umbrix_options&, LinkedList<n_layer>*)>;

    void hold_what_ten_runs_hold(Run const& run)
    {
        ProcessUse tenth;
        for (int i = 0; i < kRuns; ++i) {
            int const kind = i % kKindsOfRun;
            umbrix_options options = options_of(kind);
            LinkedList<n_layer> layers;
            if (kind % 4 == 3) {
                n_layer layer;
                layer.filename = input(kind);
                layer.n_scale = layer.normal_scale = 1.0f;
                layers.Add(layer);
            }
            ASSERT_TRUE(run(input(kind), (folder_ / "map.tga").string(), options, &layers));
            if (i == kKindsOfRun - 1) {
                tenth = use_of(getpid());
            }
        }
        ProcessUse const last = use_of(getpid());
        std::printf("after 10 runs %ld KiB, %ld handles, %ld threads; after %d runs %ld KiB, %ld, %ld\n",
                    tenth.resident_kib, tenth.handles, tenth.threads, kRuns, last.resident_kib, last.handles,
                    last.threads);
        EXPECT_LE(last.resident_kib, tenth.resident_kib + kSlackKib);
        EXPECT_EQ(last.handles, tenth.handles);
        EXPECT_EQ(last.threads, tenth.threads);
    }

    TemporaryFolder folder_;
    std::string status_;
    int progress_ = 0;
};

TEST_F(LongRun, UmbrixFileHoldsWhatItHeldAfterTenRuns)
{
    hold_what_ten_runs_hold([&](auto const& in, auto const& out, umbrix_options& options, auto* layers) {
        bool const good = UmbrixFile(in, out, options, layers, nullptr, &status_, &progress_);
        if (options.keep_buffers) {
            delete[] options.ao_map;
            delete[] options.normal_map;
            delete[] options.height_copy;
        }
        return good;
    });
}

TEST_F(LongRun, UmbrixFileGpuHoldsWhatItHeldAfterTenRuns)
{
    hold_what_ten_runs_hold([&](auto const& in, auto const& out, umbrix_options& options, auto* layers) {
        bool const good =
            UmbrixFile_GPU({false, 0, 0}, in, out, options, layers, nullptr, &status_, &progress_);
        delete[] options.height_copy;
        if (options.keep_buffers) {
            delete[] options.ao_map;
            delete[] options.normal_map;
        }
        return good;
    });
}

} // namespace
