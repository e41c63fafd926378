// SPDX-License-Identifier: MIT
#pragma once

#include "work/map_work.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <array>
#include <memory>

namespace umbrix_desktop {

/// A picture of a part of a document's.
struct Piece {
    std::shared_ptr<toolkit::Picture const> picture; ///< Null: there is none.
    Area area;                                       ///< The part, which may have more texels.

    /// Whether each texel of the part is there.
    bool is_exact() const;
};

/// What there is to be seen of a document: of each picture the whole, as it was made last, and the newest
/// preview upon it as long as that is newer.
class Shown {
public:
    /// Takes in what is new. What has failed leaves the pictures as they are.
    void take(Made const& made);

    /// That picture is out of date, and no other will come soon.
    void drop(Show show);

    /// Nothing is left: the pictures to come are of another source.
    void clear();

    /// Texels of the whole; empty if there is no picture yet.
    QSize size() const { return size_; }

    Piece const& whole(Show show) const { return wholes_[static_cast<std::size_t>(show)]; }
    Piece const& preview(Show show) const { return previews_[static_cast<std::size_t>(show)]; }

    bool has(Show show) const { return whole(show).picture || preview(show).picture; }

    /// The samples of a texel, top row first, in words; "" if no picture has it at full size.
    QString words_at(Show show, QPoint texel) const;

private:
    QSize size_;
    std::array<Piece, kShows> wholes_;
    std::array<Piece, kShows> previews_;
};

/// What a user calls it.
QString name_of(Show show);

} // namespace umbrix_desktop
