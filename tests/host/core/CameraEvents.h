#pragma once

#include <QObject>
#include <QStringList>

/// Notes everything that the core announces, in the order of arrival: "opened
/// A", "lost A", "changed", ... with the id of a fake camera. GUI thread.
class CameraEvents
{
public:
    CameraEvents();

    /// What was announced since the last call.
    QStringList take();

private:
    QObject m_context; ///< ends the connections
    QStringList m_events;
};
