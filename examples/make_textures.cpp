// SPDX-License-Identifier: MIT
// Writes the example textures as PNG files: NAME_height.png in grey, NAME_normal.png with the height in
// alpha.
#include "generator/example_textures.h"
#include "generator/texture_bytes.h"
#include "png_file.h"

#include <charconv>
#include <cstdio>
#include <exception>
#include <string>

namespace {

using namespace umbrixlib::examples;

constexpr char const* kUsage =
    "usage: make_textures FOLDER HEIGHT_SIDE NORMAL_SIDE NAME...\n"
    "Writes NAME_height.png and NAME_normal.png into FOLDER; sides in pixels, 1 to 16384.\n"
    "NAME is one of: ";

/// The number that @p text spells, or 0.
int side_from(std::string_view text)
{
    int side = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    return error == std::errc() && end == text.data() + text.size() && side <= 16384 ? side : 0;
}

void write(std::filesystem::path const& folder, Texture const& texture, int height_side, int normal_side)
{
    std::string const name(texture.name);
    write_png(folder / (name + "_height.png"),
              {height_side, height_side, 1, height_bytes(heights(name, height_side))});
    write_png(
        folder / (name + "_normal.png"),
        {normal_side, normal_side, 4, normal_bytes(heights(name, normal_side), normal_side, texture.relief)});
}

int print_usage()
{
    std::fputs(kUsage, stderr);
    for (Texture const& each : textures()) {
        std::fprintf(stderr, "%s ", std::string(each.name).c_str());
    }
    std::fputs("\n", stderr);
    return 2;
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 5 || side_from(arguments[2]) < 1 || side_from(arguments[3]) < 1) {
        return print_usage();
    }
    try {
        std::filesystem::create_directories(arguments[1]);
        for (int i = 4; i < count; ++i) {
            write(arguments[1], texture(arguments[i]), side_from(arguments[2]), side_from(arguments[3]));
        }
    } catch (std::exception const& error) {
        std::fprintf(stderr, "make_textures: error: %s\n", error.what());
        return 1;
    }
    return 0;
}
