#pragma once

#include "zuCore/ZuCoreGlobal.h"

#include <QObject>
#include <QSet>

namespace host {

/// Which cameras a plug-in drives at the moment: the host keeps its own
/// controls of those disabled. GUI thread only.
class CameraControl : public QObject
{
    Q_OBJECT

public:
    explicit CameraControl(QObject *parent = nullptr);

    /// Whether the host's own controls of the camera may act; true unless a
    /// plug-in said otherwise.
    bool isEnabled(ZUCORE_HANDLE hCam) const;

    /// A null handle is ignored.
    void setEnabled(ZUCORE_HANDLE hCam, bool enabled);

Q_SIGNALS:
    /// Emitted on changes only; not for a camera that is forgotten because it
    /// closed.
    void enabledChanged(ZUCORE_HANDLE hCam, bool enabled);

private:
    void forget(ZUCORE_HANDLE hCam);

    QSet<ZUCORE_HANDLE> m_driven;
};

} // namespace host
