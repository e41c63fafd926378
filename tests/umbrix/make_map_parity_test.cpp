// SPDX-License-Identifier: MIT
// The road in memory has the bytes of the road through files: the real kernels, a stand-in for DevIL that
// serves and takes the pictures.
#include "umbrix/make_map.h"

#include "devil_fake.h"
#include "filters/narrowing.h"
#include "layers/nlayers.h"
#include "umbrix/file_cpu.h"
#include "umbrix/file_gpu.h"
#include "umbrix_test_options.h"

#include <array>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>
#include <string>
#include <vector>

namespace {

using umbrixlib::MapForm;
using umbrixlib::MapRequest;
using umbrixlib::MapResult;
using umbrixlib::Outcome;
using umbrixlib::PictureView;
using umbrixlib::SampleType;
using umbrixlib::test::DevilFake;
using umbrixlib::test::neutral_options;
using Bytes = std::vector<unsigned char>;

/// A picture of bytes, one to four channels.
struct BytePicture {
    int width, height, channels;
    Bytes bytes;

    PictureView view() const { return {bytes.data(), width, height, channels, SampleType::kUint8}; }
    std::size_t texels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }

    /// What a file of it holds: three or four bytes a texel.
    DevilFake::File file() const
    {
        int const stored = channels % 2 == 0 ? 4 : 3;
        DevilFake::File file{width, height, 8 * stored, {}};
        for (std::size_t i = 0; i < texels(); ++i) {
            unsigned char const* const texel = &bytes[i * static_cast<std::size_t>(channels)];
            int const colours = channels > 2 ? 3 : 1;
            for (int c = 0; c < 3; ++c) {
                file.bytes.push_back(texel[colours == 3 ? c : 0]);
            }
            if (stored == 4) {
                file.bytes.push_back(texel[channels - 1]);
            }
        }
        return file;
    }
};

/// Everything that a run is made of, by chance.
class RandomRun {
public:
    explicit RandomRun(std::uint32_t seed) : generator_(seed)
    {
        source = picture(1 + below(4));
        options = random_options();
        uses_gpu = below(3) == 0;
        int const layers = below(3) == 0 ? 1 + below(3) : 0;
        for (int i = 0; i < layers; ++i) {
            layer_pictures.push_back(picture(below(2) == 0 ? 3 : 4));
            if (below(3) != 0) {
                layer_pictures.back().width = source.width;
                layer_pictures.back().height = source.height;
                fill(layer_pictures.back());
            }
            records.push_back(record(i));
        }
    }

    BytePicture source;
    umbrix_options options;
    bool uses_gpu;
    std::vector<BytePicture> layer_pictures;
    std::vector<n_layer> records;

    int below(int end) { return static_cast<int>(generator_() % static_cast<std::uint32_t>(end)); }

private:
    float unit() { return static_cast<float>(generator_() >> 8) * (1.0f / 16777216.0f); }
    bool coin() { return below(2) == 0; }
    /// Mostly @p neutral, else @p other.
    template <typename T>
    T rarely(T neutral, T other)
    {
        return below(3) == 0 ? other : neutral;
    }

    BytePicture picture(int channels)
    {
        BytePicture made{1 + below(24), 1 + below(24), channels, {}};
        fill(made);
        return made;
    }

    void fill(BytePicture& made)
    {
        made.bytes.resize(made.texels() * static_cast<std::size_t>(made.channels));
        int const flat = below(8) == 0 ? 1 : 256;
        for (unsigned char& byte : made.bytes) {
            byte = static_cast<unsigned char>(below(flat) + (flat == 1 ? 77 : 0));
        }
    }

