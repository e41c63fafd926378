// SPDX-License-Identifier: MIT
/// Work lists on the command line: what is in them, and what becomes of them when something goes wrong.
#include "list_bytes.h"
#include "tool.h"
#include "toolkit/base/json_text.h"

#include <nlohmann/json.hpp>
#include <sys/resource.h>

namespace umbrixlib::test {
namespace {

using nlohmann::json;

class ListCommand : public ToolTest {
protected:
    ListCommand()
    {
        write("hill.tga", hill(32));
        write("flat.tga", flat_normals());
        std::filesystem::create_directory(folder() / "more");
    }

    /// Normals that point straight up; TGA has blue first.
    static Bytes flat_normals()
    {
        Bytes pixels;
        for (int i = 0; i < 16 * 16; ++i) {
            pixels.insert(pixels.end(), {255, 128, 128});
        }
        return tga_bytes(16, 16, 3, pixels);
    }

    void write_text(std::string const& name, std::string const& text) const
    {
        write(name, Bytes(text.begin(), text.end()));
    }

    Outcome list(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), "list");
        return run(arguments);
    }
    /// The same, which has to succeed.
    std::string done(Arguments const& arguments) const
    {
        Outcome const outcome = list(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome.out;
    }

    json jobs(std::string const& file = "x.ulist") const
    {
        return toolkit::from_json_text(done({"show", file, "--json"})).at("jobs");
    }
    std::string path(char const* name) const { return (folder() / name).string(); }
};

TEST_F(ListCommand, RefusesWhatAJobDoesNotHold)
{
    done({"add", "x.ulist", "hill.tga"});
    Bytes const before = read("x.ulist");
    for (char const* option : {"--depth=16", "--round=nearest", "--dither", "--compression=fast", "--invert",
                               "--height-range=0,1", "--replace-invalid=0", "--height-from=r"}) {
        std::string const text = option;
        std::string const name = text.substr(0, text.find('='));
        for (Arguments const& start :
             {Arguments{"add", "x.ulist", "hill.tga"}, Arguments{"set", "x.ulist", "1"}}) {
            Arguments words = start;
            words.emplace_back(option);
            Outcome const outcome = list(words);
            EXPECT_EQ(outcome.code, 2) << option;
            EXPECT_TRUE(complains_about(outcome, "umbrix list " + start[0], name));
            EXPECT_NE(outcome.err.find("umbrix list run"), std::string::npos) << outcome.err;
        }
    }
    EXPECT_EQ(read("x.ulist"), before);
    std::string const help = done({"add", "--help"});
    EXPECT_EQ(help.find("--depth"), std::string::npos) << help;
}

TEST_F(ListCommand, TellsThatAJobDoesNotHoldThePresetsDepth)
{
    write_text("p.toml", "save_depth = '16'\nrays = 9\n");
    for (Arguments const& words : {Arguments{"add", "x.ulist", "hill.tga", "--preset", "p.toml"},
                                   {"set", "x.ulist", "1", "--preset", "p.toml"}}) {
        Outcome const outcome = list(words);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.err,
                  "umbrix list " + words[0] +
                      ": note: a job does not hold the save_depth of the preset; umbrix list run "
                      "--depth 16 saves so\n");
        EXPECT_EQ(jobs()[0].at("rays"), 9);
    }
}

TEST_F(ListCommand, AddsFilesWithTheirKindAndAStrengthThatFits)
{
    std::string const told = done({"add", "x.ulist", "hill.tga", "flat.tga"});
    EXPECT_EQ(told, "x.ulist: job 1: hill.tga: height map (guessed: it has no colour)\n"
                    "x.ulist: job 2: flat.tga: normal map (guessed: its colours are normals)\n");
    json const all = jobs();
    ASSERT_EQ(all.size(), 2U);
    json const& first = all[0];
    EXPECT_EQ(first.at("filename"), path("hill.tga"));
    EXPECT_EQ(first.at("search_str"), "");
    EXPECT_EQ(first.at("calc_type"), 2);
    EXPECT_EQ(first.at("height_map"), true);
    EXPECT_EQ(first.at("generate_normal"), true);
    EXPECT_EQ(first.at("no_normal"), false);
    EXPECT_EQ(first.at("rays"), 128);
    EXPECT_EQ(first.at("h_scale"), 0.05);
    EXPECT_EQ(first.at("n_scale"), 0.8); // relief 0.05 * width 32 / 2
    EXPECT_EQ(first.at("blend_height"), false);
    EXPECT_EQ(first.at("layers"), json::array());
    EXPECT_EQ(all[1].at("height_map"), false);
    EXPECT_EQ(all[1].at("generate_normal"), false);
}

