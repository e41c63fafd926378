// SPDX-License-Identifier: MIT
#include "toolkit/pictures/png_bytes.h"

#include "toolkit/pictures/formats/png/png_frame.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSignature = 8;

std::size_t number_at(std::span<std::uint8_t const> bytes)
{
    return static_cast<std::size_t>(bytes[0]) << 24U | static_cast<std::size_t>(bytes[1]) << 16U |
           static_cast<std::size_t>(bytes[2]) << 8U | bytes[3];
}

void append_number(std::vector<std::uint8_t>& to, std::size_t number, unsigned bytes)
{
    while (bytes-- > 0) {
        to.push_back(static_cast<std::uint8_t>(number >> 8U * bytes));
    }
}

/// Calls @p body with the name and the content of each chunk of a file of ours.
template <typename Body>
void for_chunks(std::span<std::uint8_t const> file, Body const& body)
{
    for (std::size_t at = kSignature; at < file.size();) {
        std::size_t const size = number_at(file.subspan(at));
        body(std::string_view(reinterpret_cast<char const*>(&file[at + 4]), 4), file.subspan(at + 8, size));
        at += size + 12;
    }
}

class Animation {
public:
    Animation(std::size_t frames, double seconds_a_frame) : frames_(frames)
    {
        milliseconds_ =
            static_cast<std::size_t>(std::lround(std::clamp(seconds_a_frame, 0.001, 65.0) * 1000));
    }

    /// The first one is what programs show that know no animations, and brings the head of the file.
    void add_first(std::span<std::uint8_t const> file)
    {
        bytes_.assign(file.begin(), file.begin() + kSignature);
        bool has_begun = false;
        for_chunks(file, [&](std::string_view name, std::span<std::uint8_t const> content) {
            if (name == "IDAT" && !has_begun) {
                has_begun = true;
                add_control();
            }
            if (name == "IHDR") {
                size_.assign(content.begin(), content.begin() + 8);
            }
            if (name != "IEND") {
                append_png_chunk(bytes_, name, content);
            }
            if (name == "IHDR") {
                add_head();
            }
        });
    }

    void add(std::span<std::uint8_t const> file)
    {
        add_control();
        for_chunks(file, [&](std::string_view name, std::span<std::uint8_t const> content) {
            if (name == "IDAT") {
                std::vector<std::uint8_t> data;
                append_number(data, number_++, 4);
                data.insert(data.end(), content.begin(), content.end());
                append_png_chunk(bytes_, "fdAT", data);
            }
        });
    }

    std::vector<std::uint8_t> end()
    {
        append_png_chunk(bytes_, "IEND", {});
        return std::move(bytes_);
    }

private:
    void add_head()
    {
        std::vector<std::uint8_t> head;
        append_number(head, frames_, 4);
        append_number(head, 0, 4); // again and again
        append_png_chunk(bytes_, "acTL", head);
    }

    void add_control()
    {
        std::vector<std::uint8_t> control;
        append_number(control, number_++, 4);
        control.insert(control.end(), size_.begin(), size_.end());
        append_number(control, 0, 4); // at the left
        append_number(control, 0, 4); // and the top
        append_number(control, milliseconds_, 2);
        append_number(control, 1000, 2);
        append_number(control, 0, 2); // it replaces the one before
        append_png_chunk(bytes_, "fcTL", control);
    }

    std::size_t frames_;
    std::size_t milliseconds_;
    std::size_t number_ = 0; ///< Of the next chunk of the animation.
    std::vector<std::uint8_t> size_;
    std::vector<std::uint8_t> bytes_;
};

} // namespace

std::vector<std::uint8_t> animated_png_bytes(std::vector<Picture> const& frames, double seconds_a_frame,
                                             Compression compression)
{
    Animation animation(frames.size(), seconds_a_frame);
    animation.add_first(png_bytes(frames.front(), compression));
    for (auto const& frame : std::span(frames).subspan(1)) {
        animation.add(png_bytes(frame, compression));
    }
    return animation.end();
}

} // namespace umbrixlib::toolkit
