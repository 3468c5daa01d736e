#pragma once

#include <atomic>

#ifdef VELMORA_RACE_CHECK
#include <valgrind/helgrind.h>
#endif

namespace measurement {

/// Takes an atomic out of the race checker's view, which knows nothing of
/// atomics and would report every access.
template <typename T> void exemptFromRaceCheck([[maybe_unused]] std::atomic<T> &shared)
{
#ifdef VELMORA_RACE_CHECK
    VALGRIND_HG_DISABLE_CHECKING(&shared, sizeof shared);
#endif
}

} // namespace measurement
