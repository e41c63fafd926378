// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

/// DevIL takes the size of a DDS picture's compressed data from the header and decodes as many blocks as the
/// picture needs: what is missing it reads behind its buffer.
/// @throws Failure about @p subject, if @p file is such a picture.
void refuse_dds_with_too_little_data(std::filesystem::path const& file, std::string const& subject);

} // namespace umbrixlib::toolkit
