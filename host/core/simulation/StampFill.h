#pragma once

#include "zuCore/ZuCoreGlobal.h"

#include <cstddef>
#include <cstdint>

namespace host {

/// Stamps of words that leave at a constant rate.
struct StampSequence
{
    std::uint64_t base; ///< ticks
    std::uint64_t time; ///< of the first word since `base`; 32.32 fixed point, as is the step
    std::uint64_t step; ///< between two words
};

/// words[i] = base + floor(time + i * step) for `count` words.
///
/// A frame has to be stamped faster than its link could deliver it, and the
/// measurement that is tried out shares the processor with it: this is meant to
/// cost little more than the writing.
using StampFill = void (*)(std::uint64_t *words, std::size_t count, const StampSequence &stamps);

ZUCORE_EXPORT StampFill portableStampFill();

/// The one for AVX2, null where the processor has none.
ZUCORE_EXPORT StampFill avx2StampFill();

/// The fastest one this processor runs.
ZUCORE_EXPORT StampFill bestStampFill();

} // namespace host
