// SPDX-License-Identifier: MIT
#include "c_objects.h"

namespace {

/// Names of what is found.
std::vector<std::string> found(Calls& calls, umbrix_picture* picture, int green,
                               umbrix_picture* mended = nullptr)
{
    umbrix_findings* findings = nullptr;
    EXPECT_EQ(umbrix_check(calls, picture, nullptr, green, &findings, mended), UMBRIX_OK) << calls.sentence();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < umbrix_findings_count(findings); ++i) {
        umbrix_finding finding{};
        finding.size = sizeof finding;
        EXPECT_EQ(umbrix_findings_at(findings, i, &finding), UMBRIX_OK);
        EXPECT_STRNE(finding.text, "");
        names.emplace_back(finding.name);
    }
    EXPECT_EQ(umbrix_findings_kind(findings), UMBRIX_NORMALS);
    umbrix_findings_free(findings);
    return names;
}

TEST(CChecks, FindNothingInOurNormals)
{
    Calls calls;
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, calls.example("cobbles_height.png"), nullptr, normals), UMBRIX_OK);
    EXPECT_EQ(found(calls, normals, 1), std::vector<std::string>{});
}

TEST(CChecks, FindGreenTheWrongWayAndMendIt)
{
    Calls calls;
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, calls.example("cobbles_height.png"),
                                  calls.with({{"normal-y", "down"}}), normals),
              UMBRIX_OK);
    umbrix_picture* const mended = calls.empty();
    EXPECT_EQ(found(calls, normals, 1, mended), std::vector<std::string>{"green-direction"});
    EXPECT_EQ(found(calls, mended, 1), std::vector<std::string>{});
}

TEST(CChecks, SayWhereTheFirstTexelLies)
{
    Calls calls;
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, calls.example("cobbles_height.png"), nullptr, normals), UMBRIX_OK);
    std::vector<float> texels = calls.samples(normals);
    umbrix_layout const layout = Calls::layout_of(normals);
    std::size_t const at = (5 * static_cast<std::size_t>(layout.width) + 9) * 3;
    texels[at] = NAN;
    umbrix_findings* findings = nullptr;
    umbrix_picture* const broken =
        calls.wrap(texels.data(), Calls::floats(layout.width, layout.height, 3, UMBRIX_NORMALS));
    ASSERT_EQ(umbrix_check(calls, broken, nullptr, 0, &findings, nullptr), UMBRIX_OK) << calls.sentence();
    umbrix_finding finding{};
    finding.size = sizeof finding;
    ASSERT_EQ(umbrix_findings_at(findings, 0, &finding), UMBRIX_OK);
    EXPECT_STREQ(finding.name, "invalid-texels");
    EXPECT_EQ(finding.x, 9);
    EXPECT_EQ(finding.y, 5);
    EXPECT_EQ(finding.texels, 1.0);
    EXPECT_EQ(umbrix_findings_at(findings, 1000, &finding), UMBRIX_WRONG_ARGUMENT);
    umbrix_findings_free(findings);
}

} // namespace
