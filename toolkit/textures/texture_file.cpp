// SPDX-License-Identifier: MIT
#include "toolkit/textures/texture_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/text.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/textures/dds_header.h"
#include "toolkit/textures/ktx2_layout.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <span>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

constexpr std::array kContainers = {".dds", ".ktx2"}; // in their order

/// The parts of a file, in its order.
using FileParts = std::vector<std::span<std::uint8_t const>>;

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

bool write_parts(fs::path const& file, FileParts const& parts)
{
    OutputStream stream(file);
    for (auto const& part : parts) {
        stream.write(part);
    }
    return stream.close();
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Whether @p file consists of @p parts.
bool consists_of(fs::path const& file, FileParts const& parts)
{
    std::unique_ptr<std::FILE, CloseFile> const stream(fdopen(open_file(file, OpenFor::kReading), "rb"));
    if (!stream) {
        return false;
    }
    std::vector<std::uint8_t> piece(1U << 20U);
    for (std::span<std::uint8_t const> rest : parts) {
        while (!rest.empty()) {
            std::size_t const size = std::min(piece.size(), rest.size());
            if (std::fread(piece.data(), 1, size, stream.get()) != size ||
                !std::equal(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(size), rest.begin())) {
                return false;
            }
            rest = rest.subspan(size);
        }
    }
    return std::fgetc(stream.get()) == EOF;
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
    write_and_check(
        file, name, [&] { return write_parts(file, parts); }, [&] { return consists_of(file, parts); },
        observer);
}

} // namespace umbrixlib::toolkit
