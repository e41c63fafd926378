// SPDX-License-Identifier: MIT
/// Writes an OpenEXR file by OpenEXR's own library; the generator compiles and runs it.
/// Usage: write_exr FILE WIDTH HEIGHT [KEY=VALUE...] NAME:half|float|uint:RAWFILE...
/// Keys: compression, kind (rows, tiles, mipmap, ripmap, deep, parts), order (up, down, any), x and y (the
/// corner of the data window), shown (x0,y0,x1,y1 of the display window), sampling (of all channels).
#include <ImfChannelList.h>
#include <ImfDeepFrameBuffer.h>
#include <ImfDeepScanLineOutputFile.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfMultiPartOutputFile.h>
#include <ImfOutputFile.h>
#include <ImfOutputPart.h>
#include <ImfPartType.h>
#include <ImfTiledOutputFile.h>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace OPENEXR_IMF_NAMESPACE;
using IMATH_NAMESPACE::Box2i;
using IMATH_NAMESPACE::V2i;

struct Plane {
    std::string name;
    PixelType type;
    std::vector<char> samples;
};

Compression compression_called(std::string const& name)
{
    std::map<std::string, Compression> const all{{"none", NO_COMPRESSION},   {"rle", RLE_COMPRESSION},
                                                 {"zips", ZIPS_COMPRESSION}, {"zip", ZIP_COMPRESSION},
                                                 {"piz", PIZ_COMPRESSION},   {"pxr24", PXR24_COMPRESSION},
                                                 {"b44", B44_COMPRESSION},   {"b44a", B44A_COMPRESSION},
                                                 {"dwaa", DWAA_COMPRESSION}, {"dwab", DWAB_COMPRESSION}};
    return all.at(name);
}

std::string value_of(std::map<std::string, std::string> const& keys, char const* key, char const* otherwise)
{
    auto const found = keys.find(key);
    return found == keys.end() ? otherwise : found->second;
}

void write_deep(char const* file, Header header, int width, int height)
{
    header.setType(DEEPSCANLINE);
    DeepScanLineOutputFile output(file, header);
    std::vector<unsigned> counts(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 1);
    std::vector<float> samples(counts.size(), 0.5f);
    std::vector<char*> places;
    for (float& sample : samples) {
        places.push_back(reinterpret_cast<char*>(&sample));
    }
    auto const row = static_cast<std::size_t>(width);
    DeepFrameBuffer buffer;
    buffer.insertSampleCountSlice(
        Slice(UINT, reinterpret_cast<char*>(counts.data()), sizeof(unsigned), row * sizeof(unsigned)));
    buffer.insert("Z", DeepSlice(FLOAT, reinterpret_cast<char*>(places.data()), sizeof(char*),
                                 row * sizeof(char*), sizeof(float)));
    output.setFrameBuffer(buffer);
    output.writePixels(height);
}

} // namespace

int main(int count, char** words)
{
    int const width = std::stoi(words[2]);
    int const height = std::stoi(words[3]);
    std::map<std::string, std::string> keys;
    std::vector<Plane> channels;
    for (int i = 4; i < count; ++i) {
        std::string const word = words[i];
        if (auto const at = word.find('='); at != std::string::npos) {
            keys[word.substr(0, at)] = word.substr(at + 1);
            continue;
        }
        auto const first = word.find(':');
        auto const second = word.find(':', first + 1);
        std::string const type = word.substr(first + 1, second - first - 1);
        std::ifstream raw(word.substr(second + 1), std::ios::binary);
        channels.push_back({word.substr(0, first),
                            type == "half"    ? HALF
                            : type == "float" ? FLOAT
                                              : UINT,
                            {std::istreambuf_iterator<char>(raw), {}}});
    }
    std::string const kind = value_of(keys, "kind", "rows");
    int const sampling = std::stoi(value_of(keys, "sampling", "1"));
    int const left = std::stoi(value_of(keys, "x", "0"));
    int const top = std::stoi(value_of(keys, "y", "0"));
    Box2i const window(V2i(left, top), V2i(left + width - 1, top + height - 1));
    Box2i shown = window;
    if (keys.contains("shown")) {
        std::sscanf(keys["shown"].c_str(), "%d,%d,%d,%d", &shown.min.x, &shown.min.y, &shown.max.x,
                    &shown.max.y);
    }
    std::string const order = value_of(keys, "order", "up");
    Header header(shown, window, 1, IMATH_NAMESPACE::V2f(0, 0), 1,
                  order == "down"  ? DECREASING_Y
                  : order == "any" ? RANDOM_Y
                                   : INCREASING_Y,
                  compression_called(value_of(keys, "compression", "none")));
    FrameBuffer buffer;
    for (Plane& channel : channels) {
        header.channels().insert(channel.name, Channel(channel.type, sampling, sampling));
        std::size_t const size = channel.type == HALF ? 2 : 4;
        auto const row = size * static_cast<std::size_t>(width / sampling);
        char* const corner = channel.samples.data() - static_cast<std::ptrdiff_t>(size) * (left / sampling) -
                             static_cast<std::ptrdiff_t>(row) * (top / sampling);
        buffer.insert(channel.name, Slice(channel.type, corner, size, row, sampling, sampling));
    }
    if (kind == "deep") {
        write_deep(words[1], header, width, height);
    } else if (kind == "parts") {
        header.setType(SCANLINEIMAGE);
        std::vector<Header> headers{header, header};
        headers[0].setName("one");
        headers[1].setName("two");
        MultiPartOutputFile output(words[1], headers.data(), 2);
        for (int part = 0; part < 2; ++part) {
            OutputPart rows(output, part);
            rows.setFrameBuffer(buffer);
            rows.writePixels(height);
        }
    } else if (kind == "rows") {
        OutputFile output(words[1], header);
        output.setFrameBuffer(buffer);
        for (int y = 0; y < height; ++y) {
            output.writePixels(1);
        }
    } else {
        LevelMode const mode = kind == "mipmap"   ? MIPMAP_LEVELS
                               : kind == "ripmap" ? RIPMAP_LEVELS
                                                  : ONE_LEVEL;
        header.setTileDescription(TileDescription(16, 12, mode));
        TiledOutputFile output(words[1], header);
        output.setFrameBuffer(buffer); // smaller levels have the corner of the picture
        for (int y = 0; y < output.numYLevels(); ++y) {
            for (int x = 0; x < output.numXLevels(); ++x) {
                if (mode == RIPMAP_LEVELS || x == y) {
                    output.writeTiles(0, output.numXTiles(x) - 1, 0, output.numYTiles(y) - 1, x, y);
                }
            }
        }
    }
    return 0;
}
