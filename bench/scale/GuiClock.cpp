#include "bench/scale/GuiClock.h"

#include <QDialog>
#include <QEvent>
#include <QThread>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace scale {

namespace {

/// A message box would wait for somebody who is not there.
void endOnModalDialog(QObject *receiver, const QEvent &event)
{
    const auto *dialog = qobject_cast<QDialog *>(receiver);
    if (event.type() != QEvent::Show || !dialog || !dialog->isModal())
        return;
    std::fprintf(stderr, "velmora-scale: the window asks: %s %s\n", qPrintable(dialog->windowTitle()),
                 qPrintable(dialog->property("text").toString()));
    std::_Exit(1);
}

/// Of the calling thread.
double processorMilliseconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

} // namespace

GuiClock::GuiClock(int &argc, char **argv)
    : QApplication(argc, argv)
{
}

void GuiClock::watch(QObject *refreshTimer, QWidget *plot)
{
    m_refreshTimer = refreshTimer;
    m_plot = plot;
}

void GuiClock::reset()
{
    m_refreshes.clear();
    m_processorTimes.clear();
    m_painted.clear();
    m_longestEvent = 0.0;
}

bool GuiClock::notify(QObject *receiver, QEvent *event)
{
    if (QThread::currentThread() != thread())
        return QApplication::notify(receiver, event);
    endOnModalDialog(receiver, *event);
    if (++m_depth > 1) {
        const bool handled = notifyTimed(receiver, event);
        --m_depth;
        return handled;
    }
    const auto begin = Time::now();
    m_busy.store(true, std::memory_order_relaxed);
    const bool handled = notifyTimed(receiver, event);
    m_busy.store(false, std::memory_order_relaxed);
    m_longestEvent = std::max(m_longestEvent, milliseconds(Time::now() - begin));
    --m_depth;
    return handled;
}

bool GuiClock::notifyTimed(QObject *receiver, QEvent *event)
{
    // The event and its receiver may be gone afterwards.
    const bool refresh = m_refreshTimer && receiver == m_refreshTimer && event->type() == QEvent::Timer;
    const bool painting = m_plot && receiver == m_plot && event->type() == QEvent::Paint;
    if (!refresh && !painting)
        return QApplication::notify(receiver, event);
    const auto begin = Time::now();
    const double processorBegin = processorMilliseconds();
    const bool handled = QApplication::notify(receiver, event);
    const double taken = milliseconds(Time::now() - begin);
    if (refresh) {
        m_refreshes.push_back(taken);
        m_processorTimes.push_back(processorMilliseconds() - processorBegin);
        m_painted.push_back(taken);
    } else if (!m_painted.empty()) {
        m_painted.back() += taken;
    }
    return handled;
}

} // namespace scale
