#include "host/app/PictureFormat.h"

#include "host/core/simulation/ImageFormat.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstddef>

namespace host {

namespace {

/// How to read a frame's samples: grey ones, or red, green and blue ones and
/// perhaps one that is not used.
struct Layout
{
    enum class Sample { Byte, Word, Packed };

    Sample sample = Sample::Byte;
    int samplesPerPixel = 1;

    bool isColour() const { return samplesPerPixel >= 3; }
};

using Readable = std::optional<Layout>;

struct Geometry
{
    std::size_t width = 0; ///< of the frame
    std::size_t height = 0;
    std::size_t step = 1; ///< of these in a row, one pixel is shown
    std::size_t shownWidth = 0;
    std::size_t shownHeight = 0;
};

// Each gives the sample with that index as a grey value of 8 bits.

struct ByteReader
{
    const unsigned char *data;

    unsigned operator()(std::size_t index) const { return data[index]; }
};

struct WordReader
{
    const unsigned char *data;
    int shift;

    unsigned operator()(std::size_t index) const
    {
        const unsigned value = data[2 * index] | (static_cast<unsigned>(data[2 * index + 1]) << 8U);
        return std::min(value >> shift, 255U);
    }
};

struct PackedReader
{
    const unsigned char *data;
    std::size_t bits;

    unsigned operator()(std::size_t index) const
    {
        const std::size_t first = index * bits;
        const std::size_t last = first + bits - 1;
        unsigned value = 0;
        for (std::size_t byte = last / 8 + 1; byte-- > first / 8;)
            value = (value << 8U) | data[byte];
        const unsigned sample = (value >> (first % 8)) & ((1U << bits) - 1);
        return sample >> (bits - 8);
    }
};

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(host::PictureFormat)
};

/// A camera that does not name its format is judged by what it sends.
Readable layoutBySize(std::uint64_t bytes, std::uint64_t pixels)
{
    switch (bytes % pixels == 0 ? bytes / pixels : 0) {
    case 1:
        return Layout{};
    case 2:
        return Layout{Layout::Sample::Word, 1};
    case 3:
        return Layout{Layout::Sample::Byte, 3};
    case 4:
        return Layout{Layout::Sample::Byte, 4};
    case 6:
        return Layout{Layout::Sample::Word, 3};
    default:
        return std::nullopt;
    }
}

Readable layoutByFormat(const PictureFormat &format, std::uint64_t bytes, std::uint64_t pixels)
{
    switch (static_cast<ImageFormat>(*format.dataFormat)) {
    case ImageFormat::Raw8:
    case ImageFormat::Mono8:
        return Layout{};
    case ImageFormat::Raw16:
    case ImageFormat::Mono16:
    case ImageFormat::TransportData:
        return Layout{format.packed && bytes < 2 * pixels ? Layout::Sample::Packed : Layout::Sample::Word, 1};
    case ImageFormat::Rgb24:
        return Layout{Layout::Sample::Byte, 3};
    case ImageFormat::Rgb32:
        return Layout{Layout::Sample::Byte, 4};
    case ImageFormat::Rgb48:
        return Layout{Layout::Sample::Word, 3};
    }
    return std::nullopt;
}

std::uint64_t bytesNeeded(const Layout &layout, std::uint64_t pixels, int bitDepth)
{
    const std::uint64_t samples = pixels * static_cast<std::uint64_t>(layout.samplesPerPixel);
    switch (layout.sample) {
    case Layout::Sample::Byte:
        return samples;
    case Layout::Sample::Word:
        return 2 * samples;
    case Layout::Sample::Packed:
        break;
    }
    return (samples * static_cast<std::uint64_t>(bitDepth) + 7) / 8;
}

Geometry geometry(const ZU_IMG &frame, QSize shown)
{
    Geometry result{frame.width, frame.height, 1, 0, 0};
    if (!shown.isEmpty()) {
        const auto fits = [](std::size_t size, int room) { return size / static_cast<std::size_t>(room); };
        result.step = std::max(
            {fits(result.width, shown.width()), fits(result.height, shown.height()), std::size_t{1}});
    }
    result.shownWidth = std::max(result.width / result.step, std::size_t{1});
    result.shownHeight = std::max(result.height / result.step, std::size_t{1});
    return result;
}

/// Reduced pictures take the mean of four neighbours: of raw Bayer data a
/// single one would be of any colour.
template <int Samples, int Channels, typename Reader> class Reducer
{
public:
    Reducer(const Geometry &geometry, Reader read)
        : m_geometry(geometry)
        , m_read(read)
    {
    }

    std::array<unsigned, Channels> pixel(std::size_t x, std::size_t y) const
    {
        std::array<unsigned, Channels> values{};
        const std::size_t left = x * m_geometry.step;
        const std::size_t top = y * m_geometry.step * m_geometry.width;
        if (m_geometry.step == 1) {
            for (std::size_t c = 0; c < Channels; ++c)
                values[c] = m_read((top + left) * Samples + c);
            return values;
        }
        // A side of a single pixel has no neighbour.
        const std::size_t right = m_geometry.width > 1 ? left + 1 : left;
        const std::size_t below = m_geometry.height > 1 ? top + m_geometry.width : top;
        for (std::size_t c = 0; c < Channels; ++c) {
            values[c] = (m_read((top + left) * Samples + c) + m_read((top + right) * Samples + c) +
                         m_read((below + left) * Samples + c) + m_read((below + right) * Samples + c) + 2) /
                        4;
        }
        return values;
    }

private:
    Geometry m_geometry;
    Reader m_read;
};

template <typename Reader> void fillGrey(QImage &image, const Geometry &geometry, Reader read)
{
    const Reducer<1, 1, Reader> reducer(geometry, read);
    for (int y = 0; y < image.height(); ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x)
            line[x] = static_cast<uchar>(
                reducer.pixel(static_cast<std::size_t>(x), static_cast<std::size_t>(y))[0]);
    }
}

