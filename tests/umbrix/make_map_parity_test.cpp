// SPDX-License-Identifier: MIT
// The road in memory has the bytes of the road through files: the real kernels, a stand-in for DevIL that
// serves and takes the pictures.
#include "umbrix/make_map.h"

#include "devil_fake.h"
#include "files/umbrix_file.h"
#include "files/umbrix_file_gpu.h"
#include "filters/narrowing.h"
#include "layers/nlayers.h"
#include "normals/height_to_normal.h"
#include "normals/make_normals.h"
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
    DevilFake::File file() const { return file(channels % 2 == 0 ? 4 : 3); }

    /// The stand-in hands out the bytes as they are, so who asks for three a texel has them served.
    DevilFake::File file(int stored) const
    {
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
            layer_pictures.push_back(picture(1 + below(4)));
            layers_are_normals.push_back(i > 0 && below(3) == 0);
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
    std::vector<bool> layers_are_normals;
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
        devil.files[run.records[i].filename] = run.layer_pictures[i].file(3);
    }
    devil.files["source"] = run.source.file();
    LinkedList<n_layer> records = list_of(run.records);
    NLayers stack(&records); // filled before the source is loaded, which is then the bound image
    for (std::size_t i = 0; i < run.records.size(); ++i) {
        char const* const file = run.records[i].filename.c_str();
        run.layers_are_normals[i] ? stack.AddNormalLayer(file) : stack.AddLayer(file);
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
        LinkedList<n_layer> records = list_of(run_.records);
        NLayers stack(&records, umbrixlib::InMemory{});
        for (std::size_t i = 0; i < run_.layer_pictures.size(); ++i) {
            PictureView const view = run_.layer_pictures[i].view();
            EXPECT_TRUE(run_.layers_are_normals[i] ? stack.AddNormalLayer(view) : stack.AddLayer(view));
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

/// The bytes of a stack's results as its file functions store them.
TEST(MakeMapParity, ResultsOfAStackNarrowToTheBytesOfItsFiles)
{
    for (std::uint32_t seed = 0; seed < 600; ++seed) {
        RandomRun const run(seed);
        if (run.layer_pictures.empty()) {
            continue;
        }
        LinkedList<n_layer> records = list_of(run.records);
        NLayers stack(&records, umbrixlib::InMemory{});
        for (BytePicture const& picture : run.layer_pictures) {
            stack.AddLayer(picture.view());
        }
        stack.BlendLayers();
        ASSERT_TRUE(stack.SaveResult("normals"));
        auto const texels = static_cast<std::size_t>(stack.GetResultSize());
        Bytes bytes(3 * texels);
        umbrixlib::normals_to_bytes(stack.GetResult(), stack.GetResultSize(), bytes.data());
        ASSERT_EQ(bytes, DevilFake::instance().stored) << seed;

        ASSERT_TRUE(stack.SaveHeight("heights"));
        auto* heights = new float[texels]();
        stack.BlendHeightMap(heights);
        Bytes greys(texels);
        umbrixlib::heights_to_bytes(heights, stack.GetResultSize(), greys.data());
        umbrixlib::stretch_heights(heights, stack.GetResultSize());
        for (std::size_t i = 0; i < texels; ++i) {
            ASSERT_EQ(greys[i], DevilFake::instance().stored[3 * i]) << seed;
            ASSERT_EQ(greys[i], static_cast<unsigned char>(static_cast<double>(heights[i]) * 255.0)) << seed;
        }
        delete[] heights;
    }
}

TEST(MakeMapParity, NormalsOfBytesNarrowToTheBytesOfTheFileFunction)
{
    for (std::uint32_t seed = 0; seed < 600; ++seed) {
        RandomRun run(seed);
        float const n_scale = run.options.n_scale;
        float const gaussian = run.options.gaussian;
        DevilFake& devil = DevilFake::instance();
        devil.serve(1, 1, 24);
        devil.files["source"] = run.source.file(3);
        std::string status;
        int progress = 0;
        HeightToNormal("source", "normals", n_scale, gaussian, false, 0, run.options.L_Detail, false, false,
                       &status, &progress);
        umbrixlib::NormalsRequest request;
        request.heights = run.source.view();
        request.n_scale = n_scale;
        request.gaussian = gaussian;
        umbrixlib::NormalsResult const result = umbrixlib::make_normals(request);
        ASSERT_EQ(result.outcome, Outcome::kDone);
        auto const texels = static_cast<std::ptrdiff_t>(result.rows) * result.cols;
        Bytes bytes(static_cast<std::size_t>(3 * texels));
        umbrixlib::normals_to_bytes(result.normals.get(), texels, bytes.data());
        ASSERT_EQ(bytes, devil.stored) << seed;
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
