// SPDX-License-Identifier: MIT
#include "c_objects.h"

#include <set>

namespace {

umbrix_setting setting_at(std::size_t index)
{
    umbrix_setting setting{};
    setting.size = sizeof setting;
    EXPECT_EQ(umbrix_setting_at(index, &setting), UMBRIX_OK);
    return setting;
}

TEST(CSettings, EachHasAnInitialValueThatCanBeSetAgain)
{
    Calls calls;
    umbrix_settings* const settings = calls.with({});
    std::set<std::string> names;
    for (std::size_t i = 0; i < umbrix_setting_count(); ++i) {
        umbrix_setting const setting = setting_at(i);
        names.insert(setting.name);
        char const* value = nullptr;
        ASSERT_EQ(umbrix_settings_get(calls, settings, setting.name, &value), UMBRIX_OK);
        EXPECT_STREQ(value, setting.initial) << setting.name;
        EXPECT_EQ(umbrix_settings_set(calls, settings, setting.name, setting.initial), UMBRIX_OK)
            << calls.sentence();
        EXPECT_NE(std::string(setting.help), "");
    }
    EXPECT_EQ(names.size(), umbrix_setting_count());
    EXPECT_EQ(names.count("relief"), 1U);
    umbrix_setting behind{};
    behind.size = sizeof behind;
    EXPECT_EQ(umbrix_setting_at(umbrix_setting_count(), &behind), UMBRIX_WRONG_ARGUMENT);
}

TEST(CSettings, ChoicesAreListedAndTakenAndNothingElseIs)
{
    Calls calls;
    umbrix_settings* const settings = calls.with({});
    std::size_t choices = 0;
    for (std::size_t i = 0; i < umbrix_setting_count(); ++i) {
        umbrix_setting const setting = setting_at(i);
        EXPECT_EQ(setting.form == UMBRIX_CHOICE, setting.choices[0] != nullptr) << setting.name;
        for (char const* const* choice = setting.choices; *choice != nullptr; ++choice, ++choices) {
            ASSERT_EQ(umbrix_settings_set(calls, settings, setting.name, *choice), UMBRIX_OK);
            char const* value = nullptr;
            ASSERT_EQ(umbrix_settings_get(calls, settings, setting.name, &value), UMBRIX_OK);
            EXPECT_STREQ(value, *choice);
        }
        EXPECT_EQ(umbrix_settings_set(calls, settings, setting.name, "nonsense"), UMBRIX_WRONG_SETTING);
    }
    EXPECT_GT(choices, 10U);
}

TEST(CSettings, NumbersKeepToTheirRangeAndSaySo)
{
    Calls calls;
    umbrix_settings* const settings = calls.with({});
    EXPECT_EQ(umbrix_settings_set(calls, settings, "rays", "2.5"), UMBRIX_WRONG_SETTING);
    EXPECT_EQ(calls.sentence(), "rays: 2.5 is not a whole number");
    EXPECT_EQ(umbrix_settings_set(calls, settings, "relief", "1e9"), UMBRIX_WRONG_SETTING);
    EXPECT_EQ(calls.sentence(), "relief: 1e9 is out of range");
    EXPECT_NE(std::string(calls.error().remedy).find("give "), std::string::npos);
    EXPECT_EQ(umbrix_settings_set(calls, settings, "relief", "nan"), UMBRIX_WRONG_SETTING);
    EXPECT_EQ(umbrix_settings_set(calls, settings, "tile", "yes"), UMBRIX_WRONG_SETTING);
}

TEST(CSettings, WordsMayBeJoinedEitherWayAndTheNearestNameIsTold)
{
    Calls calls;
    umbrix_settings* const settings = calls.with({{"h_scale", "0.25"}});
    char const* value = nullptr;
    ASSERT_EQ(umbrix_settings_get(calls, settings, "h-scale", &value), UMBRIX_OK);
    EXPECT_STREQ(value, "0.25");
    EXPECT_EQ(umbrix_settings_set(calls, settings, "releif", "0.1"), UMBRIX_WRONG_SETTING);
    EXPECT_EQ(calls.sentence(), "releif: there is no such setting");
    EXPECT_STREQ(calls.error().remedy, "perhaps relief is meant");
}

TEST(CSettings, PresetsReplaceAllAndCopiesAreTheirOwn)
{
    Calls calls;
    umbrix_settings* const settings = calls.with({{"rays", "7"}});
    umbrix_settings* const copy = umbrix_settings_copy(settings);
    std::size_t presets = 0;
    for (; umbrix_preset_at(presets) != nullptr; ++presets) {
        EXPECT_EQ(umbrix_settings_preset(calls, copy, umbrix_preset_at(presets)), UMBRIX_OK);
    }
    EXPECT_GE(presets, 4U);
    char const* value = nullptr;
    ASSERT_EQ(umbrix_settings_get(calls, settings, "rays", &value), UMBRIX_OK);
    EXPECT_STREQ(value, "7");
    ASSERT_EQ(umbrix_settings_get(calls, copy, "rays", &value), UMBRIX_OK);
    EXPECT_STRNE(value, "7");
    EXPECT_EQ(umbrix_settings_preset(calls, copy, "stoen"), UMBRIX_WRONG_SETTING);
    umbrix_settings_free(copy);
}

} // namespace
