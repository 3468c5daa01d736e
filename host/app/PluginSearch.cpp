#include "host/app/PluginSearch.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QSet>

namespace host {

namespace {

constexpr const char *environmentName = "VELMORA_PLUGIN_PATH";

} // namespace

PluginSearchPath PluginSearchPath::ofThisProgram(const QStringList &given)
{
    return {given, QFile::decodeName(qgetenv(environmentName)), QCoreApplication::applicationDirPath(),
            QStringLiteral(VELMORA_INSTALLED_PLUGINS)};
}

QStringList PluginSearchPath::folders() const
{
    QStringList folders = given;
    if (!environment.isEmpty()) {
        for (const QString &entry : environment.split(QLatin1Char(':'))) {
            if (QDir::isAbsolutePath(entry))
                folders.append(entry);
            else
                qWarning("%s: \"%s\" is ignored: not an absolute folder", environmentName, qPrintable(entry));
        }
    }
    folders.append(programFolder + QLatin1String("/plugins"));
    folders.append(programFolder + QLatin1String("/../plugins"));
    folders.append(installedFolder);
    for (QString &folder : folders)
        folder = QDir::cleanPath(folder);
    folders.removeDuplicates();
    return folders;
}

QStringList findPluginFiles(const QStringList &folders)
{
    QStringList files;
    QSet<QString> names;
    QSet<QString> targets; // of symbolic links, so that each file is taken once
    for (const QString &folder : folders) {
        // System: also links that lead nowhere, to be shown as such.
        const QFileInfoList entries =
            QDir(folder).entryInfoList(QDir::Files | QDir::System, QDir::Name | QDir::LocaleAware);
        for (const QFileInfo &entry : entries) {
            if (!QLibrary::isLibrary(entry.fileName()))
                continue;
            const QString path = entry.absoluteFilePath();
            const QString canonical = entry.canonicalFilePath();
            const QString target = canonical.isEmpty() ? path : canonical;
            if (names.contains(entry.fileName()) || targets.contains(target)) {
                qInfo().noquote() << "plug-in" << path << "is left out: found before under another path";
                continue;
            }
            names.insert(entry.fileName());
            targets.insert(target);
            files.append(path);
        }
    }
    return files;
}

} // namespace host
