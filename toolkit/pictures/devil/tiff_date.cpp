// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/tiff_date.h"

#include <cstdint>
#include <fstream>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kDateTag = 306;
constexpr std::string_view kDate("1970:01:01 00:00:00", 20); // with the zero at its end

/// Whole numbers of 2 and 4 bytes in the file's own byte order.
class Reader {
public:
    explicit Reader(std::fstream& file) : file_(file)
    {
        char order[2] = {};
        file_.read(order, 2);
        little_ = order[0] == 'I';
    }

    std::uint32_t at(std::uint32_t offset, unsigned size)
    {
        unsigned char bytes[4] = {};
        file_.seekg(offset);
        file_.read(reinterpret_cast<char*>(bytes), size);
        std::uint32_t value = 0;
        for (unsigned i = 0; i < size; ++i) {
            value = value << 8 | bytes[little_ ? size - 1 - i : i];
        }
        return value;
    }

private:
    std::fstream& file_;
    bool little_ = true;
};

} // namespace

bool fix_tiff_date(std::filesystem::path const& path)
{
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    Reader number(file);
    std::uint32_t const directory = number.at(4, 4);
    std::uint32_t const entries = number.at(directory, 2);
    for (std::uint32_t i = 0; i < entries && file; ++i) {
        std::uint32_t const entry = directory + 2 + 12 * i;
        if (number.at(entry, 2) == kDateTag && number.at(entry + 4, 4) == kDate.size()) {
            file.seekp(number.at(entry + 8, 4));
            file.write(kDate.data(), static_cast<std::streamsize>(kDate.size()));
        }
    }
    return !!file.flush();
}

} // namespace umbrixlib::toolkit
