// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

DecodeReport run(DecodeJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    DecodedImage image = decode_input({files.input, files.input, files.max_texels}, observer);
    DecodeReport report;
    report.format = image.format();
    report.palette = image.is_palette();
    report.notes = image.notes();
    Picture const picture = image.release_picture();
    report.width = picture.width;
    report.height = picture.height;
    report.channels = picture.channels;
    report.type = picture.type;
    report.picture_kind = picture.kind;
    report.attributes = picture.attributes;
    observer.begin(Phase::kWriting, files.output.name);
    OutputStream stream(files.output.file);
    stream.write(picture.bytes);
    if (!stream.close()) {
        throw Failure(Fault::kNotWritten, files.output.name, "its samples do not fit there");
    }
    return report;
}

} // namespace umbrixlib::toolkit
