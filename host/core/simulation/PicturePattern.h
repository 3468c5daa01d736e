#pragma once

#include "host/core/simulation/ImageFormat.h"

#include <cstddef>
#include <vector>

namespace host {

/// What a generator puts in the picture's place.
enum class PictureContent { Moving, Black, White };

/// The picture that a simulated sensor sees: a grey ramp that repeats every
/// 256 pixels and moves left and up by one pixel a frame.
class PicturePattern
{
public:
    /// \param phase first grey value of frame 0
    PicturePattern(ImageFormat format, int bitDepth, int width, int height, std::uint8_t phase,
                   PictureContent content);

    /// Bytes of a frame.
    std::size_t size() const { return m_rowBytes * m_height; }

    /// Fills size() bytes with the picture number `frame`.
    void fill(unsigned char *data, std::uint32_t frame) const;

private:
    std::vector<unsigned char> m_ramp; ///< one row and 255 pixels more
    std::size_t m_pixelBytes;
    std::size_t m_rowBytes;
    std::size_t m_height;
    std::uint8_t m_phase;
};

} // namespace host
