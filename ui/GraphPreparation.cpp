#include "measurement/ThroughputEngine.h"
#include "ui/DataGraphForm.h"

#include <QTimer>

#include <algorithm>

/// After an edit of what the modelled buffer level depends on, and with records
/// that nobody looked at yet, a refresh has to go through all samples of the
/// window. With a long recording that takes longer than the user may be kept
/// waiting, so it is done in pieces between which events come in; what the window
/// shows stays until the refresh can be completed.

namespace {

/// Samples in one piece: 20 to 90 milliseconds.
constexpr quint64 pieceWork = 16000000;

/// Where the capture drops the oldest frame between any two pieces, the level may
/// have to be followed anew from there each time. A refresh that has taken the
/// work of so many is completed in any case.
constexpr quint64 mostRounds = 3;

} // namespace

bool CxDataGraphForm::isPrepared(const QList<void *> &cameras, Refresh refresh)
{
    if (m_measureMode != MeasureModeThroughput)
        return true;
    measurement::ThroughputWindow window;
    GetTimeAxisRange(&window.from, &window.to);
    window.origin = m_timestampOrigin;
    window.resetBufferLevel = m_resetBufferLevel;
    measurement::Preparation piece;
    piece.allowed = pieceWork;
    const bool prepared = std::all_of(cameras.cbegin(), cameras.cend(), [&](void *hCam) {
        return measurement::prepareThroughput(*m_cameraLines.value(hCam), window, piece);
    });
    m_preparedWork += piece.done;
    if (prepared || m_preparedWork > mostRounds * piece.intervals + pieceWork) {
        m_preparedWork = 0;
        return true;
    }
    continueRefresh(refresh);
    return false;
}

void CxDataGraphForm::continueRefresh(Refresh refresh)
{
    // Graphs include statistics, so whoever asks for graphs gets them.
    const bool isPending = m_pendingRefresh.has_value();
    if (!isPending || refresh == Refresh::Graphs)
        m_pendingRefresh = refresh;
    if (isPending)
        return;
    QTimer::singleShot(0, this, [this] {
        const Refresh pending = *m_pendingRefresh;
        m_pendingRefresh.reset();
        if (pending == Refresh::Graphs)
            updateGraph();
        else
            updateStats();
    });
}
