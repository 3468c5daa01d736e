#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class CxPlugin;
class QSettings;

namespace host {

enum class PluginState {
    Foreign,    ///< a plug-in of another program
    Invalid,    ///< no plug-in at all
    Disabled,   ///< by the user
    LoadFailed, ///< the system's loader refused it
    InitFailed, ///< it does not answer as a plug-in of this program must, or refused to start
    Loaded,
};

/// For users: "loaded", "init failed", ...
QString pluginStateName(PluginState state);

/// A file that was found in a search folder, and what became of it.
struct PluginEntry
{
    QString path; ///< absolute
    PluginState state = PluginState::Invalid;
    QString reason; ///< for the user; empty when loaded
    QString name;   ///< its own once it was loaded, else its class or empty
    QString author;
    QString description;
    QString version;
    QString website;
    CxPlugin *plugin = nullptr; ///< only when loaded; never deleted

    QString fileName() const;
};

/// The plug-ins of the program. Metadata is judged before any code of a file
/// runs, and whatever a plug-in throws ends here. GUI thread only.
class PluginCatalog
{
public:
    /// Finds, judges, loads and initialises. Every candidate gets an entry. The
    /// program's delegate must be registered.
    /// \param disabledFiles file names without folder
    void load(const QStringList &folders, const QStringList &disabledFiles);

    const std::vector<PluginEntry> &entries() const { return m_entries; }

    void loadSettings(QSettings &store);
    void saveSettings(QSettings &store);
    /// Tells the plug-ins that the program ends; they are not called again. The
    /// libraries stay: widgets of theirs may still be alive.
    void finish();

private:
    /// Calls every loaded plug-in, in the order of their loading.
    void forEachLoaded(const char *operation, const std::function<void(CxPlugin &)> &call);

    std::vector<PluginEntry> m_entries;
    bool m_finished = false;
};

} // namespace host
