#pragma once

#include <QObject>

class QSocketNotifier;

namespace host {

/// Turns SIGINT and SIGTERM into a Qt signal on the thread that made this
/// object, so that a measurement can be ended and its cameras restored. One
/// object at a time. When it goes the former handlers come back; after a signal
/// arrived, further ones are ignored instead, as the program is ending.
class StopSignals : public QObject
{
    Q_OBJECT

public:
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

    /// The first signal that arrived, 0 while there was none.
    int received() const { return m_received; }

Q_SIGNALS:
    void stopRequested(int signalNumber);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
    int m_received = 0;
};

} // namespace host
