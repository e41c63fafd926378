// SPDX-License-Identifier: MIT
#include "toolkit/tasks/decode/decoded_samples.h"

#include "toolkit/base/failure.h"

#include <cstdio>
#include <memory>
#include <span>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr int kLongestSide = 65535;

bool is_possible(DecodeReport const& report, double max_texels)
{
    auto const type = static_cast<int>(report.type);
    auto const kind = static_cast<int>(report.picture_kind);
    return report.width >= 1 && report.height >= 1 && report.width <= kLongestSide &&
           report.height <= kLongestSide &&
           static_cast<double>(report.width) * static_cast<double>(report.height) <= max_texels &&
           report.channels >= 1 && report.channels <= 4 && type >= 0 &&
           type <= static_cast<int>(SampleType::kFloat) && kind >= 0 &&
           kind <= static_cast<int>(PictureKind::kLight);
}

struct CloseSamples {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

/// Whether the file has as many bytes as @p bytes, which are filled.
bool fills(std::filesystem::path const& file, std::span<std::uint8_t> bytes)
{
    std::unique_ptr<std::FILE, CloseSamples> const stream(std::fopen(file.c_str(), "rbe"));
    return stream != nullptr && std::fread(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size() &&
           std::fgetc(stream.get()) == EOF;
}

} // namespace

DecodedImage decoded_samples(DecodeJob const& job, DecodeReport const& report)
{
    bool good = is_possible(report, job.files.max_texels);
    DecodedFile file;
    if (good) {
        file.picture = make_picture(report.width, report.height, report.channels, report.type);
        good = fills(job.files.output.file, file.picture.samples<std::uint8_t>());
    }
    if (!good) {
        throw Failure(Fault::kDecoderBrokeDown, job.files.input,
                      "its decoder broke down (what it left is no picture)");
    }
    file.picture.kind = report.picture_kind;
    file.picture.attributes = report.attributes;
    file.palette = report.palette;
    file.format = report.format;
    file.notes = report.notes;
    return DecodedImage(std::move(file));
}

} // namespace umbrixlib::toolkit
