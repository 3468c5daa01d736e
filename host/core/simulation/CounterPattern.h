#pragma once

#include "host/core/simulation/LinkModel.h"

#include <span>

namespace host {

/// Where on the link a frame of transport data begins.
struct LinkPosition
{
    Ticks tick = 0;  ///< since the start of the acquisition
    Amount lead = 0; ///< what the link carries from `tick` on before the frame: the end of the one before
};

/// Fills a frame with the counter test pattern: word i holds `clockOffset` plus
/// the tick in which its last byte left,
///
///     floor(t) with  integral of rate from position.tick to t = lead + 8 (i + 1) bytes
///
/// In rare cases in which t lies less than 10^-6 ticks below a whole tick the
/// word holds that one. A last word that the frame fills only in part leaves
/// with the frame's last byte.
/// \param words receives `bytes` / 8 words, rounded up
/// \param bytes size of the frame
/// The link must not stand still for ever before the frame's end.
ZUCORE_EXPORT void fillCounterPattern(std::span<std::uint64_t> words, std::int64_t bytes,
                                      const LinkModel &link, LinkPosition position, Ticks clockOffset);

} // namespace host
