// SPDX-License-Identifier: MIT
#pragma once

#include "work/decoded_sources.h"
#include "work/map_work.h"
#include "work/show_maker.h"

#include <array>
#include <cstddef>
#include <memory>

namespace umbrix_desktop {

using SharedPicture = std::shared_ptr<toolkit::Picture const>;

constexpr std::size_t index_of(Show show)
{
    return static_cast<std::size_t>(show);
}

/// The pictures of one source that were made, whole, and what they depend on. For one thread.
class MadeShows {
public:
    /// What a wish makes them of. A part of it may do: they are kept as long as what they depend on stays.
    struct Basis {
        Decoded source;
        Decoded albedo; ///< Null: none.
        Wish const& wish;
    };

    /// Lets go what @p basis would make otherwise.
    void keep_what_stays(Basis const& basis);

    /// Lets go what is not among @p shows.
    void keep_only(std::array<bool, kShows> const& shows);

    /// Null if it is not made.
    SharedPicture get(Show show) const { return shows_[index_of(show)].picture; }

    /// Makes it if it is not there, and the map for a map in a light. A Failure, or Stopped.
    SharedPicture make(Show show, Basis const& basis, toolkit::Observer& observer);

private:
    /// What a picture depends on.
    struct Key {
        Decoded source;
        toolkit::Settings settings;
        Lighting lighting;
        Decoded albedo;

        bool operator==(Key const&) const = default;
    };
    struct Entry {
        Key key;
        SharedPicture picture;
    };

    static Key key_of(Show show, Basis const& basis);

    std::array<Entry, kShows> shows_;
};

} // namespace umbrix_desktop
