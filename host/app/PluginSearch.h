#pragma once

#include <QString>
#include <QStringList>

namespace host {

/// Where plug-ins are looked for. Never the working directory by itself: a file
/// that somebody left there would run with the user's rights.
struct PluginSearchPath
{
    QStringList given;     ///< absolute; from the command line
    QString environment;   ///< folders separated by colons; relative and empty ones are ignored
    QString programFolder; ///< searched: its `plugins` and that of its parent
    QString installedFolder;

    /// Of this program: VELMORA_PLUGIN_PATH, its own place, the installed folder.
    static PluginSearchPath ofThisProgram(const QStringList &given);

    /// The folders in the order in which they are searched, existing or not.
    QStringList folders() const;
};

/// Absolute paths of everything in the folders that is named like a library.
/// The same file, or another one of the same name in a later folder, is left
/// out; within a folder the order is that of the names.
QStringList findPluginFiles(const QStringList &folders);

} // namespace host
