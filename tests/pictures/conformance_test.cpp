// SPDX-License-Identifier: MIT
/// Some hundred pictures of all formats and programs: each is taken as the array that it was made from, or
/// refused by name. index.tsv lists them; generator/ makes them by hand.
#include "format_table.h"
#include "picture_files.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

fs::path const kFolder = UMBRIX_PICTURES;
fs::path const kPage = UMBRIX_FORMATS_PAGE;
constexpr char const* kStart = "<!-- made by PictureConformance: start -->\n";
constexpr char const* kEnd = "<!-- made by PictureConformance: end -->\n";

/// All are read once for all tests of the suite.
class PictureConformance : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        variants = read_index(kFolder);
        results.clear();
        for (Variant const& variant : variants) {
            results.push_back(try_variant(kFolder, variant));
        }
    }

    static std::size_t count(std::set<std::string> const& formats)
    {
        return static_cast<std::size_t>(
            std::count_if(variants.begin(), variants.end(),
                          [&](Variant const& variant) { return formats.contains(variant.format); }));
    }

    static inline std::vector<Variant> variants;
    static inline std::vector<Result> results;
};

TEST_F(PictureConformance, EachFileIsTakenRightOrRefusedByName)
{
    for (std::size_t i = 0; i < variants.size(); ++i) {
        EXPECT_EQ(results[i].fault, "") << variants[i].file << ": " << variants[i].what;
    }
}

TEST_F(PictureConformance, NoRefusalIsADamage)
{
    for (std::size_t i = 0; i < variants.size(); ++i) {
        EXPECT_EQ(results[i].sentence.find("damaged"), std::string::npos) << variants[i].file;
    }
}

TEST_F(PictureConformance, HasManyFilesOfEachFormat)
{
    EXPECT_GE(variants.size(), 250U);
    EXPECT_GE(count({"TIFF"}), 60U);
    for (char const* const format : {"PNG", "OpenEXR", "TGA", "BMP", "DDS"}) {
        EXPECT_GE(count({format}), 20U) << format;
    }
    EXPECT_GE(count({"PBM", "PGM", "PPM"}), 20U);
}

TEST_F(PictureConformance, HasEachFileInTheIndex)
{
    std::set<std::string> listed;
    std::set<std::string> references;
    for (Variant const& variant : variants) {
        listed.insert(variant.file);
        if (variant.taken) {
            references.insert(variant.expected);
        }
    }
    std::set<std::string> files;
    for (auto const& entry : fs::recursive_directory_iterator(kFolder / "files")) {
        if (entry.is_regular_file()) {
            files.insert(fs::relative(entry.path(), kFolder / "files").generic_string());
            EXPECT_LE(entry.file_size(), 40U * 1024) << entry.path();
        }
    }
    std::set<std::string> kept;
    for (auto const& entry : fs::directory_iterator(kFolder / "references")) {
        kept.insert(entry.path().filename().string());
    }
    EXPECT_EQ(files, listed);
    EXPECT_EQ(kept, references);
}

/// With UMBRIX_WRITE_FORMATS set, writes the table instead.
TEST_F(PictureConformance, MakesTheTableOfTheDocuments)
{
    auto const bytes = read_file(kPage);
    std::string const page(bytes.begin(), bytes.end());
    std::size_t const start = page.find(kStart);
    std::size_t const end = page.find(kEnd);
    ASSERT_NE(start, std::string::npos);
    ASSERT_NE(end, std::string::npos);
    std::size_t const at = start + std::string_view(kStart).size();
    std::string const table = "\n" + format_table(variants, results) + "\n";
    if (std::getenv("UMBRIX_WRITE_FORMATS") != nullptr) {
        std::ofstream(kPage, std::ios::binary) << page.substr(0, at) << table << page.substr(end);
        return;
    }
    EXPECT_EQ(page.substr(at, end - at), table)
        << "UMBRIX_WRITE_FORMATS=1 with this test writes the table anew";
}

} // namespace
} // namespace umbrixlib::test
