// SPDX-License-Identifier: MIT
// A stack between real image files.
#include "layers/nlayers.h"

#include "temporary_folder.h"
#include "test_picture.h"

#include <gtest/gtest.h>
#include <omp.h>

namespace {

using umbrixlib::test::Picture;
using umbrixlib::test::TemporaryFolder;

class NLayersFiles : public testing::Test {
protected:
    NLayersFiles()
    {
        Picture picture(8, 4, 3, 0);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) {
                auto const grey = static_cast<unsigned char>(30 * y + 3 * x);
                picture.set(x, y, {grey, grey, grey});
            }
        }
        picture.save(folder_ / "ramp.tga");
        Picture normals(8, 4, 3, 0);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) {
                normals.set(x, y,
                            {static_cast<unsigned char>(20 * x), static_cast<unsigned char>(50 * y), 255});
            }
        }
        normals.save(folder_ / "normals.tga");
        n_layer record;
        record.n_scale = 1.0f;
        record.normal_scale = 1.0f;
        for (int i = 0; i < 3; ++i) {
            records_.Add(record);
        }
        omp_set_num_threads(omp_get_num_procs());
    }
    ~NLayersFiles() override { omp_set_num_threads(omp_get_num_procs()); }

    std::string file(char const* name) const { return (folder_ / name).string(); }

    TemporaryFolder folder_;
    LinkedList<n_layer> records_;
    NLayers stack_{&records_};
};

TEST_F(NLayersFiles, RowsRunFromTheBottomOfThePictureUp)
{
    stack_.AddLayer(file("ramp.tga").c_str());
    EXPECT_EQ(stack_.heights.Get(0)[0], 0.0f);
    EXPECT_EQ(stack_.heights.Get(0)[8 * 3 + 1], static_cast<float>(93 / 255.0));
}

TEST_F(NLayersFiles, AHeightLayerComesBackAsAGreyPictureOfTheFullRange)
{
    stack_.AddLayer(file("ramp.tga").c_str());
    EXPECT_FALSE(stack_.SaveHeight(file("height.tga").c_str()));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "height.tga"));
    stack_.BlendLayers();
    EXPECT_TRUE(stack_.SaveHeight(file("height.tga").c_str()));
    Picture const saved = Picture::load(folder_ / "height.tga");
    ASSERT_EQ(saved.width, 8);
    ASSERT_EQ(saved.height, 4);
    EXPECT_EQ(saved.at(0, 0)[0], 0);
    EXPECT_EQ(saved.at(7, 3)[1], 255);
    EXPECT_NEAR(saved.at(0, 2)[2], 60 * 255 / 111, 1);
}

TEST_F(NLayersFiles, ANormalLayerComesBackAsAPicture)
{
    stack_.AddNormalLayer(file("normals.tga").c_str());
    int order[] = {0};
    stack_.BlendLayers(order, 1);
    EXPECT_TRUE(stack_.SaveResult(file("out.tga").c_str()));
    Picture const given = Picture::load(folder_ / "normals.tga");
    Picture const saved = Picture::load(folder_ / "out.tga");
    ASSERT_EQ(saved.bytes.size(), given.bytes.size());
    for (std::size_t i = 0; i < saved.bytes.size(); ++i) {
        EXPECT_NEAR(saved.bytes[i], given.bytes[i], 1);
    }
}

TEST_F(NLayersFiles, ExistingFilesAreReplaced)
{
    Picture(1, 1, 3, 0).save(folder_ / "out.tga");
    stack_.AddNormalLayer(file("normals.tga").c_str());
    stack_.BlendLayers();
    EXPECT_TRUE(stack_.SaveResult(file("out.tga").c_str()));
    EXPECT_EQ(Picture::load(folder_ / "out.tga").width, 8);
}

TEST_F(NLayersFiles, AVtfNameReversesTheRows)
{
    omp_set_num_threads(1);
    stack_.AddLayer(file("ramp.tga").c_str());
    stack_.BlendLayers();
    stack_.SaveHeight(file("plain.tga").c_str());
    stack_.SaveHeight(file("a.vtf.tga").c_str());
    Picture const plain = Picture::load(folder_ / "plain.tga");
    Picture const reversed = Picture::load(folder_ / "a.vtf.tga");
    for (int x = 0; x < 8; ++x) {
        EXPECT_EQ(reversed.at(x, 0)[0], 0) << "the first row is never written";
        for (int y = 1; y < 4; ++y) {
            EXPECT_EQ(reversed.at(x, y)[0], plain.at(x, 4 - y)[0]);
        }
    }
    stack_.BlendLayers();
    EXPECT_TRUE(stack_.SaveResult(file("real.vtf").c_str()));
    EXPECT_GT(std::filesystem::file_size(folder_ / "real.vtf"), 80U);
}

TEST_F(NLayersFiles, ABlankLastLayerSavesOneTexel)
{
    stack_.AddLayer(file("ramp.tga").c_str());
    stack_.AddLayer("");
    stack_.BlendLayers();
    EXPECT_TRUE(stack_.SaveResult(file("out.tga").c_str()));
    EXPECT_EQ(Picture::load(folder_ / "out.tga").width, 1) << "DevIL makes one of none";
}

TEST_F(NLayersFiles, ASavedImageTakesTheNextLoad)
{
    stack_.AddLayer(file("ramp.tga").c_str());
    stack_.BlendLayers();
    stack_.SaveResult(file("out.tga").c_str());
    stack_.AddLayer(file("missing.tga").c_str());
    float3 const normal = stack_.GetResult()[0];
    auto const byte = [](float v) { return static_cast<int>((double(v) + 1.0) * 0.5 * 255.0); };
    EXPECT_EQ(stack_.heights.Get(1)[0],
              static_cast<float>((byte(normal.x) + byte(normal.y) + byte(normal.z)) / 3 / 255.0))
        << "the picture that was saved is bound";
}

TEST_F(NLayersFiles, AnImageOfOneByteATexelIsALayerOfZeros)
{
    Picture(8, 4, 1, 200).save(folder_ / "grey.tga");
    stack_.AddLayer(file("grey.tga").c_str());
    EXPECT_EQ(stack_.GetLayerWidth(0), 8);
    EXPECT_EQ(stack_.heights.Get(0)[17], 0.0f);
}

} // namespace
