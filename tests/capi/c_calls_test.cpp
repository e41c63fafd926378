// SPDX-License-Identifier: MIT
#include "c_objects.h"

#include <cstdint>
#include <cstring>

namespace {

TEST(CCalls, WithoutTheirArgumentsEndInAnErrorAndNoCrash)
{
    Calls calls;
    umbrix_picture* picture = nullptr;
    char const* text = nullptr;
    umbrix_layout const layout = Calls::floats(1, 1, 1);
    float texel = 0.5f;
    EXPECT_EQ(umbrix_picture_new(nullptr, &picture), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_picture_new(calls, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_picture_read(calls, nullptr, 0, &picture), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(calls.sentence(), "file is NULL");
    EXPECT_EQ(umbrix_picture_wrap(calls, nullptr, &layout, &picture), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_picture_wrap(calls, &texel, nullptr, &picture), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_picture_layout(nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_settings_set(calls, nullptr, "relief", "1"), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_settings_get(calls, calls.with({}), nullptr, &text), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_settings_preset(calls, calls.with({}), nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_make_map(calls, nullptr, nullptr, calls.empty()), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_make_map(calls, calls.wrap(&texel, layout), nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_make_bent(calls, nullptr, nullptr, nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_relight(calls, nullptr, nullptr, nullptr, nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_find_relief(calls, nullptr, nullptr, nullptr, 0, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_check(calls, nullptr, nullptr, 0, nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_stack_add(calls, nullptr, nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_stack_make(calls, nullptr, nullptr, nullptr, nullptr, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_setting_at(0, nullptr), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_findings_at(nullptr, 0, nullptr), UMBRIX_WRONG_ARGUMENT);
    umbrix_last_error(calls, nullptr);
    umbrix_context_free(nullptr);
    umbrix_picture_free(nullptr);
    umbrix_settings_free(nullptr);
    umbrix_stack_free(nullptr);
    umbrix_findings_free(nullptr);
}

TEST(CCalls, RefuseLayoutsThatDescribeNoPicture)
{
    Calls calls;
    float const texel = 0.5f;
    umbrix_picture* picture = nullptr;
    auto const code = [&](umbrix_layout const& layout) {
        return umbrix_picture_wrap(calls, &texel, &layout, &picture);
    };
    EXPECT_EQ(code(Calls::floats(0, 1, 1)), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(code(Calls::floats(1, -1, 1)), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(code(Calls::floats(1, 1, 5)), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(code(Calls::floats(100000, 1, 1)), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(calls.sentence(), "layout: its width is 100000, not 1 to 65535");
    umbrix_layout strange = Calls::floats(1, 1, 1);
    int const none = 9;
    std::memcpy(&strange.samples, &none, sizeof none);
    EXPECT_EQ(code(strange), UMBRIX_WRONG_ARGUMENT);
    umbrix_layout unset = Calls::floats(1, 1, 1);
    unset.size = 0;
    EXPECT_EQ(code(unset), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(picture, nullptr);
}

TEST(CCalls, FillAsMuchOfARecordAsItsCallerKnows)
{
    struct {
        umbrix_setting setting;
        char behind[8];
    } record;
    std::memset(&record, 0x5a, sizeof record);
    record.setting.size = offsetof(umbrix_setting, help);
    ASSERT_EQ(umbrix_setting_at(0, &record.setting), UMBRIX_OK);
    EXPECT_STREQ(record.setting.name, "kind");
    std::uintptr_t untouched = 0;
    std::memset(&untouched, 0x5a, sizeof untouched);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record.setting.help), untouched);
    EXPECT_EQ(record.setting.size, offsetof(umbrix_setting, help));
}

TEST(CCalls, TakeRecordsThatGrewSince)
{
    Calls calls;
    struct {
        umbrix_layout layout;
        char behind[64];
    } record{};
    record.layout = Calls::floats(1, 1, 1);
    record.layout.size = sizeof record;
    float const texel = 0.5f;
    umbrix_picture* picture = nullptr;
    ASSERT_EQ(umbrix_picture_wrap(calls, &texel, &record.layout, &picture), UMBRIX_OK);
    umbrix_picture_free(picture);
}

TEST(CCalls, TellTheVersions)
{
    EXPECT_EQ(umbrix_interface(), UMBRIX_INTERFACE);
    EXPECT_STREQ(umbrix_version(), UMBRIX_VERSION);
}

} // namespace
