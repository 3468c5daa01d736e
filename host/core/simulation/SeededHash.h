#pragma once

#include <cstdint>

namespace host {

/// The finaliser of the splitmix64 generator (Steele, Lea, Flood 2014): a
/// bijection on 64 bits whose output bits each depend on every input bit.
constexpr std::uint64_t mixBits(std::uint64_t x)
{
    x += 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

/// What a hash is for, so that the draws of one camera are independent.
enum class HashUse : std::uint64_t { LinkJitter = 1, TransportLoss = 2, PicturePhase = 3 };

/// The draw number `index` of one camera. Random access instead of a generator
/// with state: any moment can be computed again without what came before it.
constexpr std::uint64_t seededHash(std::uint64_t seed, std::uint64_t camera, HashUse use, std::uint64_t index)
{
    const std::uint64_t stream = mixBits(mixBits(seed) ^ (camera * 8 + static_cast<std::uint64_t>(use)));
    return mixBits(stream ^ mixBits(index));
}

/// Maps a hash to [0, 1) with 53 bits.
constexpr double unitFraction(std::uint64_t hash)
{
    return static_cast<double>(hash >> 11) * 0x1.0p-53;
}

} // namespace host
