#include "host/app/PluginCatalog.h"

#include "host/app/LibraryFile.h"
#include "host/app/PluginSearch.h"
#include "zuCoreGui/CxPlugin.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>
#include <QSettings>

#include <exception>

namespace host {

namespace {

const QLatin1String ownIdPrefix("com.korvant.Velmora.");

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(host::PluginCatalog)
};

/// \return empty, or what the call threw
QString exceptionOf(const std::function<void()> &call)
{
    try {
        call();
        return {};
    } catch (const std::exception &problem) {
        const QString text = QString::fromLocal8Bit(problem.what());
        return text.isEmpty() ? Texts::tr("an exception without a text") : text;
    } catch (...) {
        return Texts::tr("an exception of unknown type");
    }
}

void fail(PluginEntry &entry, PluginState state, const QString &reason)
{
    entry.state = state;
    entry.reason = reason;
    entry.plugin = nullptr;
}

/// The loader's messages repeat the path, which stands beside them anyway.
QString withoutPath(QString message, const QString &path)
{
    message.remove(QStringLiteral("Cannot load library %1: ").arg(path));
    message.remove(path + QStringLiteral(": "));
    if (message.startsWith(QLatin1Char('(')) && message.endsWith(QLatin1Char(')')))
        message = message.mid(1, message.size() - 2);
    return message.simplified();
}

/// Judges by the file and its metadata; runs no code of it.
/// \return true if it is to be loaded
bool judge(PluginEntry &entry, const QPluginLoader &loader, const QStringList &disabledFiles)
{
    const QJsonObject metaData = loader.metaData();
    const QString id = metaData.value(QLatin1String("IID")).toString();
    if (id.isEmpty()) {
        fail(entry, PluginState::Invalid, Texts::tr("not a Qt plug-in"));
        return false;
    }
    entry.name = metaData.value(QLatin1String("className")).toString();
    if (!id.startsWith(ownIdPrefix)) {
        fail(entry, PluginState::Foreign, Texts::tr("a plug-in of another program (%1)").arg(id));
        return false;
    }
    if (disabledFiles.contains(entry.fileName())) {
        fail(entry, PluginState::Disabled, Texts::tr("switched off by the user"));
        return false;
    }
    return true;
}

void describe(PluginEntry &entry)
{
    const QString name = entry.plugin->name();
    if (!name.isEmpty())
        entry.name = name;
    entry.author = entry.plugin->author();
    entry.description = entry.plugin->description();
    entry.version = entry.plugin->version();
    entry.website = entry.plugin->website();
}

/// Runs the plug-in's code for the first time.
void start(PluginEntry &entry, QPluginLoader &loader)
{
    QObject *root = nullptr;
    QString thrown = exceptionOf([&] { root = loader.instance(); });
    if (!thrown.isEmpty())
        return fail(entry, PluginState::InitFailed, Texts::tr("its root object threw: %1").arg(thrown));
    if (!root)
        return fail(entry, PluginState::LoadFailed, withoutPath(loader.errorString(), entry.path));
    entry.plugin = qobject_cast<CxPlugin *>(root);
    if (!entry.plugin)
        return fail(entry, PluginState::InitFailed, Texts::tr("it has no CxPlugin interface"));

    bool accepted = false;
    thrown = exceptionOf([&] {
        describe(entry);
        accepted = entry.plugin->init();
    });
    if (!thrown.isEmpty())
        return fail(entry, PluginState::InitFailed, Texts::tr("init() threw: %1").arg(thrown));
    if (!accepted)
        return fail(entry, PluginState::InitFailed, Texts::tr("init() returned false"));
    entry.state = PluginState::Loaded;
}

PluginEntry enter(const QString &path, const QStringList &disabledFiles)
{
    PluginEntry entry;
    entry.path = path;
    const LibraryFile file = examineLibrary(path);
    if (file.state != LibraryFileState::Usable) {
        const bool other = file.state == LibraryFileState::OtherProcessor;
        fail(entry, other ? PluginState::LoadFailed : PluginState::Invalid, file.reason);
        return entry;
    }
    QPluginLoader loader(path);
    // All symbols at once: one that is missing must not end the program later.
    // Never unloaded: widgets and statics of the plug-in outlive the catalog.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (judge(entry, loader, disabledFiles))
        start(entry, loader);
    return entry;
}

void report(const PluginEntry &entry)
{
    const QString state = pluginStateName(entry.state);
    if (entry.state == PluginState::Loaded)
        qInfo().noquote() << "plug-in" << entry.path << state << entry.name << entry.version;
    else if (entry.state == PluginState::LoadFailed || entry.state == PluginState::InitFailed)
        qWarning().noquote() << "plug-in" << entry.path << state << "-" << entry.reason;
    else
        qInfo().noquote() << "plug-in" << entry.path << state << "-" << entry.reason;
}

void leaveAllGroups(QSettings &store)
{
    while (!store.group().isEmpty())
        store.endGroup();
}

} // namespace

QString pluginStateName(PluginState state)
{
    switch (state) {
    case PluginState::Foreign:
        return Texts::tr("foreign");
    case PluginState::Invalid:
        return Texts::tr("invalid");
    case PluginState::Disabled:
        return Texts::tr("disabled");
    case PluginState::LoadFailed:
        return Texts::tr("load failed");
    case PluginState::InitFailed:
        return Texts::tr("init failed");
    case PluginState::Loaded:
        return Texts::tr("loaded");
    }
    return {};
}

QString PluginEntry::fileName() const
{
    return QFileInfo(path).fileName();
}

void PluginCatalog::load(const QStringList &folders, const QStringList &disabledFiles)
{
    for (const QString &path : findPluginFiles(folders)) {
        m_entries.push_back(enter(path, disabledFiles));
        report(m_entries.back());
    }
}

void PluginCatalog::loadSettings(QSettings &store)
{
    forEachLoaded("loadSettings", [&store](CxPlugin &plugin) {
        leaveAllGroups(store);
        plugin.loadSettings(&store);
    });
    leaveAllGroups(store);
}

void PluginCatalog::saveSettings(QSettings &store)
{
    forEachLoaded("saveSettings", [&store](CxPlugin &plugin) {
        leaveAllGroups(store);
        plugin.saveSettings(&store);
    });
    leaveAllGroups(store);
}

void PluginCatalog::finish()
{
    forEachLoaded("finish", [](CxPlugin &plugin) { plugin.finish(); });
    m_finished = true;
}

void PluginCatalog::forEachLoaded(const char *operation, const std::function<void(CxPlugin &)> &call)
{
    if (m_finished)
        return;
    for (const PluginEntry &entry : m_entries) {
        if (!entry.plugin)
            continue;
        const QString thrown = exceptionOf([&] { call(*entry.plugin); });
        if (!thrown.isEmpty())
            qWarning().noquote() << "plug-in" << entry.path << operation << "threw:" << thrown;
    }
}

} // namespace host
