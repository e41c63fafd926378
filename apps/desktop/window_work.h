// SPDX-License-Identifier: MIT
#pragma once

#include "work/map_saving.h"
#include "work/map_work.h"

#include <QObject>
#include <memory>

namespace umbrix_desktop {

/// The work on a document, as a window sees it: all that its threads tell arrives on the window's.
class WindowWork : public QObject {
    Q_OBJECT

public:
    explicit WindowWork(QObject* parent = nullptr);

    /// The pictures of @p wish come, and no others any more.
    void want(Wish wish) { newest_ = work_.want(std::move(wish)); }

    void forget_source() { work_.forget_source(); }

    bool is_saving() const { return saving_.is_busy(); }
    void save(MapSaving::Order order) { saving_.start(std::move(order)); }

Q_SIGNALS:
    void made(std::shared_ptr<umbrix_desktop::Made const> made);
    void progressed(int permille);
    void saved(QString const& file, QString const& failure);

private:
    std::uint64_t newest_ = 0;
    MapWork work_;
    MapSaving saving_;
};

} // namespace umbrix_desktop