TEST_F(ListCommand, AddsWithTheOptionsOfAMap)
{
    done({"add",
          "x.ulist",
          "hill.tga",
          "--normal-map",
          "--no-light",
          "--rays",
          "7",
          "--h-scale",
          "0.5",
          "--n-scale",
          "3",
          "--mode",
          "flat",
          "--detail",
          "4",
          "--h-max",
          "9",
          "--no-h-tile",
          "--height-in-alpha",
          "--smooth",
          "1.5"});
    json const job = jobs().at(0);
    EXPECT_EQ(job.at("calc_type"), 5);
    EXPECT_EQ(job.at("no_normal"), true);
    EXPECT_EQ(job.at("height_map"), false);
    EXPECT_EQ(job.at("rays"), 7);
    EXPECT_EQ(job.at("h_scale"), 0.5);
    EXPECT_EQ(job.at("n_scale"), 3.0);
    EXPECT_EQ(job.at("UmbrixMode"), 2);
    EXPECT_EQ(job.at("L_Detail"), 4.0);
    EXPECT_EQ(job.at("h_max"), 9);
    EXPECT_EQ(job.at("tile"), true);
    EXPECT_EQ(job.at("h_tile"), false);
    EXPECT_EQ(job.at("preserve"), true);
    EXPECT_EQ(job.at("smooth"), 1.5);
}

TEST_F(ListCommand, AddsFoldersWithAPattern)
{
    done({"add", "x.ulist", "more", "--height-map", "--n-scale", "2"});
    done({"add", "x.ulist", "./more/", "--normal-map", "--search", "*_n.tga"});
    json const all = jobs();
    EXPECT_EQ(all[0].at("filename"), path("more"));
    EXPECT_EQ(all[0].at("search_str"), "*.*");
    EXPECT_EQ(all[1].at("filename"), path("more/"));
    EXPECT_EQ(all[1].at("search_str"), "*_n.tga");
}

