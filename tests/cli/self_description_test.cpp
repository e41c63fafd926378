// SPDX-License-Identifier: MIT
/// What the tool says of itself to man and to shells.
#include "tool.h"

#include <fstream>

namespace umbrixlib::test {
namespace {

class SelfDescription : public ToolTest {
protected:
    /// What a program prints that is given a file of the test.
    std::string shell(std::string const& command) const
    {
        std::string const line = "cd '" + folder().string() + "' && { " + command + "; } 2>&1";
        FILE* const pipe = popen(line.c_str(), "r");
        std::string out;
        for (int c = 0; (c = std::fgetc(pipe)) != EOF;) {
            out += static_cast<char>(c);
        }
        out += pclose(pipe) == 0 ? "" : " [failed]";
        return out;
    }

    void save(std::string const& name, std::string const& text) const
    {
        std::ofstream(folder() / name) << text;
    }

    /// The offers of the bash completion for a command line whose last word is being typed.
    std::string bash_offers(std::string const& words) const
    {
        save("offers.bash",
             run({"completion", "bash"}).out + "COMP_WORDS=(" + words +
                 ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_umbrix\necho -n \"${COMPREPLY[*]}\"\n");
        return shell("bash offers.bash");
    }

    /// What the tab key makes of a command line in zsh, which needs a terminal for that. It takes the
    /// completion from the file _umbrix.
    std::string zsh_completes(std::string const& line) const
    {
        save("offers.zsh", R"(zmodload zsh/zpty
zpty inner zsh -f -i
zpty -w inner "PS1=; fpath=($PWD \$fpath); autoload -Uz compinit; compinit -u -D"
zpty -w inner 'tell() { print -rn -- "$BUFFER" > told; exit }; zle -N tell; bindkey "^G" tell'
zpty -w -n inner "$1"$'\t\a'
while zpty -r inner shown; do :; done
cat told
)");
        return shell("rm -f told; zsh -f offers.zsh '" + line + "'");
    }
};

TEST_F(SelfDescription, ManualPagesAreCleanAndHoldEveryOption)
{
    ASSERT_EQ(run({"manual", "--all", "."}).code, 0);
    std::set<std::string> const pages = files();
    EXPECT_EQ(pages.count("umbrix.1"), 1U);
    EXPECT_EQ(pages.count("umbrix-stack.1"), 1U);
    for (std::string const& page : pages) {
        EXPECT_EQ(shell("groff -man -ww -z " + page), "") << page;
    }
    std::string const text = shell("groff -man -Tascii -P-c -P-b -P-u umbrix-map.1");
    for (char const* part :
         {"SYNOPSIS", "umbrix map [OPTIONS] INPUT", "--relief X", "--[no-]tile", "EXIT STATUS"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(run({"manual", "map"}).out, shell("cat umbrix-map.1"));
}

TEST_F(SelfDescription, AnUnknownPageOrShellIsWrongUsage)
{
    EXPECT_EQ(run({"manual", "paint"}).code, 2);
    EXPECT_EQ(run({"completion", "fish"}).code, 2);
    EXPECT_EQ(run({"manual", "--all", "nowhere"}).code, 1);
}

TEST_F(SelfDescription, BashCompletesCommandsOptionsWordsAndFiles)
{
    write("hill.tga", hill(8));
    EXPECT_EQ(bash_offers("umbrix rel"), "relight");
    EXPECT_EQ(bash_offers("umbrix map --rel"), "--relief");
    EXPECT_EQ(bash_offers("umbrix map --mode ''"), "projection unit flat squared");
    EXPECT_EQ(bash_offers("umbrix map --mode fl"), "flat");
    EXPECT_EQ(bash_offers("umbrix map hi"), "hill.tga");
    EXPECT_EQ(bash_offers("umbrix info --rel"), "");
    EXPECT_EQ(bash_offers("umbrix map --preset br"), "brick");
    EXPECT_EQ(bash_offers("umbrix map --preset hi"), "hill.tga");
    EXPECT_EQ(bash_offers("umbrix completion z"), "zsh");
    EXPECT_EQ(bash_offers("umbrix completion zsh --h"), "--help");
    EXPECT_EQ(bash_offers("umbrix preset sh"), "show");
    EXPECT_EQ(bash_offers("umbrix preset show br"), "brick");
    EXPECT_EQ(bash_offers("umbrix preset show hi"), "hill.tga");
    EXPECT_EQ(bash_offers("umbrix preset show brick --j"), "--json");
}

TEST_F(SelfDescription, ZshTakesItsCompletion)
{
    save("_umbrix", run({"completion", "zsh"}).out);
    EXPECT_EQ(shell("zsh -n _umbrix"), "");
    EXPECT_EQ(shell("zsh -f -c 'fpath=($PWD $fpath); autoload -Uz compinit; compinit -u -D; "
                    "print -n $_comps[umbrix]'"),
              "_umbrix");
}

TEST_F(SelfDescription, ZshCompletesCommandsOptionsWordsAndFiles)
{
    write("hill.tga", hill(8));
    save("_umbrix", run({"completion", "zsh"}).out);
    EXPECT_EQ(zsh_completes("umbrix rel"), "umbrix relight ");
    EXPECT_EQ(zsh_completes("umbrix map --reli"), "umbrix map --relief ");
    EXPECT_EQ(zsh_completes("umbrix map --mode fl"), "umbrix map --mode flat ");
    EXPECT_EQ(zsh_completes("umbrix map hi"), "umbrix map hill.tga ");
    EXPECT_EQ(zsh_completes("umbrix map --preset br"), "umbrix map --preset brick ");
    EXPECT_EQ(zsh_completes("umbrix map --preset hi"), "umbrix map --preset hill.tga ");
    EXPECT_EQ(zsh_completes("umbrix preset show br"), "umbrix preset show brick ");
    EXPECT_EQ(zsh_completes("umbrix preset show hi"), "umbrix preset show hill.tga ");
    EXPECT_EQ(zsh_completes("umbrix completion z"), "umbrix completion zsh ");
}

} // namespace
} // namespace umbrixlib::test
