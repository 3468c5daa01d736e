#include "host/gui/ImageFile.h"

#include <QFileInfo>
#include <QImageWriter>
#include <QRegularExpression>
#include <QSaveFile>

QString host::filterSuffix(const QString &nameFilter)
{
    static const QRegularExpression pattern(QStringLiteral("\\*\\.([^\\s)*]+)"));
    return pattern.match(nameFilter).captured(1);
}

QString host::writeImageFile(const QImage &image, const QString &path, const QString &fallbackFormat)
{
    QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(format))
        format = fallbackFormat.toLower().toLatin1();

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    QImageWriter writer(&file, format);
    const bool written = writer.write(image);
    // The writer knows nothing of the disk: a full one shows in the file only.
    if (file.error() != QFileDevice::NoError)
        return file.errorString();
    if (!written)
        return writer.errorString();
    return file.commit() ? QString() : file.errorString();
}
