#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace files {

/// Path of a built fixture.
inline QString fixture(const char *name)
{
    return QStringLiteral(PLUGIN_FIXTURES "/%1.so").arg(name);
}

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

/// \return the path
inline QString write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

/// A folder with a copy of one fixture.
inline QString copyInto(const QTemporaryDir &folder, const char *fixtureName, const char *asName)
{
    return write(folder.filePath(asName), contents(fixture(fixtureName)));
}

} // namespace files
