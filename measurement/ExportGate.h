#pragma once

#include <functional>

class QObject;

/// What must not happen while a report is written.
///
/// CxCameraLineData::exportDataToFile() runs on the GUI thread, holds its
/// engine's mutex, which is not recursive, and still lets events in so that the
/// user can cancel. Any slot or event handler may run then: a timer's tick, a
/// click, a signal of the host. One that would lock, start, stop or delete an
/// engine asks the gate first:
///
///     if (CxExportGate::putOff(this, [=] { cameraClosed(camera); }))
///         return;
///
/// or, where doing it later is pointless, as for a tick of a timer:
///
///     if (CxExportGate::isClosed())
///         return;
///
/// What cannot wait, such as the end of the object that owns the engines, uses
/// CxCameraLineData::discard().
///
/// GUI thread only.
class CxExportGate
{
public:
    /// Whether an export runs, or work that was put off is still to be done.
    static bool isClosed();

    /// While the gate is closed, keeps the work for afterwards. All of it is
    /// then done from the event loop, in the order in which it was put off; by
    /// then the file is closed and the call that wrote it has returned.
    /// \param context the work is dropped when this object goes first
    /// \return false when the gate is open: the caller does the work itself
    static bool putOff(QObject *context, std::function<void()> work);

    /// Closes the gate while it lives.
    class Closer
    {
    public:
        Closer();
        ~Closer();
        Closer(const Closer &) = delete;
        Closer &operator=(const Closer &) = delete;

        /// Whether it was this one that closed the gate: exports do not nest.
        bool isFirst() const { return m_first; }

    private:
        const bool m_first;
    };
};
