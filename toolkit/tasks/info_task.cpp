// SPDX-License-Identifier: MIT
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

/// Larger pictures are looked into on demand: a small file may hold a very large one.
constexpr double kUsualTexels = 16.0 * 1024 * 1024;

InfoReport look_into(InfoJob const& job, double max_texels, Observer& observer)
{
    DecodedImage const image = decode_input({job.input, job.input, max_texels}, observer);
    KindGuess const guess = guess_kind(image.to_picture(false), job.input);
    InfoReport report;
    report.width = image.width();
    report.height = image.height();
    report.format = image.format();
    report.bits_per_channel = image.bits_per_channel();
    report.pixel = image.description();
    report.channels = channel_ranges(image.picture());
    report.has_8_bit_steps = has_8_bit_steps(image.picture());
    report.taken_for = guess.kind;
    report.because = guess.reason;
    report.notes = image.notes();
    report.attributes = image.picture().attributes;
    return report;
}

} // namespace

InfoReport run(InfoJob const& job, Observer& observer)
{
    if (job.range) {
        return look_into(job, job.max_texels, observer);
    }
    try {
        return look_into(job, std::min(job.max_texels, kUsualTexels), observer);
    } catch (TooManyTexels const& large) {
        bool const may_be_looked_into = large.width * large.height <= job.max_texels;
        if (!may_be_looked_into) {
            return look_into(job, job.max_texels, observer); // which says what is allowed
        }
        InfoReport report;
        report.width = static_cast<int>(large.width);
        report.height = static_cast<int>(large.height);
        report.format = large.format;
        report.only_header = true;
        return report;
    }
}

} // namespace umbrixlib::toolkit
