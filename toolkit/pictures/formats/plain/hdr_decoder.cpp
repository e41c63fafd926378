// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kLongestLine = 4096;
constexpr int kRunBit = 128;

using Texel = std::array<std::uint8_t, 4>; ///< Mantissas of red, green and blue, and their exponent.

/// What the lines in front of the texels say.
struct Header {
    int lines = 0;  ///< Of texels, as the file has them: rows or columns.
    int length = 0; ///< Texels of one.
    bool of_columns = false;
    bool bottom_first = false;
    bool right_first = false;
    std::vector<std::string> notes;
};

/// Radiance HDR: texels of one exponent, in run lengths of the newer or the older kind, or flat.
class HdrReader {
public:
    explicit HdrReader(SourceFile& source) : source_(source)
    {
        for (int exponent = 1; exponent < 256; ++exponent) {
            scales_[static_cast<std::size_t>(exponent)] = std::ldexp(1.0f, exponent - 136);
        }
    }

    DecodedFile decode()
    {
        Header header = read_header();
        source_.check_size(header.length, header.lines);
        int const width = header.of_columns ? header.lines : header.length;
        int const height = header.of_columns ? header.length : header.lines;
        // A run of the older kind has 4 bytes, and no upper limit but a row.
        source_.check_length(4.0 * header.lines);
        Picture picture = make_picture(width, height, 3, SampleType::kFloat);
        auto const samples = picture.samples<float>();
        std::vector<Texel> line(static_cast<std::size_t>(header.length));
        for (int i = 0; i < header.lines; ++i) {
            read_line(line);
            for (int k = 0; k < header.length; ++k) {
                int const x = header.of_columns ? i : k;
                int const y = header.of_columns ? k : i;
                int const column = header.right_first ? width - 1 - x : x;
                int const row = header.bottom_first ? y : height - 1 - y;
                std::size_t const at = static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                                       static_cast<std::size_t>(column);
                put(line[static_cast<std::size_t>(k)], samples.subspan(3 * at, 3));
            }
        }
        return {std::move(picture), false, "Radiance HDR", std::move(header.notes)};
    }

private:
    void put(Texel const& texel, std::span<float> to) const
    {
        for (std::size_t c = 0; c < 3; ++c) {
            to[c] = static_cast<float>(texel[c]) * scales_[texel[3]];
        }
    }

    int next()
    {
        int const byte = source_.next();
        if (byte < 0) {
            source_.refuse_as_damaged();
        }
        return byte;
    }

    std::string next_line()
    {
        std::string line;
        for (int byte = next(); byte != '\n'; byte = next()) {
            line += static_cast<char>(byte);
            if (line.size() > kLongestLine) {
                source_.refuse_as_damaged();
            }
        }
        return line;
    }

    Header read_header()
    {
        Header header;
        for (std::string line = next_line(); !line.empty(); line = next_line()) {
            if (line.starts_with("FORMAT=") && line.find("rle_rgbe") == std::string::npos) {
                source_.refuse("it is a Radiance picture of XYZ colours", "save it as RGB");
            }
            if (line.starts_with("EXPOSURE=") && header.notes.empty()) {
                header.notes.emplace_back("its exposure is left alone: values count as they are");
            }
        }
        read_size(next_line(), header);
        return header;
    }

    /// "-Y 16 +X 32": 16 rows from the top, of 32 texels from the left.
    void read_size(std::string const& line, Header& header)
    {
        char signs[2] = {};
        char axes[2] = {};
        int end = 0;
        int const found = std::sscanf(line.c_str(), "%c%c %6d %c%c %6d%n", &signs[0], &axes[0], &header.lines,
                                      &signs[1], &axes[1], &header.length, &end);
        header.of_columns = axes[0] == 'X';
        bool const sound = found == 6 && static_cast<std::size_t>(end) == line.size() &&
                           axes[0] + axes[1] == 'X' + 'Y' && (axes[0] == 'X' || axes[0] == 'Y') &&
                           (signs[0] == '+' || signs[0] == '-') && (signs[1] == '+' || signs[1] == '-');
        if (!sound) {
            source_.refuse_as_damaged();
        }
        std::size_t const of_y = header.of_columns ? 1 : 0;
        header.bottom_first = signs[of_y] == '+';
        header.right_first = signs[1 - of_y] == '-';
    }

    Texel next_texel()
    {
        Texel texel{};
        source_.read(texel);
        return texel;
    }

    void read_line(std::vector<Texel>& line)
    {
        Texel const first = next_texel();
        bool const is_newer =
            first[0] == 2 && first[1] == 2 && first[2] < 128 && line.size() >= 8 && line.size() < 32768;
        if (!is_newer) {
            return read_texels(first, line);
        }
        if ((static_cast<std::size_t>(first[2]) << 8U | first[3]) != line.size()) {
            source_.refuse_as_damaged();
        }
        for (std::size_t channel = 0; channel < 4; ++channel) {
            read_channel(channel, line);
        }
    }

    /// Runs of one byte, and stretches of bytes as they are.
    void read_channel(std::size_t channel, std::vector<Texel>& line)
    {
        for (std::size_t at = 0; at < line.size();) {
            int const count = next();
            bool const is_run = count > kRunBit;
            auto const texels = static_cast<std::size_t>(is_run ? count - kRunBit : count);
            if (texels == 0 || texels > line.size() - at) {
                source_.refuse_as_damaged();
            }
            int byte = is_run ? next() : 0;
            for (std::size_t const end = at + texels; at < end; ++at) {
                byte = is_run ? byte : next();
                line[at][channel] = static_cast<std::uint8_t>(byte);
            }
        }
    }

    /// Flat, or of the older kind: whole texels, and counts of how often the last is repeated, the lower byte
    /// of a count first.
    void read_texels(Texel texel, std::vector<Texel>& line)
    {
        unsigned shift = 0;
        for (std::size_t at = 0;;) {
            if (texel[0] == 1 && texel[1] == 1 && texel[2] == 1) {
                if (at == 0 || shift > 16 || (std::size_t{texel[3]} << shift) > line.size() - at) {
                    source_.refuse_as_damaged();
                }
                std::size_t const count = std::size_t{texel[3]} << shift;
                std::fill_n(line.begin() + static_cast<std::ptrdiff_t>(at), count, line[at - 1]);
                at += count;
                shift += 8;
            } else {
                line[at++] = texel;
                shift = 0;
            }
            if (at >= line.size()) {
                return;
            }
            texel = next_texel();
        }
    }

    SourceFile& source_;
    std::array<float, 256> scales_{}; ///< What a mantissa of 1 stands for, by exponents.
};

class HdrDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return source.begins_with("#?RADIANCE") || source.begins_with("#?RGBE");
    }

    DecodedFile decode(SourceFile& source) const override { return HdrReader(source).decode(); }
};

} // namespace

Decoder const& hdr_decoder()
{
    static HdrDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
