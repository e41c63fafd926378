// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kShortestRun = 4;
constexpr std::size_t kLongestRun = 127;
constexpr std::size_t kLongestStretch = 128;
constexpr std::size_t kFewestTexels = 8; ///< Of a row with run lengths.
constexpr std::size_t kMostTexels = 32767;
constexpr float kDarkest = 1e-32f;

using Texel = std::array<std::uint8_t, 4>; ///< Mantissas of red, green and blue, and their exponent.

/// What is below 0, or no number, is 0; what is above the largest number is that.
Texel texel_of(std::span<float const> colour)
{
    float sound[3];
    for (std::size_t c = 0; c < 3; ++c) {
        sound[c] = colour[c] > 0.0f ? std::min(colour[c], 1e38f) : 0.0f;
    }
    float const most = std::max({sound[0], sound[1], sound[2]});
    if (most < kDarkest) {
        return {};
    }
    int exponent = 0;
    float const scale = std::frexp(most, &exponent) * 256.0f / most;
    Texel texel{};
    for (std::size_t c = 0; c < 3; ++c) {
        texel[c] = static_cast<std::uint8_t>(std::min(sound[c] * scale, 255.0f));
    }
    texel[3] = static_cast<std::uint8_t>(exponent + 128);
    return texel;
}

/// One channel of a row: runs of at least 4, and stretches as they are.
void append_channel(ByteWriter& to, std::vector<Texel> const& row, std::size_t channel)
{
    std::size_t const size = row.size();
    auto const run_at = [&](std::size_t at) {
        std::size_t count = 1;
        while (at + count < size && count < kLongestRun && row[at + count][channel] == row[at][channel]) {
            ++count;
        }
        return count;
    };
    auto const put_run = [&](std::size_t at, std::size_t count) {
        to.u8(128 + static_cast<unsigned>(count)).u8(row[at][channel]);
    };
    for (std::size_t at = 0; at < size;) {
        std::size_t run_begin = at;
        std::size_t run = 0;
        std::size_t run_before = 0;
        while (run < kShortestRun && run_begin < size) {
            run_begin += run;
            run_before = run;
            run = run_begin < size ? run_at(run_begin) : 0;
        }
        if (run_before > 1 && run_before == run_begin - at) { // a short run up to the long one
            put_run(at, run_before);
            at = run_begin;
        }
        while (at < run_begin) {
            std::size_t const count = std::min(run_begin - at, kLongestStretch);
            to.u8(static_cast<unsigned>(count));
            for (std::size_t const end = at + count; at < end; ++at) {
                to.u8(row[at][channel]);
            }
        }
        if (run >= kShortestRun) {
            put_run(run_begin, run);
            at += run;
        }
    }
}

/// Colours of floats; an alpha is left out.
class HdrEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        Picture const colours =
            in_colour(picture.type == SampleType::kFloat ? picture : in_floats(picture), false);
        std::vector<Texel> row(static_cast<std::size_t>(picture.width));
        bool const has_runs = row.size() >= kFewestTexels && row.size() <= kMostTexels;
        ByteWriter writer(ByteOrder::kBig);
        writer.text(
            fmt::format("#?RGBE\nFORMAT=32-bit_rle_rgbe\n\n-Y {} +X {}\n", picture.height, picture.width));
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = picture.height - 1; good && y >= 0; --y) {
            auto const from = row_of<float>(colours, y);
            for (std::size_t x = 0; x < row.size(); ++x) {
                row[x] = texel_of(from.subspan(3 * x, 3));
            }
            append(writer, row, has_runs);
            good = writer.flush(stream);
        }
        return stream.close();
    }

private:
    static void append(ByteWriter& to, std::vector<Texel> const& row, bool has_runs)
    {
        if (has_runs) {
            to.u16(0x202).u16(static_cast<unsigned>(row.size()));
            for (std::size_t channel = 0; channel < 4; ++channel) {
                append_channel(to, row, channel);
            }
            return;
        }
        for (Texel const& texel : row) {
            to.samples<std::uint8_t>(texel);
        }
    }
};

} // namespace

Encoder const& hdr_encoder()
{
    static HdrEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
