// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/textures/texture.h"

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

/// A kind of file that holds textures.
enum class TextureContainer {
    kDds,  ///< DirectDraw Surface, with the header of Direct3D 10.
    kKtx2, ///< Khronos texture, without supercompression.
};

/// The container that the extension of @p file tells, in any letter case. A Failure if it is none.
TextureContainer texture_container(std::filesystem::path const& file);

/// Its extension, with the dot.
char const* extension_of(TextureContainer container);

/// Throws a Failure unless a texture can be written to @p output, as check_output() does for pictures.
/// Returns the name to be written.
std::filesystem::path check_texture_output(std::filesystem::path const& output,
                                           std::filesystem::path const& input, bool overwrite);

/// Writes @p texture to @p file, which @p container says how, brings it to the disk and compares what is
/// there. Failures are about @p name.
void write_texture(std::filesystem::path const& file, TextureContainer container, std::string const& name,
                   Texture const& texture, Observer& observer);

} // namespace umbrixlib::toolkit
