// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_toml.h"

#include "toolkit/base/utf8.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint32_t kNan = 0x7fc00000; // what TOML's nan is read as

constexpr char const* kHead =
    R"(# A work list. umbrix list import makes a list of it again. Every field has to be there.
#
# filename          the picture or the folder that the job is about
# search_str        in a folder: which files, "*.tga"
# calc_type         2 light and occlusion, 5 occlusion, any other light
# no_normal         true leaves the light out, unless generate_normal is true
# height_map        true: the picture is a height map; false: a normal map with the heights in its alpha
# generate_normal   true makes the normals from the heights
# UmbrixMode        light of a normal: 0 its projection, 1 with unit basis vectors, 2 flat ground at full light,
#                   3 squared
# preserve          true keeps the heights in the map's alpha
# rays              rays for each direction: more are smoother and slower
# radius            how far the rays reach and climb, in widths of the picture
# h_scale           how high a height of 1 reaches for the occlusion, in widths of the picture
# alpha_limit, theta_limit    full width of a bundle of rays in elevation and azimuth, degrees
# tile, h_tile, v_tile        the texture repeats at all, sideways, up and down
# n_scale           strength of the normals that are made from heights
# gaussian, L_Detail          blur and edge-keeping filter before they are made, texels
# b_radius          edge-keeping filter on the heights, texels; below 1 is off
# contrast, brightness, smooth, min, max    grading of the map; those with h_ grade the heights
# blend_height      true takes the heights from the layers
# multi_thread, quiet, normal_flag_1, normal_flag_2, mode    kept for other programs, without an effect here
#
# A layer: its picture (filename), a name for people, and how the layer after it joins: blend_mode 0 blend,
# 1 overlay, 2 multiply, any other add, with the opacity in per cent.
#
# Text that is no UTF-8 stands as { bytes = "caf%E9.png" }: %E9 is the byte E9, %25 a percent sign.
)";

std::string in_quotes(std::string_view text)
{
    std::string result = "\"";
    for (char const each : text) {
        auto const byte = static_cast<unsigned char>(each);
        if (each == '"' || each == '\\') {
            result += '\\';
            result += each;
        } else if (byte < 0x20 || byte == 0x7f) {
            result += fmt::format("\\u{:04X}", byte);
        } else {
            result += each;
        }
    }
    return result + '"';
}

std::string with_escaped_bytes(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length == 0 || text.front() == '%') {
            result += fmt::format("%{:02X}", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
        } else {
            result += text.substr(0, length);
            text.remove_prefix(length);
        }
    }
    return result;
}

std::string value_of(std::string const& text)
{
    return is_utf8(text) ? in_quotes(text)
                         : fmt::format("{{ bytes = {} }}", in_quotes(with_escaped_bytes(text)));
}

/// As short as it can be and still be read as @p value: by way of a double, which now and then takes more
/// digits than a float would.
std::string digits_of(float value)
{
    std::string const text = fmt::format("{}", value);
    double read = 0;
    std::from_chars(text.data(), text.data() + text.size(), read);
    return static_cast<float>(read) == value ? text : fmt::format("{}", static_cast<double>(value));
}

std::string value_of(float value)
{
    auto const bits = std::bit_cast<std::uint32_t>(value);
    if (std::isnan(value)) {
        return bits == kNan ? "nan" : fmt::format("\"0x{:08X}\"", bits);
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    std::string const digits = digits_of(value);
    return digits.find_first_of(".e") == std::string::npos ? digits + ".0" : digits;
}

std::string value_of(bool value)
{
    return value ? "true" : "false";
}

template <typename T>
std::string value_of(T value)
{
    return fmt::format("{}", static_cast<int>(value));
}

void add(std::string& toml, char const* name, auto const& value)
{
    toml += fmt::format("{} = {}\n", name, value_of(value));
}

#define UMBRIX_ADD(type, name, offset) add(toml, #name, record.name);

void add_layer(std::string& toml, n_layer const& record)
{
    toml += "\n[[job.layer]]\n";
    add(toml, "filename", record.filename);
    add(toml, "name", record.name);
    UMBRIX_LAYER_FIELDS(UMBRIX_ADD)
}

void add_job(std::string& toml, umbrix_node const& record)
{
    toml += "\n[[job]]\n";
    add(toml, "filename", record.filename);
    add(toml, "search_str", record.search_str);
    UMBRIX_DATA_FIELDS(UMBRIX_ADD, UMBRIX_ADD)
    for (auto const* each = record.layers.head; each != nullptr; each = each->next) {
        add_layer(toml, each->data);
    }
}

} // namespace

std::string to_toml(umbrix_list const& list)
{
    std::string toml = kHead;
    if (list.items.count == 0) {
        toml += "\njob = []\n";
    }
    for (auto const* each = list.items.head; each != nullptr; each = each->next) {
        add_job(toml, each->data);
    }
    return toml;
}

} // namespace umbrixlib::toolkit
