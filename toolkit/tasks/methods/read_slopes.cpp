// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/read_slopes.h"

#include "toolkit/base/failure.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/tasks/methods/self_description.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

NormalY green_of_input(SlopeSource const& source)
{
    if (source.normal_y) {
        return *source.normal_y;
    }
    NameEnding const* const ending = ending_of_name(source.name);
    auto const by_name = ending != nullptr ? ending->green : std::nullopt;
    return green_of(source.normals.attributes).value_or(by_name.value_or(source.settings.normal_y));
}

CentralDifferences read_differences(SlopeSource const& source, NormalY green, double n_scale,
                                    NormalReading& reading, Observer& observer)
{
    reading = reading_of_normals(source.normals);
    OddNormals odd;
    CentralDifferences differences = differences_of_normals(source.normals, reading, green, n_scale, odd);
    if (odd.invalid > 0 && !source.settings.replace_invalid.replacement) {
        throw Failure(
            Fault::kInvalidTexels, source.name,
            fmt::format("{} of its texels {} NaN or infinite", odd.invalid, odd.invalid == 1 ? "is" : "are"));
    }
    if (std::size_t const flat = odd.invalid + odd.turned_away; flat > 0) {
        observer.note(source.name,
                      {fmt::format("{} of its {} normals are none of a surface and are taken for flat "
                                   "ground",
                                   flat, source.normals.texels())});
    }
    return differences;
}

} // namespace umbrixlib::toolkit
