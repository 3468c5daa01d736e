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
/// A session lives as long as anybody uses it, whatever becomes of its handle and
/// of the program: a device never vanishes under a capture.
class CameraRegistry
{
public:
    /// A share in owning a session; empty when there was none to be found. The
    /// last one to go destroys the session on its thread.
    class Lease
    {
    public:
        Lease() = default;
        Lease(Lease &&other) noexcept
            : m_session(std::exchange(other.m_session, nullptr))
        {
        }
        Lease &operator=(Lease &&other) noexcept
        {
            std::swap(m_session, other.m_session);
            return *this;
        }
        ~Lease();

        explicit operator bool() const { return m_session != nullptr; }
        CameraSession *operator->() const { return m_session; }
        CameraSession &operator*() const { return *m_session; }

    private:
        friend class CameraRegistry;
        explicit Lease(CameraSession *session)
            : m_session(session)
        {
        }

        CameraSession *m_session = nullptr;
    };

    static CameraRegistry &instance();

    /// Finds the session of an open handle.
    Lease find(ZUCORE_HANDLE handle);

    /// Opens a new handle.
    Lease add(std::shared_ptr<CameraDevice> device, CameraDevice::Opening opening);
    /// Closes the handle for new calls.
    void remove(ZUCORE_HANDLE handle);

private:
    struct Entry
    {
        std::unique_ptr<CameraSession> session;
        int leases = 0;
        bool open = true;
    };

    CameraRegistry() = default;
    std::unique_ptr<CameraSession> giveBack(ZUCORE_HANDLE handle);

    std::mutex m_mutex;                       ///< guards all below
    std::map<ZUCORE_HANDLE, Entry> m_entries; ///< those with a lease
    std::uintptr_t m_lastHandle = 0;          ///< counts up: no handle comes twice
};

} // namespace host
