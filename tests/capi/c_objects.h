// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <umbrix.h>
#include <utility>
#include <vector>

/// A context with what it was told, and the objects of a test, which it frees.
class Calls {
public:
    Calls() : context_(umbrix_context_new()) { umbrix_on_note(context_, &Calls::take_note, this); }
    ~Calls()
    {
        for (umbrix_picture* const picture : pictures_) {
            umbrix_picture_free(picture);
        }
        for (umbrix_settings* const settings : settings_) {
            umbrix_settings_free(settings);
        }
        umbrix_context_free(context_);
    }
    Calls(Calls const&) = delete;
    Calls& operator=(Calls const&) = delete;

    operator umbrix_context*() const { return context_; }

    umbrix_error error() const
    {
        umbrix_error error{sizeof(umbrix_error), UMBRIX_OK, "", ""};
        umbrix_last_error(context_, &error);
        return error;
    }
    std::string sentence() const { return error().sentence; }

    std::vector<std::string> const& notes() const { return notes_; }

    umbrix_picture* read(std::string const& file)
    {
        umbrix_picture* picture = nullptr;
        EXPECT_EQ(umbrix_picture_read(context_, file.c_str(), 0, &picture), UMBRIX_OK) << sentence();
        return kept(picture);
    }

    umbrix_picture* example(char const* name)
    {
        return read(std::string(UMBRIX_EXAMPLES "/textures/") + name);
    }

    umbrix_picture* empty()
    {
        umbrix_picture* picture = nullptr;
        EXPECT_EQ(umbrix_picture_new(context_, &picture), UMBRIX_OK);
        return kept(picture);
    }

    umbrix_picture* wrap(void const* texels, umbrix_layout const& layout)
    {
        umbrix_picture* picture = nullptr;
        EXPECT_EQ(umbrix_picture_wrap(context_, texels, &layout, &picture), UMBRIX_OK) << sentence();
        return kept(picture);
    }

    umbrix_picture* over(std::vector<float>& memory, int width, int height, int channels)
    {
        memory.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height * channels), -7.0f);
        umbrix_layout const layout = floats(width, height, channels);
        umbrix_picture* picture = nullptr;
        EXPECT_EQ(umbrix_picture_wrap_result(context_, memory.data(), &layout, &picture), UMBRIX_OK);
        return kept(picture);
    }

    /// Settings other than the defaults.
    umbrix_settings* with(std::vector<std::pair<char const*, char const*>> const& values)
    {
        umbrix_settings* const settings = umbrix_settings_new();
        settings_.push_back(settings);
        for (auto const& [name, value] : values) {
            EXPECT_EQ(umbrix_settings_set(context_, settings, name, value), UMBRIX_OK) << sentence();
        }
        return settings;
    }

    /// All samples of a picture, the top row first, as floats.
    std::vector<float> samples(umbrix_picture const* picture) const
    {
        umbrix_layout layout = layout_of(picture);
        std::vector<float> all(static_cast<std::size_t>(layout.width) *
                               static_cast<std::size_t>(layout.height * layout.channels));
        layout = floats(layout.width, layout.height, layout.channels);
        EXPECT_EQ(umbrix_picture_copy(context_, picture, all.data(), &layout), UMBRIX_OK) << sentence();
        return all;
    }

    static umbrix_layout layout_of(umbrix_picture const* picture)
    {
        umbrix_layout layout{};
        layout.size = sizeof layout;
        EXPECT_EQ(umbrix_picture_layout(picture, &layout), UMBRIX_OK);
        return layout;
    }

    static umbrix_layout floats(int width, int height, int channels, umbrix_kind kind = UMBRIX_UNKNOWN)
    {
        return {sizeof(umbrix_layout), width, height, channels, UMBRIX_FLOAT, kind, 0, 0, 0};
    }

private:
    static void take_note(void* user, char const* about, char const* text)
    {
        static_cast<Calls*>(user)->notes_.push_back(std::string(about) + ": " + text);
    }

    umbrix_picture* kept(umbrix_picture* picture)
    {
        pictures_.push_back(picture);
        return picture;
    }

    umbrix_context* context_;
    std::vector<umbrix_picture*> pictures_;
    std::vector<umbrix_settings*> settings_;
    std::vector<std::string> notes_;
};

/// Heights of hills, 0 to 1, of a picture that repeats.
inline std::vector<float> hills(int width, int height)
{
    std::vector<float> heights;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double const across = 6.283185307179586 * x / width;
            double const along = 6.283185307179586 * y / height;
            heights.push_back(static_cast<float>(0.5 + 0.25 * std::sin(2 * across) + 0.25 * std::cos(along)));
        }
    }
    return heights;
}
