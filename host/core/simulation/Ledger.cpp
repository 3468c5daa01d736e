#include "host/core/simulation/Ledger.h"

namespace host {

void Ledger::add(Ticks tick, LedgerEntryKind kind, std::uint32_t frame)
{
    ++m_counts[static_cast<int>(kind)];
    if (m_entries.size() < MaxEntries)
        m_entries.push_back({tick, kind, frame});
}

std::int64_t Ledger::counter(ZU_COUNTER_SELECTOR selector) const
{
    switch (selector) {
    case ZU_CNT_SEL_TRANSPORT_SKIP:
        return count(LedgerEntryKind::TransportSkip);
    case ZU_CNT_SEL_API_SKIP:
        return count(LedgerEntryKind::ApiSkip);
    case ZU_CNT_SEL_TRANSFERRED:
        return count(LedgerEntryKind::Transferred);
    case ZU_CNT_SEL_MISSED_TRG_OVERLAP:
        return count(LedgerEntryKind::MissedOverlap);
    case ZU_CNT_SEL_MISSED_TRG_OVERFLOW:
        return count(LedgerEntryKind::MissedOverflow);
    case ZU_CNT_SEL_BUFFER_OVERFLOW:
        return count(LedgerEntryKind::BufferOverflow);
    }
    return 0;
}

} // namespace host
