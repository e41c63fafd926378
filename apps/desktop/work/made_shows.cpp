// SPDX-License-Identifier: MIT
#include "work/made_shows.h"

#include <utility>

namespace umbrix_desktop {

namespace {

SharedPicture shared(toolkit::Picture picture)
{
    return std::make_shared<toolkit::Picture const>(std::move(picture));
}

/// The source itself, which lives as long as its picture.
SharedPicture picture_of(Decoded const& source)
{
    return {source, &source->picture()};
}

} // namespace

MadeShows::Key MadeShows::key_of(Show show, Basis const& basis)
{
    Key key{basis.source, settings_for(show, basis.wish.settings), {}, nullptr};
    if (show == Show::kRelit) {
        key.lighting = basis.wish.lighting;
        key.albedo = basis.albedo;
    }
    return key;
}

void MadeShows::keep_what_stays(Basis const& basis)
{
    for (std::size_t i = 0; i < kShows; ++i) {
        if (shows_[i].picture && shows_[i].key != key_of(static_cast<Show>(i), basis)) {
            shows_[i] = {};
        }
    }
}

void MadeShows::keep_only(std::array<bool, kShows> const& shows)
{
    for (std::size_t i = 0; i < kShows; ++i) {
        if (!shows[i]) {
            shows_[i] = {};
        }
    }
}

SharedPicture MadeShows::make(Show show, Basis const& basis, toolkit::Observer& observer)
{
    Entry& entry = shows_[index_of(show)];
    if (entry.picture) {
        return entry.picture;
    }
    Wish const& wish = basis.wish;
    Origin const origin = origin_of(*basis.source, wish.source, wish.settings);
    SharedPicture made;
    switch (show) {
    case Show::kSource:
        made = picture_of(basis.source);
        break;
    case Show::kNormals:
        made = kind_of(origin) == toolkit::Kind::kNormalMap ? picture_of(basis.source)
                                                            : shared(make_normals(origin, observer));
        break;
    case Show::kOcclusion:
        check_map_settings(occlusion_alone(wish.settings));
        made = shared(make_occlusion(origin, observer));
        break;
    case Show::kMap:
        check_map_settings(wish.settings);
        made = shared(make_map(origin, observer));
        break;
    case Show::kRelit:
        made = shared(make_relit(*make(Show::kMap, basis, observer), wish.source, wish.settings.mode,
                                 wish.lighting, basis.albedo.get(), observer));
        break;
    }
    entry = {key_of(show, basis), made};
    return made;
}

} // namespace umbrix_desktop
