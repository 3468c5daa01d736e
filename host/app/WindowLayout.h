#pragma once

#include <QList>
#include <QRect>

class QMainWindow;

namespace host {

/// The rectangle itself if enough of it lies on a screen to be grabbed there,
/// else moved, and where needed shrunk, into the nearest one.
/// \param screens usable areas, the first is the primary one
QRect onScreen(const QRect &wanted, const QList<QRect> &screens);

/// Restores size and place. A stored place that is not on any screen now is
/// brought back; without one (or with a damaged one) the window gets a size
/// that suits the primary screen.
void restoreWindowPlace(QMainWindow &window, const QByteArray &geometry);

} // namespace host
