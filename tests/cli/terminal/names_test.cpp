// SPDX-License-Identifier: MIT
/// Names of files on a terminal, and for a script.
#include "terminal.h"

#include "toolkit/base/json_text.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

class TerminalNames : public ToolTest {
protected:
    TerminalNames() { write("hill.tga", hill(16)); }

    void put(std::string const& name, std::string const& text) const
    {
        write(name, Bytes(text.begin(), text.end()));
    }

    std::string complaint(Arguments const& arguments) const
    {
        return run_on_terminal(folder(), arguments, with_scratch(), {STDERR_FILENO}).text;
    }
};

TEST_F(TerminalNames, QuotesControlCharactersAsNumbers)
{
    put("s.toml", "[[layer]]\nfile = 'hill.tga'\nkind = \"\\u001b[2J\\u0085\\u202e\"\n");
    EXPECT_EQ(complaint({"stack", "s.toml"})
                  .find("umbrix stack: error: s.toml: layer 1: kind (line 3): "
                        "'\\x1B[2J\\u0085\\u202E' is no kind of layer; "),
              0U);
    EXPECT_NE(complaint({"map", "hill.tga", "--\x1b[2J\n\xff"}).find(" --\\x1B[2J\\x0A\\xFF; see "),
              std::string::npos);
    EXPECT_EQ(complaint({"map", "a\nb.tga"}).find("umbrix map: error: a\\x0Ab.tga: "), 0U);
    EXPECT_EQ(run({"map", "a\nb.tga"}).err.find("umbrix map: error: a\nb.tga: "), 0U);
    put("p.toml", "light = fal\n");
    std::string const cut_off = complaint({"map", "hill.tga", "--preset", "p.toml"});
    EXPECT_NE(cut_off.find("'fal\\x0A'; "), std::string::npos) << cut_off;
    EXPECT_EQ(cut_off.find('\n'), cut_off.size() - 1) << cut_off;
}

TEST_F(TerminalNames, ControlNoTerminalAndReachAScriptAsTheyAre)
{
    std::string const name = "a\x1b[2J\n\u202Egnp\u200B\xff";
    std::string const shown = "a\\x1B[2J\\x0A\\u202Egnp\\u200B\\xFF";
    std::string const source = name + ".tga";
    write(source, hill(8));
    put(name + ".toml", "[[layer]]\nfile = 'hill.tga'\n");
    std::filesystem::create_directory(folder() / name);
    write(name + "/b.tga", hill(8));
    Arguments const commands[] = {
        Arguments{"map", source, "--rays", "1", "--overwrite"},
        Arguments{"normal", source, "--overwrite"},
        Arguments{"relight", source, "--overwrite"},
        Arguments{"convert", source, "-o", name + ".png", "--overwrite"},
        Arguments{"info", source},
        Arguments{"fit", source, name + "_Normal.tga", "--save-preset", name + "_fit.toml", "--overwrite"},
        Arguments{"stack", name + ".toml", "-o", name + "_stack.dds", "--overwrite"},
        Arguments{"stack", "--new", name + "_new.toml", "--overwrite"},
        Arguments{"preset", "save", name + "_preset.toml", "--overwrite"},
        Arguments{"preset", "show", name + "_preset.toml"},
        Arguments{"batch", name, "--rays", "1", "--dry-run", "--overwrite"},
        Arguments{"batch", name, "--rays", "1", "--overwrite"},
        Arguments{"batch", source, "--rays", "1", "--overwrite", "--progress", "lines"},
        Arguments{"list", "add", name + ".ulist", source},
        Arguments{"list", "set", name + ".ulist", "1", "--rays", "1"},
        Arguments{"list", "show", name + ".ulist"},
        Arguments{"list", "run", name + ".ulist", "--overwrite"},
        Arguments{"list", "export", name + ".ulist", "-o", name + "_list.toml", "--overwrite"},
        Arguments{"list", "import", name + "_list.toml", "--overwrite"},
        Arguments{"list", "remove", name + ".ulist", "1"},
    };
    for (Arguments const& arguments : commands) {
        Shown const on_terminal = run_on_terminal(folder(), arguments, with_scratch());
        std::string const& text = on_terminal.text;
        EXPECT_EQ(on_terminal.outcome.code, 0) << testing::PrintToString(arguments) << text;
        EXPECT_NE(text.find(shown), std::string::npos) << testing::PrintToString(arguments) << text;
        for (char const* hidden : {"a\x1b[2J", "[2J\n", "\u202E", "\u200B", "\xff"}) {
            EXPECT_EQ(text.find(hidden), std::string::npos) << testing::PrintToString(arguments) << text;
        }
    }
    for (Arguments const& arguments : commands) {
        Outcome const outcome = run(arguments);
        std::string const said = outcome.out + outcome.err;
        EXPECT_EQ(outcome.code, 0) << testing::PrintToString(arguments) << said;
        EXPECT_NE(said.find(name), std::string::npos) << testing::PrintToString(arguments) << said;
        EXPECT_EQ(said.find(shown), std::string::npos) << testing::PrintToString(arguments) << said;
    }
}

TEST_F(TerminalNames, AreEscapedOnTheStreamThatIsATerminal)
{
    std::string const name = "a\u202Eb";
    write(name + ".tga", hill(8));
    Arguments const arguments{"map", name + ".tga", "-o", name + ".jpg", "--overwrite", "--rays", "1"};
    Shown const errors = run_on_terminal(folder(), arguments, with_scratch(), {STDERR_FILENO});
    EXPECT_EQ(errors.outcome.out.find("wrote a\u202Eb.jpg: "), 0U) << errors.outcome.out;
    EXPECT_NE(errors.text.find("umbrix map: note: a\\u202Eb.jpg: "), std::string::npos) << errors.text;
    Shown const results = run_on_terminal(folder(), arguments, with_scratch(), {STDOUT_FILENO});
    EXPECT_EQ(results.text.find("wrote a\\u202Eb.jpg: "), 0U) << results.text;
    EXPECT_NE(results.outcome.err.find("umbrix map: note: a\u202Eb.jpg: "), std::string::npos)
        << results.outcome.err;
}

TEST_F(TerminalNames, InJsonAreTheSameOnATerminal)
{
    std::string const name = "a\u202E\xff.tga";
    write(name, hill(8));
    std::string const text = run_on_terminal(folder(), {"info", name, "--json"}, with_scratch()).text;
    EXPECT_NE(text.find("\"a\\u202e\\udcff.tga\""), std::string::npos) << text;
    EXPECT_EQ(toolkit::from_json_text(text).at("file"), name);
    std::string const in_pipe = run({"info", name, "--json"}).out;
    EXPECT_NE(in_pipe.find("\"a\u202E\\udcff.tga\""), std::string::npos) << in_pipe;
    EXPECT_EQ(toolkit::from_json_text(in_pipe), toolkit::from_json_text(text));
}

TEST_F(TerminalNames, InAListAsTextAreTheSameOnATerminal)
{
    std::string const name = "a\u202E\u009B.tga";
    write(name, hill(8));
    ASSERT_EQ(run({"list", "add", "x.ulist", name}).code, 0);
    std::string const text = run_on_terminal(folder(), {"list", "export", "x.ulist"}, with_scratch()).text;
    EXPECT_NE(text.find("/a\\u202E\\u009B.tga\""), std::string::npos) << text;
    put("x.toml", text);
    ASSERT_EQ(run({"list", "import", "x.toml", "-o", "y.ulist"}).code, 0);
    EXPECT_EQ(read("y.ulist"), read("x.ulist"));
}

} // namespace
} // namespace umbrixlib::test
