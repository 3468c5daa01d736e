#pragma once

#include "zuCore/ZuApi.h"

#include <QImage>
#include <QString>

#include <optional>

namespace host {

/// How a camera lays the pixels of its frames out, as far as its parameters
/// tell.
struct PictureFormat
{
    std::optional<int> dataFormat; ///< value of "imgdataformat"; not set: the camera has none
    int bitDepth = 8;              ///< significant bits of a sample of more than a byte
    bool packed = false;           ///< samples of more than a byte may touch
};

/// A frame made ready for the screen.
struct Picture
{
    QImage image;    ///< null when it cannot be shown
    QString problem; ///< why not
    QSize size;      ///< of the frame, pixels
    unsigned int frameNumber = 0;
};

/// Reads the format from an open camera; may be called from any thread.
PictureFormat readPictureFormat(ZUCORE_HANDLE hCam);

/// Copies a frame into an image, raw Bayer data as grey. Never reads beyond
/// `filledSize`. Samples of two bytes are little-endian, packed ones follow one
/// another from the lowest bit on; colours come as red, green, blue.
/// \param shownSize device pixels the picture fills on the screen: a much larger
/// frame is reduced, but to no less. Empty: not reduced.
Picture convertPicture(const ZU_IMG &frame, const PictureFormat &format, QSize shownSize);

} // namespace host
