// SPDX-License-Identifier: MIT
#include "views/shown.h"

#include "views/texel_image.h"

#include <QCoreApplication>

namespace umbrix_desktop {

bool Piece::is_exact() const
{
    return picture && picture->width == area.width && picture->height == area.height;
}

void Shown::take(Made const& made)
{
    if (made.width == 0) {
        return;
    }
    QSize const size(made.width, made.height);
    if (size != size_) {
        clear();
        size_ = size;
    }
    for (std::size_t i = 0; i < kShows; ++i) {
        if (!made.pictures[i]) {
            continue;
        }
        Piece const piece{made.pictures[i], made.area};
        bool const is_whole = piece.is_exact() && made.area == Area{0, 0, made.width, made.height};
        wholes_[i] = is_whole ? piece : wholes_[i];
        previews_[i] = is_whole ? Piece{} : piece;
    }
}

void Shown::drop(Show show)
{
    wholes_[static_cast<std::size_t>(show)] = {};
    previews_[static_cast<std::size_t>(show)] = {};
}

void Shown::clear()
{
    *this = Shown();
}

QString Shown::words_at(Show show, QPoint texel) const
{
    for (Piece const* const piece : {&preview(show), &whole(show)}) {
        int const x = texel.x() - piece->area.left;
        int const y = texel.y() - piece->area.top;
        if (piece->is_exact() && x >= 0 && y >= 0 && x < piece->area.width && y < piece->area.height) {
            return QString::fromStdString(texel_words(*piece->picture, x, y));
        }
    }
    return {};
}

QString name_of(Show show)
{
    constexpr char const* kNames[] = {
        QT_TRANSLATE_NOOP("Show", "Source"), QT_TRANSLATE_NOOP("Show", "Normals"),
        QT_TRANSLATE_NOOP("Show", "Occlusion"), QT_TRANSLATE_NOOP("Show", "Umbrix map"),
        QT_TRANSLATE_NOOP("Show", "Relit")};
    return QCoreApplication::translate("Show", kNames[static_cast<std::size_t>(show)]);
}

} // namespace umbrix_desktop
