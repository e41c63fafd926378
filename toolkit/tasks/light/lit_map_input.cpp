// SPDX-License-Identifier: MIT
#include "toolkit/tasks/light/lit_map_input.h"

#include "toolkit/base/failure.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/methods/self_description.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

Modes mode_of_map(std::string const& name, Attributes const& attributes, MapReading const& reading,
                  Observer& observer)
{
    std::string const kind = kind_beside_map(attributes);
    if (!reading.force && !kind.empty()) {
        throw Failure(Fault::kNoMap, name, fmt::format("it tells of itself that it is {}", kind));
    }
    std::optional<Modes> const told = mode_of(attributes);
    if (told && !reading.mode_is_given) {
        return *told;
    }
    if (told && *told != reading.mode) {
        observer.note(name, {fmt::format("it tells of itself that its mode is {}, and is taken for {}",
                                         name_of_mode(*told), name_of_mode(reading.mode))});
    }
    return reading.mode;
}

DecodedImage read_albedo(Source const& source, PreparedInput const& map, Observer& observer)
{
    DecodedImage image = decode_input(source, observer);
    check_same_size(source.name, {image.width(), image.height()}, "the map", {map.width, map.height});
    return image;
}

} // namespace umbrixlib::toolkit
