// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/read_vectors.h"

#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"

#include <cmath>

namespace umbrixlib::toolkit {

Picture read_vectors(SlopeSource const& source, Observer& observer)
{
    bool const vectors = are_vectors(source.normals, source.name);
    Picture const coloured = in_colour(source.normals, source.normals.has_alpha());
    Picture floats = in_floats(coloured.has_alpha() ? without_alpha(coloured) : coloured);
    float const up = green_of_input(source) == NormalY::kDown ? -1.0f : 1.0f;
    Picture coded = vectors ? encoded_vectors(floats) : floats;
    bool const replaces = source.settings.replace_invalid.replacement.has_value();
    if (flatten_invalid_normals(coded, replaces, source.name) > 0) {
        observer.note(source.name, {"what is NaN or infinite in its normals is taken for flat ground"});
    }
    auto const from = coded.samples<float>();
    auto const to = floats.samples<float>();
    for (std::size_t i = 0; i < to.size(); ++i) {
        bool const keeps = vectors && std::isfinite(to[i]);
        float const value = keeps ? to[i] : static_cast<float>(2.0 * static_cast<double>(from[i]) - 1.0);
        to[i] = i % 3 == 1 ? up * value : value;
    }
    floats.kind = PictureKind::kNormals;
    floats.attributes = attributes_of_normals("normals", NormalY::kUp, {SampleType::kFloat});
    return floats;
}

} // namespace umbrixlib::toolkit