template <int Samples, typename Reader> void fillColour(QImage &image, const Geometry &geometry, Reader read)
{
    const Reducer<Samples, 3, Reader> reducer(geometry, read);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto [red, green, blue] =
                reducer.pixel(static_cast<std::size_t>(x), static_cast<std::size_t>(y));
            line[x] = 0xff000000U | (red << 16U) | (green << 8U) | blue;
        }
    }
}

void fill(QImage &image, const Geometry &geometry, const Layout &layout, const unsigned char *data,
          int bitDepth)
{
    const WordReader words{data, bitDepth - 8};
    if (layout.isColour()) {
        if (layout.sample == Layout::Sample::Word)
            fillColour<3>(image, geometry, words);
        else if (layout.samplesPerPixel == 4)
            fillColour<4>(image, geometry, ByteReader{data});
        else
            fillColour<3>(image, geometry, ByteReader{data});
    } else if (layout.sample == Layout::Sample::Word) {
        fillGrey(image, geometry, words);
    } else if (layout.sample == Layout::Sample::Packed) {
        fillGrey(image, geometry, PackedReader{data, static_cast<std::size_t>(bitDepth)});
    } else {
        fillGrey(image, geometry, ByteReader{data});
    }
}

QString incomplete(const ZU_IMG &frame)
{
    return Texts::tr("The camera sends incomplete pictures: %1 bytes for %2 × %3 pixels.")
        .arg(frame.filledSize)
        .arg(frame.width)
        .arg(frame.height);
}

QString unreadable(const ZU_IMG &frame, const PictureFormat &format)
{
    if (format.dataFormat)
        return Texts::tr("Pictures in image format %1 cannot be shown.").arg(*format.dataFormat);
    return Texts::tr("Pictures of %1 × %2 pixels in %3 bytes cannot be shown.")
        .arg(frame.width)
        .arg(frame.height)
        .arg(frame.filledSize);
}

/// Nothing, and why, for a frame that cannot be shown.
Readable layoutOf(const ZU_IMG &frame, const PictureFormat &format, int bitDepth, QString &problem)
{
    const std::uint64_t bytes = frame.filledSize;
    const std::uint64_t pixels = std::uint64_t{frame.width} * frame.height;
    if (!frame.data || pixels == 0) {
        problem = Texts::tr("The camera sends frames without a picture.");
    } else if (pixels > bytes) { // below, sizes would not fit 64 bits
        problem = incomplete(frame);
    } else {
        const Readable layout =
            format.dataFormat ? layoutByFormat(format, bytes, pixels) : layoutBySize(bytes, pixels);
        if (layout && bytesNeeded(*layout, pixels, bitDepth) <= bytes)
            return layout;
        problem = layout ? incomplete(frame) : unreadable(frame, format);
    }
    return std::nullopt;
}

} // namespace

PictureFormat readPictureFormat(ZUCORE_HANDLE hCam)
{
    PictureFormat format;
    int value = 0;
    if (zuApi_GetParamInt(hCam, ZU_PRM_IMAGE_DATA_FORMAT, value, nullptr))
        format.dataFormat = value;
    if (zuApi_GetParamInt(hCam, ZU_PRM_OUTPUT_DATA_BIT_DEPTH, value, nullptr))
        format.bitDepth = value;
    if (zuApi_GetParamInt(hCam, ZU_PRM_OUTPUT_DATA_PACKING, value, nullptr))
        format.packed = value != 0;
    return format;
}

Picture convertPicture(const ZU_IMG &frame, const PictureFormat &format, QSize shownSize)
{
    Picture picture;
    const int bitDepth = std::clamp(format.bitDepth, 8, 16);
    const Readable layout = layoutOf(frame, format, bitDepth, picture.problem);
    if (!layout)
        return picture;
    const Geometry shape = geometry(frame, shownSize);
    // Larger ones no display has, and no image holds.
    constexpr std::size_t longestSide = 32767;
    if (shape.shownWidth <= longestSide && shape.shownHeight <= longestSide) {
        picture.image = QImage(static_cast<int>(shape.shownWidth), static_cast<int>(shape.shownHeight),
                               layout->isColour() ? QImage::Format_RGB32 : QImage::Format_Grayscale8);
    }
    if (picture.image.isNull()) {
        picture.problem = Texts::tr("Pictures of %1 × %2 pixels are too large to be shown.")
                              .arg(frame.width)
                              .arg(frame.height);
        return picture;
    }
    fill(picture.image, shape, *layout, static_cast<const unsigned char *>(frame.data), bitDepth);
    picture.size = QSize(static_cast<int>(frame.width), static_cast<int>(frame.height));
    picture.frameNumber = frame.frameNumber;
    return picture;
}

} // namespace host
