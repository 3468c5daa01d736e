#include "host/core/CameraRegistry.h"

#include <utility>

namespace host {

CameraRegistry &CameraRegistry::instance()
{
    // Never destroyed: threads of plug-ins may call until the process is gone.
    static CameraRegistry &registry = *new CameraRegistry;
    return registry;
}

CameraRegistry::Lease CameraRegistry::find(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(m_mutex);
    const auto it = m_entries.find(handle);
    if (it == m_entries.end() || !it->second.open)
        return {};
    ++it->second.leases;
    return Lease(it->second.session.get());
}

CameraRegistry::Lease CameraRegistry::add(std::shared_ptr<CameraDevice> device, CameraDevice::Opening opening)
{
    const std::lock_guard lock(m_mutex);
    // Small numbers, so that a handle that is dereferenced by mistake faults.
    m_lastHandle += 16;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number that is never a pointer
    ZUCORE_HANDLE handle = reinterpret_cast<ZUCORE_HANDLE>(m_lastHandle);
    Entry &entry = m_entries[handle];
    entry.session = std::make_unique<CameraSession>(handle, std::move(device), opening);
    entry.leases = 1;
    return Lease(entry.session.get());
}

void CameraRegistry::remove(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(m_mutex);
    const auto it = m_entries.find(handle);
    if (it != m_entries.end())
        it->second.open = false;
}

/// The session if nobody else uses it: to be destroyed without the lock.
std::unique_ptr<CameraSession> CameraRegistry::giveBack(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(m_mutex);
    const auto it = m_entries.find(handle);
    if (--it->second.leases > 0)
        return nullptr;
    auto session = std::move(it->second.session);
    m_entries.erase(it);
    return session;
}

CameraRegistry::Lease::~Lease()
{
    if (m_session)
        instance().giveBack(m_session->handle());
}

} // namespace host
