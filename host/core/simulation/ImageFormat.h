#pragma once

#include <cstdint>

namespace host {

/// Values of "imgdataformat".
enum class ImageFormat : int {
    Raw8 = 0,
    Raw16 = 1,
    Mono8 = 2,
    Mono16 = 3,
    Rgb24 = 4,
    Rgb32 = 5,
    Rgb48 = 6,
    TransportData = 7,
};

/// Largest of bytesPerPixel().
inline constexpr std::int64_t MaxBytesPerPixel = 6;

/// Of the data that the host gets.
constexpr std::int64_t bytesPerPixel(ImageFormat format)
{
    switch (format) {
    case ImageFormat::Raw8:
    case ImageFormat::Mono8:
        return 1;
    case ImageFormat::Rgb24:
        return 3;
    case ImageFormat::Rgb32:
        return 4;
    case ImageFormat::Rgb48:
        return 6;
    default:
        return 2;
    }
}

/// Bits a pixel takes on the link: packed ones touch, others fill whole bytes.
constexpr std::int64_t transportBitsPerPixel(std::int64_t bitDepth, bool packed)
{
    return packed || bitDepth == 8 ? bitDepth : 16;
}

/// Bytes of `pixels` pixels on the link.
constexpr std::int64_t transportBytes(std::int64_t pixels, std::int64_t bitDepth, bool packed)
{
    return (pixels * transportBitsPerPixel(bitDepth, packed) + 7) / 8;
}

} // namespace host
