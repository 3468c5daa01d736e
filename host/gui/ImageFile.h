#pragma once

#include <QString>

class QImage;

namespace host {

/// The first suffix that an entry of a file dialog's filter list names, without
/// its dot: "png" of "PNG (*.png)". Empty when it names none.
QString filterSuffix(const QString &nameFilter);

/// Writes an image file as a whole or not at all.
/// \param fallbackFormat taken when the path's suffix is no known image format
/// \return empty, or the reason of the failure for the user
QString writeImageFile(const QImage &image, const QString &path, const QString &fallbackFormat);

} // namespace host
