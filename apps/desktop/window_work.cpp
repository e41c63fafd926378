// SPDX-License-Identifier: MIT
#include "window_work.h"

#include <QMetaObject>
#include <QString>

namespace umbrix_desktop {

WindowWork::WindowWork(QObject* parent)
    : QObject(parent), work_(
                           [this](std::shared_ptr<Made const> made) {
                               auto const tell = [this, made = std::move(made)] {
                                   if (made->wish == newest_) {
                                       Q_EMIT this->made(made);
                                   }
                               };
                               QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
                           },
                           [this](std::uint64_t wish, int permille) {
                               auto const tell = [this, wish, permille] {
                                   if (wish == newest_) {
                                       Q_EMIT progressed(permille);
                                   }
                               };
                               QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
                           }),
      saving_([this](MapSaving::Outcome const& outcome) {
          auto const tell = [this, outcome] {
              Q_EMIT saved(QString::fromStdString(outcome.file), QString::fromStdString(outcome.failure));
          };
          QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
      })
{
}

} // namespace umbrix_desktop
