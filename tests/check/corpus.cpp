// SPDX-License-Identifier: MIT
#include "corpus.h"

#include "jpeg_blocks.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>

namespace umbrixlib::test {

using namespace toolkit;

namespace {

constexpr double kLargest = 1 << 26;

std::uint8_t nearest_byte(double value)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

/// A component of a normal that was cut off to a byte, and back.
double component_of(std::uint8_t byte)
{
    return (byte + 0.5) / 127.5 - 1.0;
}
std::uint8_t byte_of(double component)
{
    return nearest_byte((component + 1.0) * 127.5 - 0.5);
}

template <typename Change>
Picture changed_texels(Picture const& from, Change const& change)
{
    Picture result = from;
    for (std::size_t i = 0; i < result.texels(); ++i) {
        change(result.texel(i), i);
    }
    return result;
}

/// Changes that share of the texels, spread by chance.
template <typename Change>
Picture changed_share(Picture const& from, double share, Change const& change)
{
    std::mt19937 random(7);
    return changed_texels(from, [&](std::uint8_t* texel, std::size_t) {
        if (std::uniform_real_distribution<>()(random) < share) {
            change(texel);
        }
    });
}

Picture with_lengths(Picture const& normals, double length, double share)
{
    return changed_share(normals, share, [&](std::uint8_t* texel) {
        for (int c = 0; c < 3; ++c) {
            texel[c] = byte_of(component_of(texel[c]) * length);
        }
    });
}

/// Normals of slopes that are @p part of those of @p normals; red and green go through @p turn.
template <typename Turn>
Picture flatter(Picture const& normals, double part, Turn const& turn)
{
    return changed_texels(normals, [&](std::uint8_t* texel, std::size_t) {
        double const x = component_of(texel[0]) / component_of(texel[2]) * part;
        double const y = component_of(texel[1]) / component_of(texel[2]) * part;
        double const length = std::sqrt(x * x + y * y + 1.0);
        auto const [red, green] = turn(x / length, y / length);
        texel[0] = byte_of(red);
        texel[1] = byte_of(green);
        texel[2] = byte_of(1.0 / length);
    });
}

/// Puts flat ground into the middle; @p value tells red and green of its texels.
template <typename Value>
Picture with_flat_ground(Picture const& normals, double share, Value const& value)
{
    int const side = static_cast<int>(std::sqrt(share * static_cast<double>(normals.texels())));
    int const left = (normals.width - side) / 2;
    int const bottom = (normals.height - side) / 2;
    return changed_texels(normals, [&](std::uint8_t* texel, std::size_t i) {
        int const x = static_cast<int>(i % static_cast<std::size_t>(normals.width)) - left;
        int const y = static_cast<int>(i / static_cast<std::size_t>(normals.width)) - bottom;
        if (x >= 0 && x < side && y >= 0 && y < side) {
            auto const [red, green] = value(x < side / 2);
            texel[0] = red;
            texel[1] = green;
            texel[2] = 255;
        }
    });
}

Picture with_contrast(Picture const& from, double times, int channels)
{
    return changed_texels(from, [&](std::uint8_t* texel, std::size_t) {
        for (int c = 0; c < channels; ++c) {
            texel[c] = nearest_byte((texel[c] - 127.5) * times + 127.5);
        }
    });
}

/// Without the last @p share of the columns, or of the rows.
Picture cropped(Picture const& from, double share, bool columns)
{
    int const width = columns ? static_cast<int>(from.width * (1.0 - share)) : from.width;
    int const height = columns ? from.height : static_cast<int>(from.height * (1.0 - share));
    Picture result = make_picture(width, height, from.channels);
    for (int y = 0; y < height; ++y) {
        std::copy_n(from.texel(static_cast<std::size_t>(y) * static_cast<std::size_t>(from.width)),
                    static_cast<std::size_t>(width * from.channels),
                    result.texel(static_cast<std::size_t>(y) * static_cast<std::size_t>(width)));
    }
    return result;
}

/// 16 bits with chance below the bytes, but for the first @p share of the rows.
Picture with_steps(Picture const& from, double share)
{
    std::mt19937 random(11);
    Picture result = make_picture(from.width, from.height, from.channels, SampleType::kUint16);
    auto const words = result.samples<std::uint16_t>();
    for (std::size_t i = 0; i < words.size(); ++i) {
        double const word = from.bytes[i] * 257.0;
        bool const steps = static_cast<double>(i) < share * static_cast<double>(words.size());
        double const noise = steps ? 0.0 : static_cast<double>(random() % 257) - 128.0;
        words[i] = static_cast<std::uint16_t>(std::clamp(word + noise, 0.0, 65535.0));
    }
    return result;
}

Picture brighter(Picture const& map, double times)
{
    return changed_texels(map, [&](std::uint8_t* texel, std::size_t) {
        for (int c = 0; c < 3; ++c) {
            texel[c] = nearest_byte(texel[c] * times);
        }
    });
}

/// As a screen would have it: a power of 1 / @p gamma.
Picture with_gamma(Picture const& map, double gamma)
{
    return changed_texels(map, [&](std::uint8_t* texel, std::size_t) {
        for (int c = 0; c < 3; ++c) {
            texel[c] = nearest_byte(255.0 * std::pow(texel[c] / 255.0, 1.0 / gamma));
        }
    });
}

void add_faults_of_normals(std::vector<MapFault>& faults)
{
    auto const kind = PictureKind::kNormals;
    using Bytes2 = std::pair<std::uint8_t, std::uint8_t>;
    using Parts = std::pair<double, double>;
    faults.push_back(
        {"all shortened", "normal-length", kind, {0.96, 0.9, 0.7}, [](Picture const& from, double by) {
             return with_lengths(from, by, 1.0);
         }});
    faults.push_back(
        {"some shortened", "normal-length", kind, {0.002, 0.02, 0.2}, [](Picture const& from, double share) {
             return with_lengths(from, 0.8, share);
         }});
    faults.push_back({"turned inwards",
                      "blue-below-half",
                      kind,
                      {0.0002, 0.01, 0.1},
                      [](Picture const& from, double share) {
                          return changed_share(from, share, [](std::uint8_t* texel) {
                              texel[2] = static_cast<std::uint8_t>(255 - texel[2]);
                          });
                      }});
    faults.push_back(
        {"one blue", "blue-constant", kind, {255, 200, 128}, [](Picture const& from, double blue) {
             return changed_texels(
                 from, [&](std::uint8_t* texel, std::size_t) { texel[2] = static_cast<std::uint8_t>(blue); });
         }});
    faults.push_back(
        {"two flats", "flat-value", kind, {0.02, 0.1, 0.4}, [](Picture const& from, double share) {
             return with_flat_ground(from, share, [](bool left) {
                 return left ? Bytes2{127, 127} : Bytes2{128, 128};
             });
         }});
    faults.push_back(
        {"a flat each", "flat-value", kind, {0.02, 0.1, 0.4}, [](Picture const& from, double share) {
             return with_flat_ground(from, share, [](bool) { return Bytes2{127, 128}; });
         }});
    faults.push_back({"swapped", "axes-swapped", kind, {0.1, 0.3, 1.0}, [](Picture const& from, double part) {
                          return flatter(from, part, [](double x, double y) { return Parts{y, x}; });
                      }});
    faults.push_back(
        {"swapped, turned", "axes-swapped", kind, {0.1, 0.3, 1.0}, [](Picture const& from, double part) {
             return flatter(from, part, [](double x, double y) { return Parts{-y, x}; });
         }});
    faults.push_back(
        {"green over", "green-direction", kind, {0.1, 0.3, 1.0}, [](Picture const& from, double part) {
             return flatter(from, part, [](double x, double y) { return Parts{x, -y}; });
         }});
    faults.push_back({"contrast", "clipped", kind, {2.5, 3.5, 5.0}, [](Picture const& from, double times) {
                          return with_contrast(from, times, 2);
                      }});
}

void add_faults_of_all(std::vector<MapFault>& faults, PictureKind kind)
{
    faults.push_back({"JPEG", "jpeg-blocks", kind, {90, 75, 50}, [](Picture const& from, double quality) {
                          return through_jpeg(from, static_cast<int>(quality));
                      }});
    faults.push_back({"8 in 16 bits", "eight-bit-steps", kind, {0.2, 0.5, 1.0}, with_steps});
    faults.push_back(
        {"crop, columns", "seam-x", kind, {0.06, 0.2, 0.45}, [](Picture const& from, double share) {
             return cropped(from, share, true);
         }});
    faults.push_back({"crop, rows", "seam-y", kind, {0.06, 0.2, 0.45}, [](Picture const& from, double share) {
                          return cropped(from, share, false);
                      }});
}

std::vector<MapFault> all_faults()
{
    std::vector<MapFault> faults;
    add_faults_of_normals(faults);
    add_faults_of_all(faults, PictureKind::kNormals);
    faults.push_back(
        {"contrast",
         "clipped",
         PictureKind::kHeights,
         {1.1, 1.3, 2.0},
         [](Picture const& from, double times) { return with_contrast(from, times, from.channels); }});
    add_faults_of_all(faults, PictureKind::kHeights);
    faults.push_back({"brighter", "impossible-light", PictureKind::kLight, {1.15, 1.3, 2.0}, brighter});
    faults.push_back({"gamma", "impossible-light", PictureKind::kLight, {1.3, 1.8, 2.2}, with_gamma});
    add_faults_of_all(faults, PictureKind::kLight);
    return faults;
}

} // namespace

std::vector<MapFault> const& map_faults()
{
    static std::vector<MapFault> const all = all_faults();
    return all;
}

Picture corpus_picture(std::string const& file)
{
    DecodedImage const image(file, file, kLargest);
    Picture picture = image.picture();
    picture.attributes.clear();
    return picture.has_alpha() ? without_alpha(picture) : picture;
}

std::vector<std::string> shipped_maps(std::string const& kind)
{
    std::vector<std::string> files;
    for (char const* const material : {"bricks", "cloth", "cobbles", "dunes"}) {
        files.push_back(std::string(UMBRIX_EXAMPLES "/textures/") + material + "_" + kind + ".png");
    }
    return files;
}

void write_png(Picture const& picture, std::string const& file)
{
    Observer nobody;
    write_picture(file, *output_format(file), file, picture, Compression::kFast, nobody);
}

CheckReport check_of(std::string const& file, PictureKind kind, std::function<void(CheckJob&)> const& change)
{
    CheckJob job;
    job.files.input = file;
    job.files.max_texels = kLargest;
    job.kind = kind;
    if (kind == PictureKind::kNormals) {
        job.normal_y = NormalY::kUp;
    }
    if (change) {
        change(job);
    }
    Observer nobody;
    return toolkit::run(job, nobody);
}

std::string names_of(Findings const& findings)
{
    std::string names;
    for (Finding const& each : findings) {
        names += (names.empty() ? "" : " ") + each.name;
    }
    return names;
}

} // namespace umbrixlib::test
