// SPDX-License-Identifier: MIT
/// The page of a map: what is in it, and what is not.
#include "toolkit/pages/light_page.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace umbrixlib::test {
namespace {

using toolkit::html_of;

std::size_t count(std::string const& text, std::string const& part)
{
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

TEST(LightPage, HoldsItsPictures)
{
    std::string const alone = html_of({"x", "unit", {"image/png", {'a', 'b', 'c'}}, {}});
    EXPECT_EQ(count(alone, "src=\"data:image/png;base64,YWJj\""), 1U);
    EXPECT_EQ(count(alone, "data-mode=\"unit\""), 1U);
    EXPECT_EQ(count(alone, "<img"), 1U);
    std::string const coloured =
        html_of({"x", "unit", {"image/png", {'a', 'b', 'c'}}, {"image/jpeg", {'d', 'e', 'f'}}});
    EXPECT_EQ(count(coloured, "<img"), 2U);
    EXPECT_EQ(count(coloured, "src=\"data:image/jpeg;base64,ZGVm\""), 1U);
}

TEST(LightPage, HasNothingFromOutside)
{
    std::string const html = html_of({"x", "unit", {"image/png", {1}}, {}});
    EXPECT_EQ(count(html, "://"), 0U);
    EXPECT_EQ(count(html, "<script"), 1U);
    EXPECT_EQ(count(html, "<style"), 1U);
    EXPECT_EQ(count(html, " style="), 0U);
    EXPECT_EQ(count(html, "default-src 'none'"), 1U);
    EXPECT_EQ(count(html, "unsafe"), 0U);
    EXPECT_EQ(count(html, "'sha256-"), 2U);
    EXPECT_LT(html.size(), 32U * 1024U);
}

TEST(LightPage, ShowsATitleAndObeysNone)
{
    std::string const html =
        html_of({"<script>\"&\xe2\x80\xae\x01 {script}", "unit", {"image/png", {1}}, {}});
    EXPECT_EQ(count(html, "<script"), 1U);
    EXPECT_EQ(count(html, "<title>&lt;script&gt;&quot;&amp;\\u202E\\x01 {script}</title>"), 1U);
}

std::string text_of(std::string const& name)
{
    std::ifstream file(std::string(UMBRIX_SOURCES) + "/" + name);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// What stands in the one element of that name.
std::string element(std::string const& page, std::string const& name)
{
    std::string const opening = "<" + name + ">";
    std::size_t const start = page.find(opening) + opening.size();
    return page.substr(start, page.find("</" + name + ">") - start);
}

TEST(LightPage, OfTheDocumentsIsOfToday)
{
    std::string const page = text_of("docs/images/cobbles_light.html"); // scripts/docs_images.sh makes it
    std::string const today = html_of({"x", "unit", {"image/png", {1}}, {}});
    for (char const* const part : {"script", "style"}) {
        EXPECT_GT(element(page, part).size(), 1000U);
        EXPECT_EQ(element(page, part), element(today, part));
    }
}

TEST(LightPage, DrawsWithTheShaderThatUsersGet)
{
    std::string const script = element(html_of({"x", "unit", {"image/png", {1}}, {}}), "script");
    std::string const shader = text_of("examples/shaders/umbrix.glsl");
    EXPECT_GT(shader.size(), 1000U);
    EXPECT_EQ(count(script, shader), 1U);
}

} // namespace
} // namespace umbrixlib::test
