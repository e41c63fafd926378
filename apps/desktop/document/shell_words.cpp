// SPDX-License-Identifier: MIT
#include "document/command_text.h"
#include "toolkit/base/failure.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrix_desktop {

namespace {

using toolkit::Failure;
using toolkit::Fault;

constexpr std::string_view kBlanks = " \t\n";
constexpr std::string_view kOfShells = "|&;<>()$`*?[#~!{}";

/// Splits a line, letter by letter.
class WordSplitter {
public:
    explicit WordSplitter(std::string_view line) : line_(line) {}

    std::vector<std::string> words()
    {
        while (at_ < line_.size()) {
            take(line_[at_++]);
        }
        end_word();
        return std::move(words_);
    }

private:
    void take(char letter)
    {
        if (kBlanks.find(letter) != std::string_view::npos) {
            end_word();
        } else if (letter == '\'') {
            take_up_to_quote();
        } else if (letter == '"') {
            take_up_to_double_quote();
        } else if (letter == '\\') {
            take_escaped();
        } else if (kOfShells.find(letter) != std::string_view::npos && is_special(letter)) {
            refuse(letter);
        } else {
            add(letter);
        }
    }

    /// Some have a meaning at the begin of a word alone.
    bool is_special(char letter) const
    {
        return (letter != '#' && letter != '~' && letter != '!') || !in_word_;
    }

    void take_up_to_quote()
    {
        std::size_t const end = line_.find('\'', at_);
        if (end == std::string_view::npos) {
            refuse_open();
        }
        in_word_ = true;
        word_ += line_.substr(at_, end - at_);
        at_ = end + 1;
    }

    void take_up_to_double_quote()
    {
        in_word_ = true;
        for (; at_ < line_.size() && line_[at_] != '"'; ++at_) {
            char const letter = line_[at_];
            if (letter == '$' || letter == '`') {
                refuse(letter);
            }
            bool const escapes = letter == '\\' && at_ + 1 < line_.size() &&
                                 std::string_view("$`\"\\\n").find(line_[at_ + 1]) != std::string_view::npos;
            at_ += escapes ? 1U : 0U;
            if (!escapes || line_[at_] != '\n') {
                word_ += line_[at_];
            }
        }
        if (at_ == line_.size()) {
            refuse_open();
        }
        ++at_;
    }

    void take_escaped()
    {
        if (at_ == line_.size()) {
            add('\\');
            return;
        }
        char const letter = line_[at_++];
        if (letter != '\n') { // which joins two lines
            add(letter);
        }
    }

    void add(char letter)
    {
        in_word_ = true;
        word_ += letter;
    }

    void end_word()
    {
        if (in_word_) {
            words_.push_back(std::move(word_));
        }
        word_.clear();
        in_word_ = false;
    }

    [[noreturn]] static void refuse(char letter)
    {
        throw Failure(Fault::kWrongValue, "the line",
                      fmt::format("it has a '{}' that is more than a letter to a shell", letter),
                      "give one command with its words alone, names of files in quotes");
    }

    [[noreturn]] static void refuse_open()
    {
        throw Failure(Fault::kWrongValue, "the line", "it has a quote that is not closed", "close it");
    }

    std::string_view line_;
    std::size_t at_ = 0;
    bool in_word_ = false;
    std::string word_;
    std::vector<std::string> words_;
};

bool is_plain(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') ||
           std::string_view("_@%+=:,./-").find(letter) != std::string_view::npos;
}

} // namespace

std::vector<std::string> shell_words(std::string_view line)
{
    return WordSplitter(line).words();
}

std::string shell_quoted(std::string_view word)
{
    if (!word.empty() && std::ranges::all_of(word, is_plain)) {
        return std::string(word);
    }
    std::string quoted = "'";
    for (char const letter : word) {
        quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
    }
    return quoted + "'";
}

} // namespace umbrix_desktop