TEST_F(ListCommand, AsksForWhatCannotBeWorkedOutForAFolder)
{
    std::set<std::string> const before = files();
    std::pair<Arguments, char const*> const kCases[] = {
        {{"more"}, "more"},
        {{"more", "--height-map"}, "more"},
        {{"more", "--normal-map", "--generate-normal"}, "more"},
        {{"hill.tga", "--search", "*.tga"}, "--search"},
    };
    for (auto const& [more, subject] : kCases) {
        Arguments arguments{"add", "x.ulist"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Outcome const outcome = list(arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_TRUE(complains_about(outcome, "umbrix list add", subject));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(ListCommand, AddsAllSourcesOrNone)
{
    write("junk.tga", {1, 2, 3, 4, 5});
    std::set<std::string> const before = files();
    for (char const* bad : {"junk.tga", "none.tga"}) {
        Outcome const outcome = list({"add", "x.ulist", "hill.tga", bad});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix list add", bad));
        EXPECT_EQ(files(), before);
    }
    done({"add", "x.ulist", "hill.tga"});
    Bytes const old = read("x.ulist");
    EXPECT_EQ(list({"add", "x.ulist", "flat.tga", "junk.tga"}).code, 1);
    EXPECT_EQ(read("x.ulist"), old);
}

TEST_F(ListCommand, AddsLayersAsTheLibraryReadsThem)
{
    write("wide.tga", hill(64));
    write_text("s.toml", "normal_scale = 2\n[[layer]]\nfile = 'wide.tga'\ngaussian = 1.5\n"
                         "[[layer]]\nfile = 'hill.tga'\nblend = 'add'\nopacity = 30\nn_scale = 4\n");
    done({"add", "x.ulist", "hill.tga", "--layers", "s.toml"});
    json const job = jobs().at(0);
    EXPECT_EQ(job.at("blend_height"), true);
    json const& layers = job.at("layers");
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(layers[0].at("filename"), path("wide.tga"));
    EXPECT_EQ(layers[0].at("blend_mode"), 3) << "how the next one joins";
    EXPECT_EQ(layers[0].at("opacity"), 30.0);
    EXPECT_EQ(layers[0].at("n_scale"), 1.6); // relief 0.05 * width 64 / 2
    EXPECT_EQ(layers[0].at("gaussian"), 1.5);
    EXPECT_EQ(layers[0].at("normal_scale"), 2.0);
    EXPECT_EQ(layers[1].at("n_scale"), 4.0);

    write_text("n.toml", "[[layer]]\nfile = 'wide.tga'\n[[layer]]\nfile = 'flat.tga'\nkind = 'normal'\n");
    Outcome const outcome = list({"add", "y.ulist", "hill.tga", "--layers", "n.toml"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix list add", "n.toml: layer 2: kind"));
}

TEST_F(ListCommand, ShowsATable)
{
    write("x.ulist", golden_list());
    std::string const text = done({"show", "x.ulist"});
    EXPECT_EQ(text.rfind("x.ulist: 2 jobs\n", 0), 0U) << text;
    EXPECT_NE(
        text.find("    1  normal  light and occlusion  flat        16909060      1.5       2.5      12.5  "
                  "     2  a.tga (*.tga)\n"),
        std::string::npos)
        << text;
    write("empty.ulist", list_head(0));
    EXPECT_EQ(done({"show", "empty.ulist"}), "empty.ulist: 0 jobs\n");
    EXPECT_EQ(jobs("empty.ulist"), json::array());
}

TEST_F(ListCommand, ShowsOddTextWithoutHarmToTheTerminal)
{
    write("x.ulist", joined({list_head(1), job_block(), text_bytes("a\x1b[2J\xff\xc3\xa9\xc2\x9b.tga"),
                             text_bytes(""), number_bytes(0)}));
    std::string const name = "a\x1b[2J\xff\xc3\xa9\xc2\x9b.tga";
    EXPECT_NE(done({"show", "x.ulist"}).find(name + "\n"), std::string::npos);
    EXPECT_EQ(jobs().at(0).at("filename"), name);
}

TEST_F(ListCommand, RemovesJobsByTheNumbersThatTheyHadBefore)
{
    write("x.ulist", joined({list_head(0)}));
    for (char const* name : {"1.tga", "2.tga", "3.tga", "4.tga"}) {
        write(name, hill(8));
        done({"add", "x.ulist", name});
    }
    EXPECT_EQ(done({"remove", "x.ulist", "3", "1", "3"}), "x.ulist: 2 jobs removed, 2 left\n");
    EXPECT_EQ(jobs().at(0).at("filename"), path("2.tga"));
    EXPECT_EQ(jobs().at(1).at("filename"), path("4.tga"));
    Bytes const old = read("x.ulist");
    for (char const* wrong : {"0", "3", "2147483647"}) {
        Outcome const outcome = list({"remove", "x.ulist", "1", wrong});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix list remove", "x.ulist"));
        EXPECT_EQ(read("x.ulist"), old);
    }
    done({"remove", "x.ulist", "1", "2"});
    EXPECT_EQ(read("x.ulist"), list_head(0));
}

TEST_F(ListCommand, SetChangesWhatIsNamedAndNothingElse)
{
    struct Case {
        Arguments options;
        std::size_t at; ///< In the job's block.
        Bytes value;
    };
    Case const kCases[] = {
        {{"--rays", "5"}, 8, number_bytes(5)},
        {{"--max", "200"}, 56, {200}},
        {{"--h-min", "3"}, 59, {3}},
        {{"--tile"}, 60, {1}},
        {{"--mode", "squared"}, 64, number_bytes(3)},
        {{"--height-in-alpha"}, 6, {1}},
        {{"--detail", "0.5"}, 80, {0, 0, 0, 0x3f}},
        {{"--h-scale", "0.5"}, 16, {0, 0, 0, 0x3f}},
        {{"--relief", "0.5"}, 16, {0, 0, 0, 0x3f}},
        {{"--n-scale", "0.5"}, 72, {0, 0, 0, 0x3f}},
        {{"--smooth", "0.5"}, 44, {0, 0, 0, 0x3f}},
        {{"--h-smooth", "0.5"}, 48, {0, 0, 0, 0x3f}},
    };
    Bytes list_bytes = golden_list();
    list_bytes[8 + 58] = 0; // min, which is above max in there
    list_bytes[8 + 59] = 0;
    for (Case const& each : kCases) {
        write("x.ulist", list_bytes);
        Arguments arguments{"set", "x.ulist", "1"};
        arguments.insert(arguments.end(), each.options.begin(), each.options.end());
        done(arguments);
        Bytes expected = list_bytes;
        std::copy(each.value.begin(), each.value.end(),
                  expected.begin() + 8 + static_cast<std::ptrdiff_t>(each.at));
        EXPECT_EQ(read("x.ulist"), expected) << each.options[0];
    }
}

TEST_F(ListCommand, SetSwitchesLightAndOcclusionTogether)
{
    done({"add", "x.ulist", "hill.tga"});
    auto const set = [&](char const* option) {
        done({"set", "x.ulist", "1", option});
        json const job = jobs().at(0);
        return std::tuple(job.at("calc_type").get<int>(), job.at("no_normal").get<bool>(),
                          job.at("generate_normal").get<bool>());
    };
    EXPECT_EQ(set("--no-light"), std::tuple(5, true, false));
    EXPECT_EQ(set("--light"), std::tuple(2, false, true));
    EXPECT_EQ(set("--no-occlusion"), std::tuple(0, false, true));
    EXPECT_EQ(set("--normal-map"), std::tuple(0, false, true)) << "which is told to make normals by now";
    EXPECT_EQ(set("--no-generate-normal"), std::tuple(0, false, false));
    EXPECT_EQ(set("--height-map"), std::tuple(0, false, true));
    Outcome const neither = list({"set", "x.ulist", "1", "--no-light"});
    EXPECT_EQ(neither.code, 2);
    EXPECT_TRUE(complains_about(neither, "umbrix list set", "--no-light"));
}

TEST_F(ListCommand, SetFitsTheNormalsToTheReliefIfAsked)
{
    done({"add", "x.ulist", "hill.tga"});
    Outcome const relief = list({"set", "x.ulist", "1", "--relief", "0.1"});
    EXPECT_EQ(relief.code, 0);
    EXPECT_EQ(relief.err,
              "umbrix list set: note: the strength of the normals stays 0.8; --n-scale auto fits it "
              "to the relief\n");
    EXPECT_EQ(jobs().at(0).at("n_scale"), 0.8);
    EXPECT_EQ(list({"set", "x.ulist", "1", "--n-scale", "auto"}).err, "");
    EXPECT_EQ(jobs().at(0).at("n_scale"), 1.6);
    EXPECT_EQ(jobs().at(0).at("h_scale"), 0.1);
}

TEST_F(ListCommand, SetReplacesLayersAndPattern)
{
    write_text("s.toml", "[[layer]]\nfile = 'hill.tga'\n");
    done({"add", "x.ulist", "hill.tga"});
    done({"set", "x.ulist", "1", "--layers", "s.toml", "--search", "*.png"});
    json job = jobs().at(0);
    EXPECT_EQ(job.at("layers").size(), 1U);
    EXPECT_EQ(job.at("blend_height"), true);
    EXPECT_EQ(job.at("search_str"), "*.png");
    done({"set", "x.ulist", "1", "--layers", "s.toml"});
    EXPECT_EQ(jobs().at(0).at("layers").size(), 1U);
    done({"set", "x.ulist", "1", "--no-layers"});
    job = jobs().at(0);
    EXPECT_EQ(job.at("layers").size(), 0U);
    EXPECT_EQ(job.at("blend_height"), false);
    EXPECT_EQ(list({"set", "x.ulist", "2", "--rays", "3"}).code, 1);
}

TEST_F(ListCommand, RefusesAListThatIsCutOff)
{
    Bytes const whole = golden_list();
    for (std::size_t size = 0; size < whole.size(); size += size < 16 || size > whole.size() - 16 ? 1 : 5) {
        Bytes const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        write("x.ulist", cut);
        Outcome const outcome = list({"remove", "x.ulist", "1"});
        EXPECT_EQ(outcome.code, 1) << size;
        EXPECT_TRUE(complains_about(outcome, "umbrix list remove", "x.ulist")) << size;
        EXPECT_EQ(read("x.ulist"), cut);
    }
}

TEST_F(ListCommand, RefusesWhatIsNoWholeListAndSaysWhy)
{
    Bytes const head = joined({list_head(1), job_block()});
    std::pair<Bytes, std::string> const kCases[] = {
        {{}, "it is empty"},
        {{1, 2, 3}, "it is too short for a work list"},
        {hill(8), "it is no work list"},
        {joined({{0, 0, 0xa0, 0x40}, number_bytes(0)}), "it is of version 5, and only 5.2 can be read"},
        {list_head(1), "it is damaged: it ends within job 1 of 1"},
        {list_head(0x7fffffff), "it is damaged: it ends within job 1 of 2147483647"},
        {list_head(0xffffffff), "it is damaged: the number of jobs of the list is -1"},
        {joined({list_head(0), {7}}), "it is damaged: 1 bytes follow its last job"},
        {joined({head, number_bytes(0x80000000)}),
         "it is damaged: the length of the source in job 1 of 1 is -2147483648"},
        {joined({head, text_bytes("a"), number_bytes(0x7fffffff)}),
         "it is damaged: it ends within job 1 of 1"},
        {joined({head, text_bytes(std::string("a\0b", 3)), text_bytes(""), number_bytes(0)}),
         "it is damaged: the source in job 1 of 1 holds a zero byte"},
        {joined({head, text_bytes("a"), text_bytes("b"), number_bytes(0xfffffffe)}),
         "it is damaged: the number of layers of job 1 of 1 is -2"},
        {joined({head, text_bytes("a"), text_bytes("b"), number_bytes(1), text_bytes("f")}),
         "it is damaged: it ends within job 1 of 1"},
    };
    for (auto const& [bytes, why] : kCases) {
        write("x.ulist", bytes);
        std::set<std::string> const before = files();
        for (Arguments const& arguments : {Arguments{"show", "x.ulist"},
                                           {"add", "x.ulist", "hill.tga"},
                                           {"remove", "x.ulist", "1"},
                                           {"set", "x.ulist", "1", "--rays", "3"},
                                           {"export", "x.ulist", "-o", "x.toml"}}) {
            Outcome const outcome = list(arguments);
            EXPECT_EQ(outcome.code, 1) << why;
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err.rfind("umbrix list " + arguments[0] + ": error: x.ulist: " + why + "; ", 0),
                      0U)
                << outcome.err;
            EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
            EXPECT_EQ(read("x.ulist"), bytes);
            EXPECT_EQ(files(), before);
        }
    }
    EXPECT_TRUE(complains_about(list({"show", "more"}), "umbrix list show", "more"));
    EXPECT_TRUE(complains_about(list({"show", "/dev/null"}), "umbrix list show", "/dev/null"));
    EXPECT_TRUE(complains_about(list({"show", "none"}), "umbrix list show", "none"));
    EXPECT_TRUE(complains_about(list({"add", "more", "hill.tga"}), "umbrix list add", "more"));
    EXPECT_TRUE(complains_about(list({"add", "no/x.ulist", "hill.tga"}), "umbrix list add", "no/x.ulist"));
}

TEST_F(ListCommand, KeepsTheOldListIfTheNewOneDoesNotFit)
{
    write("x.ulist", golden_list());
    std::set<std::string> const before = files();
    Outcome const outcome = run({"list", "remove", "x.ulist", "2"}, {}, [] {
        rlimit const limit{100, 100}; // bytes of a file
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, SIG_IGN);
    });
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix list remove", "x.ulist"));
    EXPECT_EQ(read("x.ulist"), golden_list());
    EXPECT_EQ(files(), before);
}

TEST_F(ListCommand, LeavesALinkALink)
{
    write("real.ulist", golden_list());
    std::filesystem::create_symlink("real.ulist", folder() / "x.ulist");
    done({"remove", "x.ulist", "1"});
    EXPECT_TRUE(std::filesystem::is_symlink(folder() / "x.ulist"));
    EXPECT_EQ(jobs("real.ulist").size(), 1U);
}

} // namespace
} // namespace umbrixlib::test