    umbrix_options random_options()
    {
        constexpr std::array kKinds = {0, 2, 5, 3};
        umbrix_options made = neutral_options();
        made.calc_type = static_cast<calc_type>(kKinds[static_cast<std::size_t>(below(4))]);
        made.preserve = coin();
        made.no_normal = coin();
        made.rays = below(9);
        made.radius = unit();
        made.h_scale = unit();
        made.alpha_limit = unit() * 170.0f;
        made.theta_limit = unit() * 200.0f;
        made.contrast = rarely(0.0f, unit() * 2.0f - 1.0f);
        made.h_contrast = rarely(0.0f, unit() * 2.0f - 1.0f);
        made.brightness = rarely(0.0f, unit() * 2.0f - 1.0f);
        made.h_brightness = rarely(0.0f, unit() * 2.0f - 1.0f);
        made.smooth = rarely(0.0f, unit() * 3.0f);
        made.h_smooth = rarely(0.0f, unit() * 3.0f);
        made.b_radius = rarely(0.0f, unit() * 4.0f);
        made.max = rarely<unsigned char>(255, static_cast<unsigned char>(below(256)));
        made.h_max = rarely<unsigned char>(255, static_cast<unsigned char>(below(256)));
        made.min = rarely<unsigned char>(0, static_cast<unsigned char>(below(256)));
        made.h_min = rarely<unsigned char>(0, static_cast<unsigned char>(below(256)));
        made.tile = coin();
        made.h_tile = coin();
        made.v_tile = coin();
        made.blend_height = coin();
        made.UmbrixMode = static_cast<Modes>(below(4));
        made.height_map = coin();
        made.generate_normal = coin();
        made.n_scale = unit() * 20.0f;
        made.gaussian = rarely(0.0f, unit() * 3.0f);
        made.L_Detail = rarely(0.0f, unit() * 3.0f);
        return made;
    }

    n_layer record(int number)
    {
        n_layer made;
        made.filename = "layer " + std::to_string(number);
        made.blend_mode = below(4);
        made.opacity = unit() * 120.0f;
        made.n_scale = unit() * 3.0f;
        made.L_Detail = rarely(0.0f, unit() * 3.0f);
        made.gaussian = rarely(0.0f, unit() * 3.0f);
        made.depth = rarely(0.0f, unit() * 2.0f - 1.0f);
        made.normal_scale = unit() * 3.0f;
        made.edge_a = rarely(0.0f, unit());
        made.edge_b = rarely(0.0f, unit());
        return made;
    }

    std::mt19937 generator_;
};

int host_device()
{
    static int const host = DeviceCount() - 1;
    return host;
}

LinkedList<n_layer> list_of(std::vector<n_layer> const& records)
{
    LinkedList<n_layer> list;
    for (n_layer const& record : records) {
        list.Add(record);
    }
    return list;
}

/// The bytes that the file function stores.
Bytes through_files(RandomRun const& run)
{
    DevilFake& devil = DevilFake::instance();
    devil.serve(1, 1, 24);
    for (std::size_t i = 0; i < run.layer_pictures.size(); ++i) {
        devil.files[run.records[i].filename] = run.layer_pictures[i].file();
    }
    devil.files["source"] = run.source.file();
    LinkedList<n_layer> records = list_of(run.records);
    NLayers stack(&records);
    for (n_layer const& record : run.records) {
        stack.AddLayer(record.filename.c_str()); // before the source, which is then the bound image
    }
    umbrix_options options = run.options;
    std::string status;
    int progress = 0;
    options.height_copy = nullptr;
    if (run.uses_gpu) {
        UmbrixFile_GPU({false, host_device(), 0}, "source", "map", options, &records, &stack, &status,
                       &progress);
        delete[] options.height_copy;
    } else {
        UmbrixFile("source", "map", options, &records, &stack, &status, &progress);
    }
    return devil.stored;
}

/// The same in memory, in both forms; @p view is the source.
class InMemory {
public:
    InMemory(RandomRun const& run, PictureView const& view) : run_(run), view_(view) {}

