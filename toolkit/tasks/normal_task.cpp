// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/normals_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

namespace {

/// Turns green over in normals that the library encoded: as it cuts (v + 1) * 255 / 2 off to a whole number,
/// the code of -v is 254 less that of v, and flat ground stays 127.
void turn_green(Picture& bytes)
{
    for (std::size_t i = 0; i < bytes.texels(); ++i) {
        std::uint8_t& green = bytes.texel(i)[1];
        green = static_cast<std::uint8_t>(std::max(254 - green, 0));
    }
}

Picture save(NormalsResult const& made, NormalY normal_y, SavedAs const& as)
{
    bool const down = normal_y == NormalY::kDown;
    bool const turn_bytes = down && as.as_the_library_does();
    if (down && !turn_bytes) {
        std::for_each_n(made.normals.get(), static_cast<std::ptrdiff_t>(made.rows) * made.cols,
                        [](float3& normal) { normal.y = -normal.y; });
    }
    Picture picture = saved_normals(made.normals.get(), made.cols, made.rows, as);
    if (turn_bytes) {
        turn_green(picture);
    }
    return picture;
}

} // namespace

NormalReport run(NormalJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kNormals, files.output.name);
    note_normals_as_heights(files.input, input.guess, observer);
    ToldHeights const told = told_heights(input.picture.attributes, height_reading_of(job.settings));
    std::optional<HeightRange> const range = take_for_heights(input, told.reading, files.input, observer);

    observer.begin(Phase::kMaking, files.input);
    float const n_scale = n_scale_of(in_unit(job.settings, told.unit), input.width);
    NormalsResult const made =
        normals_of_heights(input.picture, n_scale, job.settings, files.input, observer);
    Picture normals = save(made, job.normal_y, as);
    normals.attributes = attributes_of_normals("normal", job.normal_y, as);
    write_picture(files.output.file, format, files.output.name, normals, files.output.saving.compression,
                  observer);
    return {input.width, input.height, n_scale, range};
}

} // namespace umbrixlib::toolkit
