// SPDX-License-Identifier: MIT
// Pictures that the tool makes of the shipped examples, compared by checksum with the list in golden.txt.
// They are the same on every machine, for every instruction set and number of threads.
#include "temporary_folder.h"
#include "test_picture.h"
#include "tool.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using umbrixlib::test::Arguments;
using umbrixlib::test::Picture;

/// A line of golden.txt: a checksum, then the words of the command. A word that ends in .png is a shipped
/// example.
struct Golden {
    std::string checksum;
    std::string command;

    Arguments arguments() const
    {
        Arguments words;
        std::istringstream in(command);
        for (std::string word; in >> word;) {
            bool const shipped = word.ends_with(".png") || word.ends_with(".toml");
            words.push_back(shipped ? UMBRIX_EXAMPLES "/" + word : word);
        }
        return words;
    }

    /// The command as a file name.
    std::string name() const
    {
        std::string name = command;
        for (char& letter : name) {
            letter = std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
        }
        return name;
    }
};

void PrintTo(Golden const& golden, std::ostream* out)
{
    *out << golden.command;
}

std::vector<Golden> read_list()
{
    std::vector<Golden> list;
    std::ifstream in(UMBRIX_GOLDEN_LIST);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line[0] != '#') {
            std::size_t const blank = line.find(' ');
            list.push_back({line.substr(0, blank), line.substr(blank + 1)});
        }
    }
    return list;
}

/// FNV-1a, 64 bits, over the size and the pixels.
std::string checksum(Picture const& picture)
{
    std::uint64_t hash = 14695981039346656037U;
    auto const take = [&hash](std::uint64_t byte) { hash = (hash ^ byte) * 1099511628211U; };
    for (int const number : {picture.width, picture.height, picture.channels}) {
        take(static_cast<std::uint64_t>(number) & 0xffU);
        take(static_cast<std::uint64_t>(number) >> 8);
    }
    for (unsigned char const byte : picture.bytes) {
        take(byte);
    }
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

class GoldenPictures : public testing::TestWithParam<Golden> {};

TEST_P(GoldenPictures, AreMadeBitForBit)
{
    umbrixlib::test::TemporaryFolder const folder;
    Arguments arguments = GetParam().arguments();
    arguments.insert(arguments.end(), {"-o", "out.tga", "--progress", "none"});
    auto const outcome = umbrixlib::test::RunningTool(folder.path(), arguments).finish();
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    std::string const actual = checksum(Picture::load(folder / "out.tga"));
    if (actual != GetParam().checksum) {
        std::filesystem::path const kept =
            std::filesystem::path(UMBRIX_GOLDEN_ACTUAL) / (GetParam().name() + ".tga");
        std::filesystem::create_directories(kept.parent_path());
        std::filesystem::copy_file(folder / "out.tga", kept,
                                   std::filesystem::copy_options::overwrite_existing);
        ADD_FAILURE() << "The picture is in " << kept << ". If it is meant to differ, its line is\n"
                      << actual << " " << GetParam().command;
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, GoldenPictures, testing::ValuesIn(read_list()),
                         [](auto const& test) { return test.param.name(); });

TEST(GoldenList, CoversEveryExample)
{
    auto const list = read_list();
    EXPECT_GE(list.size(), 8U);
    for (auto const& texture : std::filesystem::directory_iterator(UMBRIX_EXAMPLES "/textures")) {
        std::string const name = texture.path().filename().string();
        EXPECT_TRUE(std::any_of(list.begin(), list.end(), [&](Golden const& golden) {
            return golden.command.find(name) != std::string::npos;
        })) << name;
    }
}

} // namespace
