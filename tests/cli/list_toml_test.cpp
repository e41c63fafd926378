// SPDX-License-Identifier: MIT
/// Work lists as TOML and back.
#include "list_bytes.h"
#include "tool.h"

#include <random>

namespace umbrixlib::test {
namespace {

class ListToml : public ToolTest {
protected:
    void write_text(std::string const& name, std::string const& text) const
    {
        write(name, Bytes(text.begin(), text.end()));
    }

    std::string exported(Bytes const& list_file) const
    {
        write("x.ulist", list_file);
        Outcome const outcome = run({"list", "export", "x.ulist"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome.out;
    }

    Outcome import(std::string const& toml) const
    {
        write_text("x.toml", toml);
        return run({"list", "import", "x.toml", "-o", "y.ulist", "--overwrite"});
    }

    void expect_to_come_back(Bytes const& list_file) const
    {
        Outcome const outcome = import(exported(list_file));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(read("y.ulist"), list_file);
    }
};

Bytes job_with(std::string const& source, std::string const& pattern = "")
{
    return joined({job_block(), text_bytes(source), text_bytes(pattern), number_bytes(0)});
}

/// A job whose floats are all @p bits.
Bytes job_with_floats(std::uint32_t bits)
{
    Bytes block = job_block();
    Bytes const value = number_bytes(bits);
    for (std::size_t at = 12; at < 56; at += 4) {
        std::copy(value.begin(), value.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
    }
    for (std::size_t at = 72; at < 84; at += 4) {
        std::copy(value.begin(), value.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return joined({block, text_bytes(""), text_bytes(""), number_bytes(0)});
}

TEST_F(ListToml, TellsEveryFieldByItsName)
{
    std::string const toml = exported(golden_list());
    for (char const* line : {"[[job]]",
                             "filename = \"a.tga\"",
                             "search_str = \"*.tga\"",
                             "calc_type = 5",
                             "quiet = true",
                             "rays = 16909060",
                             "radius = 1.5",
                             "b_radius = 11.5",
                             "max = 11",
                             "h_min = 14",
                             "blend_height = true",
                             "UmbrixMode = 2",
                             "normal_flag_1 = false",
                             "normal_flag_2 = true",
                             "L_Detail = 14.5",
                             "mode = -2",
                             "[[job.layer]]",
                             "filename = \"low.png\"",
                             "name = \"Low\"",
                             "blend_mode = 3",
                             "opacity = 0.5",
                             "edge_b = 7.5",
                             "spare_flag = true"}) {
        EXPECT_NE(toml.find("\n" + std::string(line) + "\n"), std::string::npos) << line;
    }
}

TEST_F(ListToml, GivesTheSameBytesBack)
{
    expect_to_come_back(golden_list());
    expect_to_come_back(list_head(0));
}

TEST_F(ListToml, KeepsEveryFloat)
{
    std::vector<std::uint32_t> bits{0,           0x80000000U, 1U,          0x807fffffU, 0x00800000U,
                                    0x7f7fffffU, 0xff7fffffU, 0x7f800000U, 0xff800000U, 0x7fc00000U,
                                    0xffc00000U, 0x7fc00001U, 0x7f800001U, 0xffffffffU, 0x3dcccccdU,
                                    0x4b800000U, 0x501502f9U};
    std::mt19937 random(3);
    for (int i = 0; i < 2000; ++i) {
        bits.push_back(static_cast<std::uint32_t>(random()));
    }
    Bytes all = list_head(static_cast<std::uint32_t>(bits.size()));
    for (std::uint32_t const each : bits) {
        Bytes const job = job_with_floats(each);
        all.insert(all.end(), job.begin(), job.end());
    }
    expect_to_come_back(all);
}

TEST_F(ListToml, KeepsEveryText)
{
    std::vector<std::string> texts{"",
                                   " ",
                                   "\"",
                                   "\\",
                                   "\\u0041",
                                   "a\"b\\c",
                                   "100%",
                                   "%41",
                                   "'",
                                   "'''",
                                   "#",
                                   "\n\r\t\b\f\x1b\x7f",
                                   "caf\xc3\xa9",
                                   "caf\xe9.png",
                                   "%\xff%",
                                   "\xc0\x80",
                                   "\xed\xa0\x80",
                                   "\xf4\x90\x80\x80",
                                   "\xf0\x9f\x99\x82",
                                   "\xef\xbf\xbf",
                                   "\xef\xbb\xbf",
                                   "\xc2\x85",
                                   "\xe2\x80\xa8",
                                   "\xe2\x82"};
    std::mt19937 random(4);
    for (int i = 0; i < 1000; ++i) {
        std::string text(random() % 12, ' ');
        for (char& each : text) {
            each = static_cast<char>(1 + random() % 255);
        }
        texts.push_back(text);
    }
    for (int byte = 1; byte < 256; ++byte) {
        texts.push_back(std::string(1, static_cast<char>(byte)));
    }
    Bytes all = list_head(static_cast<std::uint32_t>(texts.size()));
    for (std::string const& text : texts) {
        Bytes const job = joined({job_block(), text_bytes(text), text_bytes(text), number_bytes(1),
                                  text_bytes(text), text_bytes(text), layer_block()});
        all.insert(all.end(), job.begin(), job.end());
    }
    expect_to_come_back(all);
    EXPECT_NE(exported(joined({list_head(1), job_with("caf\xe9 100%")}))
                  .find("filename = { bytes = \"caf%E9 100%25\" }\n"),
              std::string::npos);
}

TEST_F(ListToml, KeepsWholeNumbersAtTheirEnds)
{
    for (std::uint32_t const value : {0x7fffffffU, 0x80000000U, 0xffffffffU, 1U}) {
        Bytes block = job_block();
        Bytes const bytes = number_bytes(value);
        for (std::ptrdiff_t const at : {0, 8, 64, 88}) {
            std::copy(bytes.begin(), bytes.end(), block.begin() + at);
        }
        for (std::ptrdiff_t const at : {56, 57, 58, 59}) {
            *(block.begin() + at) = static_cast<std::uint8_t>(value);
        }
        expect_to_come_back(joined({list_head(1), block, text_bytes(""), text_bytes(""), number_bytes(0)}));
    }
}

TEST_F(ListToml, WritesFilesAndReplacesThemOnlyIfAsked)
{
    write("x.ulist", golden_list());
    EXPECT_EQ(run({"list", "export", "x.ulist", "-o", "x.toml"}).out, "wrote x.toml: 2 jobs of x.ulist\n");
    Bytes const toml = read("x.toml");
    EXPECT_TRUE(
        complains_about(run({"list", "export", "x.ulist", "-o", "x.toml"}), "umbrix list export", "x.toml"));
    EXPECT_EQ(run({"list", "export", "x.ulist", "-o", "x.toml", "--overwrite"}).code, 0);
    EXPECT_EQ(read("x.toml"), toml);

    EXPECT_TRUE(complains_about(run({"list", "import", "x.toml"}), "umbrix list import", "x.ulist"));
    EXPECT_EQ(run({"list", "import", "x.toml", "--overwrite"}).out, "wrote x.ulist: 2 jobs\n");
    EXPECT_EQ(read("x.ulist"), golden_list());
    EXPECT_EQ(run({"list", "import", "x.toml", "-o", "y.ulist"}).code, 0);
    EXPECT_EQ(read("y.ulist"), golden_list());

    for (Arguments const& onto_itself :
         {Arguments{"list", "export", "x.ulist", "-o", "./x.ulist", "--overwrite"},
          Arguments{"list", "import", "x.toml", "-o", "./x.toml", "--overwrite"}}) {
        EXPECT_EQ(run(onto_itself).code, 2);
    }
    EXPECT_EQ(read("x.ulist"), golden_list());
    EXPECT_EQ(read("x.toml"), toml);
}

TEST_F(ListToml, RefusesWhatItDoesNotUnderstand)
{
    std::string const good =
        exported(joined({list_head(1), job_block(), text_bytes("a"), text_bytes("b"), number_bytes(1),
                         text_bytes("f"), text_bytes("n"), layer_block()}));
    ASSERT_EQ(import(good).code, 0);
    Bytes const old = read("y.ulist");
    struct Case {
        std::string line;
        std::string replaced;
        std::string subject; ///< Up to the number of the line.
        std::string what;
    };
    Case const kCases[] = {
        {"rays = 16909060", "rays = 1.5", "job 1: rays (line ", "it is not a whole number of its range"},
        {"rays = 16909060", "rays = 2147483648", "job 1: rays (line ",
         "it is not a whole number of its range"},
        {"rays = 16909060", "rays = '3'", "job 1: rays (line ", "it is not a whole number of its range"},
        {"max = 11", "max = 256", "job 1: max (line ", "it is not a whole number of its range"},
        {"max = 11", "max = -1", "job 1: max (line ", "it is not a whole number of its range"},
        {"quiet = true", "quiet = 1", "job 1: quiet (line ", "it is neither true nor false"},
        {"radius = 1.5", "radius = true", "job 1: radius (line ", "it is not a number"},
        {"radius = 1.5", "radius = 'high'", "job 1: radius (line ", "it is not a number"},
        {"radius = 1.5", "radius = '0x7fc0000'", "job 1: radius (line ", "it is not a number"},
        {"radius = 1.5", "radius = 1e39", "job 1: radius (line ", "it is too large"},
        {"filename = \"a\"", "filename = 3", "job 1: filename (line ", "it is not a text"},
        {"filename = \"a\"", "filename = \"a\\u0000\"", "job 1: filename (line ",
         "it holds a zero byte, which no list can"},
        {"filename = \"a\"", "filename = { bytes = \"%0\" }", "job 1: filename (line ",
         "a % without two hexadecimal digits"},
        {"filename = \"a\"", "filename = { bytes = \"%00\" }", "job 1: filename (line ",
         "it holds a zero byte, which no list can"},
        {"filename = \"a\"", "filename = { text = \"a\" }", "job 1: filename (line ", "it is not a text"},
        {"filename = \"a\"\n", "", "job 1 (line ", "filename: it is missing"},
        {"mode = -2\n", "", "job 1 (line ", "mode: it is missing"},
        {"mode = -2\n", "mode = -2\ncolour = 3\n", "job 1: colour (line ", "there is no such field"},
        {"edge_b = 7.5\n", "", "job 1: layer 1 (line ", "edge_b: it is missing"},
        {"edge_b = 7.5\n", "edge_b = 7.5\nregenerate = true\n", "job 1: layer 1: regenerate (line ",
         "there is no such field"},
        {"[[job]]", "[job]", "job (line ", "it is not a list of tables"},
        {"[[job]]", "colour = 1\n[[job]]", "colour (line ", "there is no such field"},
    };
    for (Case const& each : kCases) {
        std::string toml = good;
        std::size_t const at = toml.find("\n" + each.line);
        ASSERT_NE(at, std::string::npos) << each.line;
        toml.replace(at + 1, each.line.size(), each.replaced);
        Outcome const outcome = import(toml);
        EXPECT_EQ(outcome.code, 1) << each.replaced;
        EXPECT_EQ(outcome.err.rfind("umbrix list import: error: x.toml: " + each.subject, 0), 0U)
            << outcome.err;
        EXPECT_NE(outcome.err.find("): " + each.what + "; "), std::string::npos) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(read("y.ulist"), old);
    }
    for (std::string const text :
         {"# nothing", "[[job]\n", "job = 3\n", "job = [1]\n", "a = \xff\n", "[[layer]]\n"}) {
        Outcome const outcome = import(text);
        EXPECT_EQ(outcome.code, 1) << text;
        EXPECT_EQ(outcome.err.rfind("umbrix list import: error: x.toml: ", 0), 0U) << outcome.err;
        EXPECT_EQ(read("y.ulist"), old);
    }
    EXPECT_TRUE(complains_about(run({"list", "import", "none.toml"}), "umbrix list import", "none.toml"));
}

} // namespace
} // namespace umbrixlib::test
