// SPDX-License-Identifier: MIT
#pragma once

#include "work/made_shows.h"
#include "work/preview.h"

#include <optional>

namespace umbrix_desktop {

/// Makes previews for one wish after the other, and keeps what several wishes need. For one thread.
class Previewer {
public:
    /// The pictures of @p shows, and what they show: the visible part if that is small and its texels can be
    /// made alone, or else all of the picture, reduced. A Failure, or Stopped.
    struct Preview {
        Area area;
        std::array<SharedPicture, kShows> pictures;
    };
    Preview make(MadeShows::Basis const& basis, std::array<bool, kShows> const& shows,
                 toolkit::Observer& observer);

    /// Lets go what is of another source.
    void keep_what_stays(MadeShows::Basis const& basis);

private:
    /// What of a whole picture its previews need.
    struct Known {
        Decoded source;
        toolkit::Settings settings; ///< How its heights are read; all else is as by default.
        Ground ground;
    };
    /// What a part is made of.
    struct PartKey {
        Decoded source;
        Area area;
        bool reduced = false;

        bool operator==(PartKey const&) const = default;
    };
    /// A map whose light may change.
    struct LastMap {
        PartKey key;
        toolkit::Settings settings;
        SharedPicture map;
    };

    Ground const& ground_for(Origin const& origin, Decoded const& source, toolkit::Observer& observer);

    std::optional<Known> known_;
    std::optional<LastMap> last_map_;
};

/// @p visible as texels of a picture of that size, or all of them.
Cut cut_of(std::optional<Area> const& visible, int width, int height);

/// The same the other way round: the first row is the top one.
Area area_of(Cut const& cut, int height);

} // namespace umbrix_desktop
