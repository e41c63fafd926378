// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/taken_for.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/analysis/kind_guess.h"

#include <array>
#include <filesystem>
#include <utility>

namespace umbrixlib::toolkit {

TakenFor taken_for(DecodedImage const& image, std::string const& file)
{
    Picture const& picture = image.picture();
    std::string const told = value_of(picture.attributes, "kind");
    constexpr std::array<std::pair<char const*, PictureKind>, 4> kTold{{{"normals", PictureKind::kNormals},
                                                                        {"heights", PictureKind::kHeights},
                                                                        {"map", PictureKind::kLight},
                                                                        {"light", PictureKind::kUnknown}}};
    for (auto const& [name, kind] : kTold) {
        if (told == name) {
            return {kind, "it tells so itself"};
        }
    }
    if (picture.channels < 3) {
        return {PictureKind::kHeights, "it has no colour"};
    }
    if (lower_case(std::filesystem::path(file).stem().string()).ends_with("_umbrix")) {
        return {PictureKind::kLight, "its name says 'Umbrix'"};
    }
    KindGuess const guess =
        picture.has_alpha() ? guess_kind(without_alpha(picture), file) : guess_kind(picture, file);
    return {guess.kind == Kind::kNormalMap ? PictureKind::kNormals : PictureKind::kHeights, guess.reason};
}

} // namespace umbrixlib::toolkit
