// SPDX-License-Identifier: MIT
#include "variants.h"

#include "picture_files.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/decoded_image.h"

#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <limits>
#include <regex>
#include <stdexcept>

namespace umbrixlib::test {

namespace {

namespace fs = std::filesystem;
using namespace umbrixlib::toolkit;

constexpr double kMostTexels = 1 << 20;

std::vector<std::string> fields_of(std::string const& line)
{
    std::vector<std::string> fields(1);
    for (char const letter : line) {
        if (letter == '\t') {
            fields.emplace_back();
        } else {
            fields.back() += letter;
        }
    }
    return fields;
}

SampleType type_called(std::string const& name)
{
    return name == "u8"     ? SampleType::kUint8
           : name == "u16"  ? SampleType::kUint16
           : name == "half" ? SampleType::kHalf
                            : SampleType::kFloat;
}

/// References have the top row first. Their names tell their form: 13x7x3_u16_ and a sum of their bytes.
Picture read_reference(fs::path const& file)
{
    std::smatch parts;
    std::string const name = file.filename().string();
    if (!std::regex_match(name, parts,
                          std::regex("(\\d+)x(\\d+)x(\\d)_(u8|u16|half|float)_[0-9a-f]+\\.raw"))) {
        throw std::runtime_error("no name of a reference: " + name);
    }
    Picture picture =
        make_picture(std::stoi(parts[1]), std::stoi(parts[2]), std::stoi(parts[3]), type_called(parts[4]));
    auto const bytes = read_file(file);
    if (bytes.size() != picture.bytes.size()) {
        throw std::runtime_error(name + " has another length than its name says");
    }
    std::ranges::copy(bytes, picture.bytes.begin());
    return upside_down(picture);
}

std::string form_of(Picture const& picture)
{
    constexpr char const* kTypes[] = {"uint8", "uint16", "half", "float"};
    std::size_t const type = picture.type == SampleType::kUint8    ? 0
                             : picture.type == SampleType::kUint16 ? 1
                             : picture.type == SampleType::kHalf   ? 2
                                                                   : 3;
    return fmt::format("{} x {}, {} channels of {}", picture.width, picture.height, picture.channels,
                       kTypes[type]);
}

/// 0 for what is equal, infinite numbers among them, and for NaN in both.
double difference_of(double a, double b)
{
    if (a == b || (std::isnan(a) && std::isnan(b))) {
        return 0;
    }
    double const difference = std::abs(a - b);
    return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

void compare(Picture const& picture, Picture const& reference, double tolerance, Result& result)
{
    if (form_of(picture) != form_of(reference)) {
        result.fault = fmt::format("{} instead of {}", form_of(picture), form_of(reference));
        return;
    }
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const width = static_cast<std::size_t>(picture.width);
    with_samples(picture, [&]<typename Sample>(std::span<Sample const> samples) {
        auto const expected = reference.samples<Sample>();
        for (std::size_t i = 0; i < samples.size(); ++i) {
            double const number = to_number(samples[i]);
            double const wanted = to_number(expected[i]);
            double const difference = difference_of(number, wanted);
            result.difference = std::max(result.difference, difference);
            if (difference > tolerance && result.fault.empty()) {
                std::size_t const texel = i / channels;
                result.fault = fmt::format("{} instead of {} in channel {} of texel {}, {} from the top",
                                           number, wanted, i % channels, texel % width,
                                           static_cast<std::size_t>(picture.height) - 1 - texel / width);
            }
        }
    });
}

} // namespace

std::vector<Variant> read_index(fs::path const& folder)
{
    std::ifstream index(folder / "index.tsv");
    std::vector<Variant> variants;
    std::string line;
    std::getline(index, line); // the names of the fields
    while (std::getline(index, line)) {
        auto const fields = fields_of(line);
        variants.push_back({fields.at(0), fields.at(1), fields.at(2), fields.at(5) == "taken", fields.at(6),
                            std::stod(fields.at(7)), fields.size() > 8 ? fields[8] : ""});
    }
    return variants;
}

Result try_variant(fs::path const& folder, Variant const& variant)
{
    Result result;
    try {
        DecodedImage const image(folder / "files" / variant.file, variant.file, kMostTexels);
        result.taken = true;
        result.format = image.format();
        if (variant.taken) {
            compare(image.picture(), read_reference(folder / "references" / variant.expected),
                    variant.tolerance, result);
        }
    } catch (Failure const& failure) {
        result.sentence = failure.what();
    }
    if (result.taken != variant.taken) {
        result.fault = result.taken ? "it is taken" : "it is refused: " + result.sentence;
    } else if (result.taken && result.format != variant.format) {
        result.fault = fmt::format("it is taken as {} instead of {}", result.format, variant.format);
    } else if (!result.taken && result.sentence != variant.expected) {
        result.fault = fmt::format("'{}' instead of '{}'", result.sentence, variant.expected);
    }
    return result;
}

} // namespace umbrixlib::test
