// SPDX-License-Identifier: MIT
#include "toolkit/textures/texture_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/textures/dds_header.h"
#include "toolkit/textures/ktx2_layout.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <span>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr std::array kContainers = {".dds", ".ktx2"}; // in their order

FileParts parts_of_dds(std::vector<std::uint8_t> const& header, Texture const& texture)
{
    FileParts parts{header};
    parts.insert(parts.end(), texture.levels.begin(), texture.levels.end());
    return parts;
}

FileParts parts_of_ktx2(Ktx2Layout const& layout, Texture const& texture)
{
    static constexpr std::array<std::uint8_t, 16> kZeros{}; // as many as a block has bytes
    FileParts parts{layout.start};
    std::size_t end = layout.start.size();
    for (std::size_t i = texture.levels.size(); i-- > 0;) {
        parts.push_back(std::span(kZeros).first(layout.levels[i] - end));
        parts.emplace_back(texture.levels[i]);
        end = layout.levels[i] + texture.levels[i].size();
    }
    return parts;
}

} // namespace

TextureContainer texture_container(fs::path const& file)
{
    std::string const extension = file.extension().string();
    auto const* const found = std::ranges::find(kContainers, lower_case(extension));
    if (found == kContainers.end()) {
        throw Failure(Fault::kUnknownFormat, file.string(),
                      extension.empty() ? "its name has no extension to tell the format by"
                                        : fmt::format("textures cannot be written as {}", extension),
                      fmt::format("use {}", fmt::join(kContainers, " or ")));
    }
    return static_cast<TextureContainer>(found - kContainers.begin());
}

char const* extension_of(TextureContainer container)
{
    return kContainers[static_cast<std::size_t>(container)];
}

fs::path check_texture_output(fs::path const& output, fs::path const& input, bool overwrite)
{
    texture_container(output);
    return check_other_output(output, input, overwrite);
}

void write_texture(fs::path const& file, TextureContainer container, std::string const& name,
                   Texture const& texture, Observer& observer)
{
    bool const is_dds = container == TextureContainer::kDds;
    std::vector<std::uint8_t> const header = is_dds ? dds_header(texture) : std::vector<std::uint8_t>();
    Ktx2Layout const layout = is_dds ? Ktx2Layout() : ktx2_layout(texture);
    FileParts const parts = is_dds ? parts_of_dds(header, texture) : parts_of_ktx2(layout, texture);
    write_parts(file, name, parts, observer);
}

} // namespace umbrixlib::toolkit
