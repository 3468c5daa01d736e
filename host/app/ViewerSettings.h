#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace host {

/// The viewer's settings: an INI file in which each plug-in has its own group.
/// GUI thread only.
///
/// A file that cannot be used never ends the program and is never lost: one that
/// is damaged is copied to FILE.bak before it is written again; one that cannot
/// be read stays as it is, and this run's settings go nowhere.
class ViewerSettings
{
public:
    /// \param file absolute; empty: the user's own file
    explicit ViewerSettings(const QString &file);
    ~ViewerSettings();
    ViewerSettings(const ViewerSettings &) = delete;
    ViewerSettings &operator=(const ViewerSettings &) = delete;

    /// The user's own settings file. Follows the application's name.
    static QString defaultFile();

    QString fileName() const { return m_file; }
    /// For the user: what was wrong with the file at the start; empty: nothing.
    QString problem() const { return m_problem; }

    /// The store itself, at no particular group, for plug-ins.
    QSettings *store() { return m_store.get(); }

    /// Writes what changed. \return empty, or the reason of a failure for the user
    QString save();

    QByteArray windowGeometry() const;
    QByteArray windowState() const;
    void setWindowLayout(const QByteArray &geometry, const QByteArray &state);

    /// Ids of the cameras that were open at the end of the last run.
    QStringList openCameras() const;
    void setOpenCameras(const QStringList &deviceIds);

    /// An existing folder: the stored one, else the user's documents or home.
    QString savePath() const;
    void setSavePath(const QString &path);

    /// 1 to 3.
    int interfaceLevel() const;
    /// The user's choice; ends an override.
    void setInterfaceLevel(int level);
    /// Holds for this run and is not stored.
    void overrideInterfaceLevel(int level);

    /// Name of the colour theme; empty: none was chosen.
    QString theme() const;
    void setTheme(const QString &name);

    /// File names, without folder, of the plug-ins that the user switched off.
    QStringList disabledPlugins() const;
    void setPluginEnabled(const QString &fileName, bool enabled);

private:
    void openFile();
    void keepDamagedFile();
    void useScratch(const QString &problem);

    QString m_file;
    QString m_problem;
    std::unique_ptr<QTemporaryDir> m_scratch; ///< holds the store when the file is not to be touched
    std::unique_ptr<QSettings> m_store;
    std::optional<int> m_levelOfThisRun;
};

} // namespace host
