#include "host/app/WindowLayout.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>

#include <algorithm>
#include <limits>

namespace host {

namespace {

constexpr QSize firstSize(1280, 800);
// As much of the top edge as can still be grabbed.
constexpr int minGripWidth = 100;
constexpr int minGripHeight = 30;

QList<QRect> usableScreens()
{
    QList<QRect> areas{QGuiApplication::primaryScreen()->availableGeometry()};
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen != QGuiApplication::primaryScreen())
            areas.append(screen->availableGeometry());
    }
    return areas;
}

bool canBeGrabbed(const QRect &window, const QRect &screen)
{
    const QRect shown = window & screen;
    return shown.width() >= std::min(minGripWidth, window.width()) && shown.top() == window.top() &&
           shown.height() >= std::min(minGripHeight, window.height());
}

qint64 squaredDistance(QPoint a, QPoint b)
{
    const qint64 dx = qint64{a.x()} - b.x();
    const qint64 dy = qint64{a.y()} - b.y();
    return dx * dx + dy * dy;
}

QRect movedInto(const QRect &wanted, const QRect &screen)
{
    QRect rect(wanted.topLeft(), wanted.size().boundedTo(screen.size()));
    rect.moveLeft(std::clamp(rect.left(), screen.left(), screen.right() - rect.width() + 1));
    rect.moveTop(std::clamp(rect.top(), screen.top(), screen.bottom() - rect.height() + 1));
    return rect;
}

} // namespace

QRect onScreen(const QRect &wanted, const QList<QRect> &screens)
{
    QRect nearest = screens.constFirst();
    qint64 nearestDistance = std::numeric_limits<qint64>::max();
    for (const QRect &screen : screens) {
        const bool fits = wanted.width() <= screen.width() && wanted.height() <= screen.height();
        if (fits && canBeGrabbed(wanted, screen))
            return wanted;
        const qint64 distance = squaredDistance(wanted.center(), screen.center());
        if (distance < nearestDistance) {
            nearestDistance = distance;
            nearest = screen;
        }
    }
    return movedInto(wanted, nearest);
}

void restoreWindowPlace(QMainWindow &window, const QByteArray &geometry)
{
    const QList<QRect> screens = usableScreens();
    if (geometry.isEmpty() || !window.restoreGeometry(geometry)) {
        const QRect &primary = screens.constFirst();
        QRect place(QPoint(), firstSize.boundedTo(primary.size()));
        place.moveCenter(primary.center());
        window.setGeometry(place);
        if (primary.width() <= firstSize.width() || primary.height() <= firstSize.height())
            window.setWindowState(Qt::WindowMaximized);
        return;
    }
    if (!window.isMaximized() && !window.isFullScreen())
        window.setGeometry(onScreen(window.geometry(), screens));
}

} // namespace host
