#pragma once

#include "host/core/simulation/Ticks.h"
#include "zuCore/ZuCoreGlobal.h"
#include "zuCore/ZuParameters.h"

#include <cstdint>
#include <vector>

namespace host {

enum class LedgerEntryKind {
    TriggerAccepted,
    MissedOverlap,
    MissedOverflow,
    BufferOverflow,
    TransportSkip,
    Transferred,
    ApiSkip,
    Fetched,
    Damaged, ///< fetched, but the capture failed
};

inline constexpr int LedgerEntryKindCount = 9;

struct LedgerEntry
{
    Ticks tick = 0; ///< since the start of the acquisition
    LedgerEntryKind kind = LedgerEntryKind::TriggerAccepted;
    std::uint32_t frame = 0; ///< frame number; of a missed trigger the number it would have had
};

/// Everything that happened to the frames of one acquisition: the truth that
/// the camera's counters report and a measurement is compared with.
class ZUCORE_EXPORT Ledger
{
public:
    /// Entries that are kept one by one; later ones are only counted.
    static constexpr std::size_t MaxEntries = 65536;

    void add(Ticks tick, LedgerEntryKind kind, std::uint32_t frame);

    std::int64_t count(LedgerEntryKind kind) const { return m_counts[static_cast<int>(kind)]; }

    /// What the camera's counter of that selector shows.
    std::int64_t counter(ZU_COUNTER_SELECTOR selector) const;

    const std::vector<LedgerEntry> &entries() const { return m_entries; }

private:
    std::int64_t m_counts[LedgerEntryKindCount] = {};
    std::vector<LedgerEntry> m_entries;
};

} // namespace host
