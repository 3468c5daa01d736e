#pragma once

#include "host/core/CameraSession.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace host {

/// Turns handles into open cameras; for all threads. A handle is only ever
/// compared, so any pointer may be asked for.
///
/// A session whose handle was removed is kept until the calls in progress have
/// left it, and destroyed on the GUI thread: a device never vanishes under a
/// capture, nor is it destroyed by the thread of a plug-in.
class CameraRegistry
{
public:
    /// A session in use by a call; empty when there was none to be found.
    class Lease
    {
    public:
        Lease() = default;
        explicit Lease(CameraSession *session)
            : m_session(session)
        {
        }
        Lease(Lease &&other) noexcept
            : m_session(std::exchange(other.m_session, nullptr))
        {
        }
        Lease &operator=(Lease &&) = delete;
        ~Lease();

        explicit operator bool() const { return m_session != nullptr; }
        CameraSession *operator->() const { return m_session; }

    private:
        CameraSession *m_session = nullptr;
    };

    static CameraRegistry &instance();

    /// Finds the session of an open handle.
    Lease find(ZUCORE_HANDLE handle);

    /// Opens a new handle. The session stays valid until it is removed. GUI
    /// thread.
    CameraSession *add(std::shared_ptr<CameraDevice> device);
    /// Closes the handle for new calls. GUI thread.
    void remove(ZUCORE_HANDLE handle);
    /// Destroys removed sessions that no call uses any more. GUI thread.
    void releaseRemoved();

private:
    struct Entry
    {
        std::unique_ptr<CameraSession> session;
        int users = 0;
        bool open = true;
    };

    CameraRegistry() = default;

    std::mutex m_mutex; ///< guards all below
    std::map<ZUCORE_HANDLE, Entry> m_entries;
    std::uintptr_t m_lastHandle = 0; ///< counts up: no handle comes twice
};

} // namespace host
