#include "host/app/ViewerSettings.h"

#include "host/app/InterfaceLevel.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace host {

namespace {

// A file of settings has a few kilobytes; a larger one was given by mistake.
constexpr qint64 maxFileBytes = 8'000'000;

const QLatin1String geometryKey("MainWindow/Geometry");
const QLatin1String stateKey("MainWindow/State");
const QLatin1String themeKey("MainWindow/Theme");
const QLatin1String interfaceLevelKey("MainWindow/InterfaceLevel");
const QLatin1String openCamerasKey("Cameras/Open");
const QLatin1String savePathKey("Paths/Save");
const QLatin1String disabledPluginsKey("Plugins/Disabled");

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(host::ViewerSettings)
};

/// A name next to the file that is still free: FILE.bak, FILE.bak2, ...
QString backupName(const QString &file)
{
    QString name = file + QLatin1String(".bak");
    for (int i = 2; QFile::exists(name); ++i)
        name = file + QStringLiteral(".bak%1").arg(i);
    return name;
}

/// Why the file must not be opened as settings, or an empty text. QSettings
/// itself would read a pipe or a device until it blocks or memory ends.
QString reasonNotToRead(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    if (!info.isFile())
        return Texts::tr("it is not a regular file");
    if (info.size() > maxFileBytes)
        return Texts::tr("it is too large");
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

} // namespace

ViewerSettings::ViewerSettings(const QString &file)
    : m_file(file.isEmpty() ? defaultFile() : file)
{
    openFile();
}

ViewerSettings::~ViewerSettings() = default;

QString ViewerSettings::defaultFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QLatin1String("/velmora.ini");
}

void ViewerSettings::openFile()
{
    const QString reason = reasonNotToRead(m_file);
    if (!reason.isEmpty()) {
        useScratch(Texts::tr("The settings file %1 cannot be read: %2. Settings of this run are not kept.")
                       .arg(m_file, reason));
        return;
    }
    m_store = std::make_unique<QSettings>(m_file, QSettings::IniFormat);
    // Sections are parsed when they are first asked for; errors show only then.
    m_store->allKeys();
    if (m_store->status() == QSettings::FormatError)
        keepDamagedFile();
    else if (!m_store->isWritable())
        m_problem =
            Texts::tr("The settings file %1 cannot be written. Changed settings are not kept.").arg(m_file);
}

void ViewerSettings::keepDamagedFile()
{
    const QString backup = backupName(m_file);
    if (!QFile::copy(m_file, backup)) {
        useScratch(
            Texts::tr("The settings file %1 is damaged and could not be copied to %2. It is left as it is; "
                      "settings of this run are not kept.")
                .arg(m_file, backup));
        return;
    }
    m_problem =
        Texts::tr("The settings file %1 is damaged. It was copied to %2; what could not be read starts "
                  "anew.")
            .arg(m_file, backup);
    // A store keeps its first error for good.
    m_store = std::make_unique<QSettings>(m_file, QSettings::IniFormat);
}

void ViewerSettings::useScratch(const QString &problem)
{
    m_problem = problem;
    m_scratch = std::make_unique<QTemporaryDir>();
    m_store =
        std::make_unique<QSettings>(m_scratch->filePath(QStringLiteral("velmora.ini")), QSettings::IniFormat);
}

QString ViewerSettings::save()
{
    m_store->sync();
    if (m_store->status() != QSettings::AccessError)
        return {};
    return Texts::tr("The settings could not be written to %1.").arg(m_store->fileName());
}

QByteArray ViewerSettings::windowGeometry() const
{
    return m_store->value(geometryKey).toByteArray();
}

QByteArray ViewerSettings::windowState() const
{
    return m_store->value(stateKey).toByteArray();
}

void ViewerSettings::setWindowLayout(const QByteArray &geometry, const QByteArray &state)
{
    m_store->setValue(geometryKey, geometry);
    m_store->setValue(stateKey, state);
}

QStringList ViewerSettings::openCameras() const
{
    return m_store->value(openCamerasKey).toStringList();
}

void ViewerSettings::setOpenCameras(const QStringList &deviceIds)
{
    m_store->setValue(openCamerasKey, deviceIds);
}

QString ViewerSettings::savePath() const
{
    QString stored = m_store->value(savePathKey).toString();
    if (QDir::isAbsolutePath(stored) && QFileInfo(stored).isDir())
        return stored;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

void ViewerSettings::setSavePath(const QString &path)
{
    m_store->setValue(savePathKey, path);
}

int ViewerSettings::interfaceLevel() const
{
    if (m_levelOfThisRun)
        return *m_levelOfThisRun;
    const int stored = m_store->value(interfaceLevelKey, DefaultInterfaceLevel).toInt();
    return isInterfaceLevel(stored) ? stored : DefaultInterfaceLevel;
}

void ViewerSettings::setInterfaceLevel(int level)
{
    m_levelOfThisRun.reset();
    m_store->setValue(interfaceLevelKey, level);
}

void ViewerSettings::overrideInterfaceLevel(int level)
{
    m_levelOfThisRun = level;
}

QString ViewerSettings::theme() const
{
    return m_store->value(themeKey).toString();
}

void ViewerSettings::setTheme(const QString &name)
{
    m_store->setValue(themeKey, name);
}

QStringList ViewerSettings::disabledPlugins() const
{
    return m_store->value(disabledPluginsKey).toStringList();
}

void ViewerSettings::setPluginEnabled(const QString &fileName, bool enabled)
{
    QStringList disabled = disabledPlugins();
    disabled.removeAll(fileName);
    if (!enabled)
        disabled.append(fileName);
    m_store->setValue(disabledPluginsKey, disabled);
}

} // namespace host