    MapResult make(MapForm form)
    {
        DevilFake& devil = DevilFake::instance();
        LinkedList<n_layer> records = list_of(run_.records);
        NLayers stack(&records);
        for (std::size_t i = 0; i < run_.layer_pictures.size(); ++i) {
            devil.files[run_.records[i].filename] = run_.layer_pictures[i].file();
            stack.AddLayer(run_.records[i].filename.c_str());
        }
        MapRequest request;
        request.source = view_;
        request.options = run_.options;
        request.layers = &records;
        request.stack = &stack;
        request.form = form;
        if (run_.uses_gpu) {
            request.gpu = GPU_opt{false, host_device(), 0};
        }
        return umbrixlib::make_map(request);
    }

    /// Bytes of the float form, made by hand.
    Bytes narrowed(int channels)
    {
        MapResult const result = make(MapForm::kFloats);
        EXPECT_EQ(result.outcome, Outcome::kDone);
        auto const texels = static_cast<std::ptrdiff_t>(result.rows) * result.cols;
        Bytes bytes(static_cast<std::size_t>(texels * channels));
        umbrixlib::map_to_bytes(result.map.get(), texels, channels, bytes.data());
        return bytes;
    }

    Bytes direct(int channels)
    {
        MapResult const result = make(channels == 4 ? MapForm::kBytes : MapForm::kColourBytes);
        EXPECT_EQ(result.outcome, Outcome::kDone);
        EXPECT_EQ(result.map, nullptr);
        auto const texels = static_cast<std::size_t>(result.rows) * static_cast<std::size_t>(result.cols);
        return {result.bytes.get(), result.bytes.get() + texels * static_cast<std::size_t>(channels)};
    }

private:
    RandomRun const& run_;
    PictureView view_;
};

constexpr std::uint32_t kRuns = 3000;

TEST(MakeMapParity, BytesInAndBytesOutAreThoseOfTheFileFunctions)
{
    omp_set_dynamic(0);
    omp_set_num_threads(omp_get_num_procs());
    for (std::uint32_t seed = 0; seed < kRuns; ++seed) {
        RandomRun const run(seed);
        int const channels = run.source.channels % 2 == 0 ? 4 : 3;
        Bytes const expected = through_files(run);
        InMemory memory(run, run.source.view());
        ASSERT_EQ(memory.narrowed(channels), expected) << seed;
        ASSERT_EQ(memory.direct(channels), expected) << seed;
    }
}

/// 16 bits hold every byte exactly. Floats do not: the road on the graphics processor takes 1 minus the alpha
/// before it rounds.
TEST(MakeMapParity, AWiderCopyOfAPictureOfBytesHasItsMap)
{
    for (std::uint32_t seed = kRuns; seed < kRuns + 500; ++seed) {
        RandomRun const run(seed);
        int const channels = run.source.channels % 2 == 0 ? 4 : 3;
        Bytes const expected = through_files(run);
        std::vector<std::uint16_t> sixteen_bits;
        std::vector<float> floats;
        for (unsigned char const byte : run.source.bytes) {
            sixteen_bits.push_back(static_cast<std::uint16_t>(byte * 257));
            floats.push_back(static_cast<float>(byte / 255.0));
        }
        PictureView view = run.source.view();
        view.samples = sixteen_bits.data();
        view.type = SampleType::kUint16;
        ASSERT_EQ(InMemory(run, view).narrowed(channels), expected) << seed;
        if (!run.uses_gpu || run.options.height_map) {
            view.samples = floats.data();
            view.type = SampleType::kFloat;
            ASSERT_EQ(InMemory(run, view).narrowed(channels), expected) << seed;
        }
    }
}

TEST(MakeMapParity, NoTeamShowsInAResult)
{
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        RandomRun const run(seed);
        InMemory memory(run, run.source.view());
        omp_set_num_threads(omp_get_num_procs());
        Bytes const expected = memory.narrowed(4);
        for (int const team : {1, 3, 8}) {
            omp_set_num_threads(team);
            ASSERT_EQ(memory.narrowed(4), expected) << seed << ", " << team;
        }
    }
    omp_set_num_threads(omp_get_num_procs());
}

} // namespace
