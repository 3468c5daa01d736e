#include "host/core/CameraRegistry.h"

#include <vector>

namespace host {

CameraRegistry &CameraRegistry::instance()
{
    static CameraRegistry registry;
    return registry;
}

CameraRegistry::Lease CameraRegistry::find(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(m_mutex);
    const auto it = m_entries.find(handle);
    if (it == m_entries.end() || !it->second.open)
        return {};
    ++it->second.users;
    return Lease(it->second.session.get());
}

CameraRegistry::Lease::~Lease()
{
    if (!m_session)
        return;
    CameraRegistry &registry = instance();
    const std::lock_guard lock(registry.m_mutex);
    --registry.m_entries.at(m_session->handle()).users;
}

CameraSession *CameraRegistry::add(std::shared_ptr<CameraDevice> device)
{
    const std::lock_guard lock(m_mutex);
    // Small numbers, so that a handle that is dereferenced by mistake faults.
    m_lastHandle += 16;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number that is never a pointer
    ZUCORE_HANDLE handle = reinterpret_cast<ZUCORE_HANDLE>(m_lastHandle);
    Entry &entry = m_entries[handle];
    entry.session = std::make_unique<CameraSession>(handle, std::move(device));
    return entry.session.get();
}

void CameraRegistry::remove(ZUCORE_HANDLE handle)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto it = m_entries.find(handle);
        if (it != m_entries.end())
            it->second.open = false;
    }
    releaseRemoved();
}

void CameraRegistry::releaseRemoved()
{
    std::vector<Entry> unused; // destroyed after the lock is released
    const std::lock_guard lock(m_mutex);
    for (auto it = m_entries.begin(); it != m_entries.end();) {
        if (it->second.open || it->second.users > 0) {
            ++it;
            continue;
        }
        unused.push_back(std::move(it->second));
        it = m_entries.erase(it);
    }
}

} // namespace host
