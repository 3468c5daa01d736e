#include "host/core/simulation/PicturePattern.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr std::size_t RampPeriod = 256;

bool hasTwoByteSamples(ImageFormat format)
{
    return format == ImageFormat::Raw16 || format == ImageFormat::Mono16 || format == ImageFormat::Rgb48 ||
           format == ImageFormat::TransportData;
}

unsigned grey(std::size_t index, PictureContent content)
{
    switch (content) {
    case PictureContent::Black:
        return 0;
    case PictureContent::White:
        return 255;
    case PictureContent::Moving:
        break;
    }
    return static_cast<unsigned>(index % RampPeriod);
}

/// Two-byte samples are little-endian and scaled to the bit depth.
void writePixel(unsigned char *pixel, std::size_t bytes, bool twoByteSamples, unsigned value, int bitDepth)
{
    if (!twoByteSamples) {
        std::fill_n(pixel, bytes, static_cast<unsigned char>(value));
        return;
    }
    const unsigned scaled = value << (bitDepth - 8);
    for (std::size_t i = 0; i < bytes; i += 2) {
        pixel[i] = static_cast<unsigned char>(scaled & 255U);
        pixel[i + 1] = static_cast<unsigned char>(scaled >> 8U);
    }
}

} // namespace

PicturePattern::PicturePattern(ImageFormat format, int bitDepth, int width, int height, std::uint8_t phase,
                               PictureContent content)
    : m_pixelBytes(static_cast<std::size_t>(bytesPerPixel(format)))
    , m_rowBytes(m_pixelBytes * static_cast<std::size_t>(width))
    , m_height(static_cast<std::size_t>(height))
    , m_phase(phase)
{
    m_ramp.resize(m_rowBytes + (RampPeriod - 1) * m_pixelBytes);
    const bool twoByteSamples = hasTwoByteSamples(format);
    for (std::size_t i = 0; i * m_pixelBytes < m_ramp.size(); ++i)
        writePixel(m_ramp.data() + i * m_pixelBytes, m_pixelBytes, twoByteSamples, grey(i, content),
                   bitDepth);
}

void PicturePattern::fill(unsigned char *data, std::uint32_t frame) const
{
    for (std::size_t row = 0; row < m_height; ++row) {
        const std::size_t shift = (row + frame + m_phase) % RampPeriod;
        std::memcpy(data + row * m_rowBytes, m_ramp.data() + shift * m_pixelBytes, m_rowBytes);
    }
}

} // namespace host
