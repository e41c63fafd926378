// SPDX-License-Identifier: MIT
// A thousand random changes of one stack, sizes checked after each; memory by the sanitizers of that build.
#include "layers/nlayers.h"

#include "random_image.h"
#include "temporary_folder.h"
#include "test_picture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>

namespace {

using umbrixlib::test::Picture;
using umbrixlib::test::TemporaryFolder;

/// What the stack should hold.
struct Expected {
    layer_size size;
    bool has_heights;
    bool has_normals;
};

class NLayersStress : public testing::TestWithParam<unsigned> {
protected:
    NLayersStress() : generator_(GetParam())
    {
        omp_set_num_threads(1); // pictures of a few texels: a team would do nothing but wait
        for (int i = 0; i < 4; ++i) {
            Picture picture(kSizes[i].width, kSizes[i].height, 3, 0);
            auto const noise = umbrixlib::test::random_image<float>(picture.bytes.size(), unsigned(i));
            std::transform(noise.begin(), noise.end(), picture.bytes.begin(),
                           [](float v) { return static_cast<unsigned char>(v * 255.0f); });
            files_[i] = (folder_ / ("picture" + std::to_string(i) + ".tga").c_str()).string();
            picture.save(files_[i]);
        }
    }

    ~NLayersStress() override { omp_set_num_threads(omp_get_num_procs()); }

    int below(int limit) { return static_cast<int>(generator_() % static_cast<unsigned>(limit)); }

    void add_record(int at_end_of)
    {
        n_layer record;
        record.blend_mode = below(5);
        record.opacity = static_cast<float>(below(150));
        record.n_scale = 1.0f;
        record.L_Detail = static_cast<float>(below(3));
        record.gaussian = below(4) == 0 ? 0.7f : 0.0f;
        record.normal_scale = 1.0f;
        ASSERT_EQ(records_.count, at_end_of);
        records_.Add(record);
    }

    layer_size first_size() const { return expected_.empty() ? layer_size{-1, -1} : expected_[0].size; }

    void add_height_layer(char const* file, layer_size own)
    {
        add_record(stack_.Count());
        stack_.AddLayer(file);
        expected_.push_back({expected_.empty() ? own : first_size(), true, true});
    }

    void change()
    {
        int const picture = below(4);
        char const* const file = files_[picture].c_str();
        int const count = stack_.Count();
        int const index = count == 0 ? 0 : below(count);
        switch (below(count > 12 ? 12 : 9)) {
        case 0:
        case 1:
            add_height_layer(file, kSizes[picture]);
            break;
        case 2:
            add_record(count);
            stack_.AddNormalLayer(file);
            expected_.push_back({kSizes[picture], false, true});
            break;
        case 3:
            add_record(count);
            stack_.AddLayer("");
            expected_.push_back({{0, 0}, false, false});
            break;
        case 4:
        case 5:
            if (count > 0) {
                replace(index, file, kSizes[picture]);
            } else {
                add_height_layer(file, kSizes[picture]);
            }
            break;
        case 6:
            if (index > 0) {
                stack_.MoveLayerUp(index);
                std::swap(*records_.GetRef(index), *records_.GetRef(index - 1));
                std::swap(expected_[static_cast<std::size_t>(index)],
                          expected_[static_cast<std::size_t>(index - 1)]);
            }
            break;
        case 7:
            if (index + 1 < count) {
                stack_.MoveLayerDown(index);
                std::swap(*records_.GetRef(index), *records_.GetRef(index + 1));
                std::swap(expected_[static_cast<std::size_t>(index)],
                          expected_[static_cast<std::size_t>(index + 1)]);
            }
            break;
        default:
            if (count > 0) {
                stack_.RemoveLayer(index);
                records_.Remove(index);
                expected_.erase(expected_.begin() + index);
            }
            break;
        }
    }

    void replace(int index, char const* file, layer_size own)
    {
        stack_.SetLayerData(index, file);
        bool const unsized = first_size().height == 0 && first_size().width == 0;
        if (unsized) {
            expected_[0].size = own;
        }
        expected_[static_cast<std::size_t>(index)] = {unsized ? own : first_size(), true, true};
    }

    void check()
    {
        auto const count = static_cast<int>(expected_.size());
        ASSERT_EQ(stack_.Count(), count);
        ASSERT_EQ(stack_.heights.count, count);
        ASSERT_EQ(stack_.sizes.count, count);
        for (int i = 0; i < count; ++i) {
            Expected const& layer = expected_[static_cast<std::size_t>(i)];
            ASSERT_EQ(stack_.GetLayerHeight(i), layer.size.height);
            ASSERT_EQ(stack_.GetLayerWidth(i), layer.size.width);
            ASSERT_EQ(stack_.GetLayer(i) != nullptr, layer.has_normals);
            ASSERT_EQ(stack_.heights.Get(i) != nullptr, layer.has_heights);
            // Under address sanitizer a buffer without the room would end the test.
            auto const texels = std::ptrdiff_t{layer.size.height} * layer.size.width;
            if (layer.has_normals) {
                std::fill_n(stack_.GetLayer(i), texels, float3{0.0f, 0.6f, 0.8f});
            }
            if (layer.has_heights) {
                std::fill_n(stack_.heights.Get(i), texels, 0.5f);
            }
        }
    }

    void use()
    {
        layer_size const first = expected_.empty() ? layer_size{} : first_size();
        std::vector<float3> destination(
            static_cast<std::size_t>(first.height) * static_cast<std::size_t>(first.width) + 1);
        std::vector<unsigned char> bitmap(4 * destination.size());
        std::vector<int> order(4);
        std::generate(order.begin(), order.end(), [&] { return below(10) - 1; });
        switch (below(8)) {
        case 0:
            stack_.BlendLayers();
            break;
        case 1:
            stack_.BlendLayers(destination.data());
            break;
        case 2:
            stack_.BlendLayers(order.data(), below(5));
            break;
        case 3:
            stack_.BlendLayersToBmp(bitmap.data());
            break;
        case 4:
            stack_.CopyResultToBmp(bitmap.data());
            break;
        case 5:
            stack_.BlendHeightMap();
            break;
        case 6: {
            auto* heights = new float[destination.size()];
            stack_.BlendHeightMap(heights);
            delete[] heights;
            break;
        }
        default:
            stack_.SaveHeight((folder_ / "out.tga").c_str());
            stack_.SaveResult((folder_ / "out.vtf.tga").c_str());
            break;
        }
    }

    static constexpr layer_size kSizes[4] = {{16, 16}, {9, 21}, {4, 4}, {1, 7}};
    TemporaryFolder folder_;
    std::string files_[4];
    std::mt19937 generator_;
    LinkedList<n_layer> records_;
    NLayers stack_{&records_};
    std::vector<Expected> expected_;
};

INSTANTIATE_TEST_SUITE_P(Seeds, NLayersStress, testing::Values(1U, 2U, 3U));

TEST_P(NLayersStress, AThousandChangesKeepTheSizesAndTheMemory)
{
    int largest = 0;
    for (int i = 0; i < 1000; ++i) {
        change();
        ASSERT_NO_FATAL_FAILURE(check()) << "after change " << i;
        if (i % 4 == 0) {
            use();
        }
        largest = std::max(largest, stack_.Count());
    }
    EXPECT_GT(largest, 10);
    stack_.Clear();
    EXPECT_EQ(stack_.Count(), 0);
}

} // namespace
