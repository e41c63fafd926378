// SPDX-License-Identifier: MIT
#include "toolkit/textures/texture.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/run_progress.h"
#include "toolkit/textures/mipmaps.h"
#include "toolkit/textures/store_rows.h"

#include <algorithm>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// Stores a level, a row of blocks at a time, on all threads.
std::vector<std::uint8_t> stored_level(TextureLevel const& level, TextureForm const& form, bool normals,
                                       RunProgress& progress)
{
    auto const rows = static_cast<std::size_t>(form.blocks(level.height));
    std::size_t const row_size = static_cast<std::size_t>(form.blocks(level.width)) * form.block_size;
    std::vector<std::uint8_t> bytes(rows * row_size);
    on_all_threads(rows, [&](auto const& next) {
        for (std::size_t i = next(); i < rows && !progress.stopping(); i = next()) {
            store_row(level, static_cast<int>(i), form, normals,
                      std::span(bytes).subspan(i * row_size, row_size));
            progress.add_piece();
        }
    });
    return bytes;
}

/// Rows of blocks of @p levels levels.
std::size_t rows_of(TextureForm const& form, int height, int levels)
{
    std::size_t rows = 0;
    for (int i = 0; i < levels; ++i) {
        rows += static_cast<std::size_t>(form.blocks(std::max(height >> i, 1)));
    }
    return rows;
}

} // namespace

std::size_t Texture::size() const
{
    std::size_t size = 0;
    for (auto const& level : levels) {
        size += level.size();
    }
    return size;
}

std::optional<Texture> make_texture(Picture const& picture, TextureFormat format, int levels,
                                    RunControl* control)
{
    Texture texture{texture_form(format, picture.channels), picture.width, picture.height, {}};
    bool const normals = picture.kind == PictureKind::kNormals;
    int const count = std::min(levels, all_levels(picture.width, picture.height));
    RunProgress progress(control, rows_of(texture.form, picture.height, count));
    TextureLevel level = first_level(picture);
    // x and y alone tell the direction only if the length is known.
    bool const keeps_first = texture.form.channels != 2;
    for (int i = 0; i < count && !progress.stopping(); ++i) {
        if (i > 0) {
            level = smaller_level(level);
        }
        texture.levels.push_back(normals && !(i == 0 && keeps_first)
                                     ? stored_level(with_unit_vectors(level), texture.form, normals, progress)
                                     : stored_level(level, texture.form, normals, progress));
    }
    return progress.stopping() ? std::nullopt : std::optional(std::move(texture));
}

} // namespace umbrixlib::toolkit
