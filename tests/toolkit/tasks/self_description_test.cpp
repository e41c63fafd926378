// SPDX-License-Identifier: MIT
/// What results tell of how they were made, and who listens to it.
#include "task_test.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encoder.h"

#include <fstream>
#include <iterator>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// Keeps the notes.
class Listener : public Observer {
public:
    void note(std::string const&, Note const& note) override { notes += note.text + '\n'; }

    std::string notes;
};

class SelfDescription : public TaskTest {
protected:
    SelfDescription()
    {
        put_heights("h.png", 16, 16, [](int x, int y) { return (x * 3 + y * 5) % 16 / 16.0; });
    }

    Attributes told_by(std::string const& name) const
    {
        return DecodedImage(path(name), name, kMostTexels).picture().attributes;
    }

    std::string bytes_of(std::string const& name) const
    {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    void make_map(std::string const& output, Modes mode) const
    {
        MapJob job;
        job.files = files("h.png", output);
        job.settings.mode = mode;
        Listener listener;
        run(job, listener);
    }

    void make_normals(std::string const& output) const
    {
        NormalJob job;
        job.files = files("h.png", output);
        job.normal_y = NormalY::kDown;
        Listener listener;
        run(job, listener);
    }

    RelightJob relight_job(std::string const& input) const
    {
        RelightJob job;
        job.files = files(input, "lit.png");
        job.light = {20, 30};
        job.look = {Modes_Projection, 0.7};
        return job;
    }

    std::string lit(RelightJob const& job) const
    {
        Listener listener;
        run(job, listener);
        return bytes_of("lit.png") + listener.notes;
    }
};

TEST_F(SelfDescription, OfAMapHasItsSettings)
{
    for (char const* const name : {"m.png", "m.tif", "m.exr"}) {
        make_map(name, Modes_Squared);
        Attributes const told = told_by(name);
        ASSERT_FALSE(told.empty()) << name;
        EXPECT_EQ(told.front(), (Attribute{"umbrix", "map"}));
        EXPECT_EQ(value_of(told, "kind"), "map");
        EXPECT_EQ(value_of(told, "mode"), "squared");
        EXPECT_EQ(value_of(told, "relief"), "0.05");
        EXPECT_EQ(value_of(told, "rays"), "128");
        EXPECT_EQ(value_of(told, "alpha-limit"), "120");
        EXPECT_NE(value_of(told, "version"), "");
    }
}

TEST_F(SelfDescription, OfNormalsHasGreenAndTheirCoding)
{
    make_normals("n.png");
    EXPECT_EQ(value_of(told_by("n.png"), "green"), "down");
    EXPECT_EQ(value_of(told_by("n.png"), "coding"), "0..1");
    make_normals("n.exr");
    EXPECT_EQ(value_of(told_by("n.exr"), "coding"), "-1..1");
}

TEST_F(SelfDescription, OfNormalsTellsMapsWhereGreenPoints)
{
    make_normals("n.png");
    MapJob job;
    job.files = files("n.png", "m.png");
    job.kind = Kind::kNormalMap;
    Listener listener;
    EXPECT_EQ(run(job, listener).green, NormalY::kDown);
    job.normal_y = NormalY::kUp;
    EXPECT_EQ(run(job, listener).green, NormalY::kUp);
}

TEST_F(SelfDescription, IsTheSameInEachRun)
{
    make_map("a.png", Modes_Projection);
    make_map("b.png", Modes_Projection);
    EXPECT_EQ(bytes_of("a.png"), bytes_of("b.png"));
    EXPECT_EQ(bytes_of("a.png").find("a.png"), std::string::npos);
}

TEST_F(SelfDescription, GivesRelightItsModeUnlessOneIsGiven)
{
    make_map("unit.png", Modes_UnitBasis);
    RelightJob job = relight_job("unit.png");
    std::string const as_told = lit(job);
    job.look.mode = Modes_UnitBasis;
    job.mode_is_given = true;
    EXPECT_EQ(lit(job), as_told);
    job.look.mode = Modes_Projection;
    std::string const as_given = lit(job);
    EXPECT_NE(as_given, as_told);
    EXPECT_NE(as_given.find("its mode is unit, and is taken for projection"), std::string::npos);
}

TEST_F(SelfDescription, OfSomethingElseIsRefusedByRelight)
{
    make_normals("n.png");
    RelightJob job = relight_job("n.png");
    Listener listener;
    try {
        run(job, listener);
        ADD_FAILURE();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kNoMap);
        EXPECT_STREQ(failure.what(), "it tells of itself that it is a normal map");
    }
    job.force = true;
    EXPECT_NO_THROW(run(job, listener));
    EXPECT_NO_THROW(run(relight_job("h.png"), listener)) << "it tells nothing";
}

TEST_F(SelfDescription, SaysWhetherFloatNormalsAreVectors)
{
    Picture normals = make_picture(4, 4, 3, SampleType::kFloat);
    std::ranges::fill(normals.samples<float>(), 0.75f); // of vectors and of colours alike
    MapJob job;
    job.kind = Kind::kNormalMap;
    job.settings.occlusion = false;
    std::string results[3];
    for (std::size_t i = 0; i < 3; ++i) {
        char const* const codings[] = {"", "0..1", "-1..1"};
        normals.attributes = {{"umbrix", "normal"}, {"kind", "normals"}, {"coding", codings[i]}};
        ASSERT_TRUE(exr_encoder().encode(path("f.exr"), normals));
        job.files = files("f.exr", "m.tga");
        Listener listener;
        run(job, listener);
        results[i] = bytes_of("m.tga");
        EXPECT_EQ(listener.notes.find("as it tells itself") != std::string::npos, i == 2);
    }
    EXPECT_EQ(results[0], results[1]);
    EXPECT_NE(results[1], results[2]);
}

} // namespace
} // namespace umbrixlib::test
