// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/hdr_file.h"

#include "toolkit/base/failure.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::string_view kSignature = "#?R"; // of "#?RADIANCE" and "#?RGBE"
constexpr std::size_t kLongestSizeLine = 79;
constexpr int kRunBit = 128;

/// Thrown where a picture is not as it should be.
struct Damage {};

class HdrReader {
public:
    explicit HdrReader(std::filesystem::path const& file)
    {
        stream_.open(file, std::ios::in | std::ios::binary);
    }

    bool is_hdr()
    {
        std::string start;
        for (int byte = 0; start.size() < kSignature.size() && (byte = stream_.sbumpc()) != EOF;) {
            start += static_cast<char>(byte);
        }
        return start == kSignature;
    }

    void check()
    {
        skip_header();
        int height = 0;
        int width = 0;
        read_size(height, width);
        for (int row = 0; row < height; ++row) {
            check_row(width);
        }
    }

private:
    using Pixel = std::array<int, 4>;

    int next()
    {
        int const byte = stream_.sbumpc();
        if (byte == EOF) {
            throw Damage();
        }
        return byte;
    }

    Pixel next_pixel() { return {next(), next(), next(), next()}; }

    /// An empty line ends it.
    void skip_header()
    {
        for (int before = 0, byte = next(); before != '\n' || byte != '\n';) {
            before = byte;
            byte = next();
        }
    }

    void read_size(int& height, int& width)
    {
        std::string line;
        for (int byte = next(); byte != '\n'; byte = next()) {
            line += static_cast<char>(byte);
            if (line.size() > kLongestSizeLine) {
                throw Damage();
            }
        }
        int end = 0;
        int const found = std::sscanf(line.c_str(), "-Y %d +X %d%n", &height, &width, &end);
        if (found != 2 || static_cast<std::size_t>(end) != line.size() || height < 1 || width < 1) {
            throw Damage();
        }
    }

    void check_row(int width)
    {
        Pixel const first = next_pixel();
        if (first[0] == 2 && first[1] == 2) {
            if ((first[2] << 8 | first[3]) != width) {
                throw Damage();
            }
            for (int channel = 0; channel < 4; ++channel) {
                check_channel(width);
            }
        } else {
            check_pixels(first, width);
        }
    }

    /// Runs of one byte, and stretches of bytes as they are.
    void check_channel(int width)
    {
        for (int done = 0; done < width;) {
            int const count = next();
            bool const is_run = count > kRunBit;
            int const texels = is_run ? count - kRunBit : count;
            if (texels > width - done) {
                throw Damage();
            }
            for (int bytes = is_run ? 1 : texels; bytes > 0; --bytes) {
                next();
            }
            done += texels;
        }
    }

    /// The older form: whole pixels, and counts of how often the last is repeated, the lower byte of one
    /// first.
    void check_pixels(Pixel pixel, int width)
    {
        int shift = 0;
        for (int done = 0;;) {
            if (pixel[0] == 1 && pixel[1] == 1 && pixel[2] == 1) {
                if (done == 0 || shift > 16 || (pixel[3] << shift) > width - done) {
                    throw Damage();
                }
                done += pixel[3] << shift;
                shift += 8;
            } else {
                ++done;
                shift = 0;
            }
            if (done >= width) {
                return;
            }
            pixel = next_pixel();
        }
    }

    std::filebuf stream_;
};

} // namespace

void refuse_hdr_with_damaged_rows(std::filesystem::path const& file, std::string const& subject)
{
    HdrReader reader(file);
    if (!reader.is_hdr()) {
        return;
    }
    try {
        reader.check();
    } catch (Damage const&) {
        throw Failure(Fault::kDamagedPicture, subject,
                      "it is damaged: its rows are not what its size asks for");
    }
}

} // namespace umbrixlib::toolkit
