// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// The Failure of a picture with more texels than it may have, and what its header says.
struct TooManyTexels : Failure {
    TooManyTexels(std::string const& subject_, std::string const& what_, double width_, double height_)
        : Failure(Fault::kTooManyTexels, subject_, what_), width(width_), height(height_)
    {
    }

    double width;
    double height;
    std::string format{}; ///< "PNG", "TIFF".
};

/// A file while it is decoded: read from its start to its end. A decoder asks it for leave before it
/// takes memory for a picture.
class SourceFile {
public:
    /// @param subject    Names the file in a Failure.
    /// @param max_texels No picture has more.
    SourceFile(std::filesystem::path path, std::string subject, double max_texels);

    std::filesystem::path const& path() const { return path_; }
    std::string const& subject() const { return subject_; }

    /// What the file begins with, at most 32 bytes; reading still begins at the first of them.
    std::span<std::uint8_t const> head() const { return {head_.data(), head_size_}; }

    /// Whether these bytes are in the file behind the first @p at, all among the first 32.
    bool begins_with(std::string_view bytes, std::size_t at = 0) const
    {
        std::string_view const known(reinterpret_cast<char const*>(head_.data()), head_size_);
        return known.size() >= at && known.substr(at).starts_with(bytes);
    }

    /// Fills @p bytes. A Failure if the file ends before.
    void read(std::span<std::uint8_t> bytes);
    void skip(std::size_t bytes);

    /// Reads what there is, at most @p bytes, and says how much it was.
    std::size_t read_some(void* to, std::size_t bytes);

    /// Goes back to the first byte.
    void rewind();

    /// The next byte; -1 at the end.
    int next();

    /// The whole file, for formats that are not read from start to end. Read at the first call; a Failure if
    /// it has more bytes than a picture of the largest size takes.
    std::span<std::uint8_t const> content();

    /// Whether it was written to, replaced or removed since it was opened here. What was read may be a part
    /// of each.
    bool has_changed() const;

    /// A Failure if the picture is too large, or has no texel.
    void check_size(double width, double height) const;

    /// A Failure if the whole file has less than @p bytes.
    void check_length(double bytes) const;

    [[noreturn]] void refuse_as_damaged() const;

    /// For a sound file that is not taken: what it is, "it is a deep OpenEXR picture", and what helps, "save
    /// it flat".
    [[noreturn]] void refuse(std::string const& what, std::string const& remedy) const;

private:
    struct Close {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    /// Device, number, names, size and time of a file: it is the same, unchanged, as long as these are.
    using Stamp = std::array<std::int64_t, 6>;

    Stamp stamp() const;

    std::filesystem::path path_;
    std::string subject_;
    double max_texels_;
    std::unique_ptr<std::FILE, Close> stream_;
    Stamp stamp_{};
    std::array<std::uint8_t, 32> head_{};
    std::size_t head_size_ = 0;
    std::size_t head_read_ = 0; ///< How much of the head was handed out.
    std::vector<std::uint8_t> content_;
};

} // namespace umbrixlib::toolkit
