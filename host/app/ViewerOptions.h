#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace host {

/// What the user asked for on the command line.
struct ViewerOptions
{
    QStringList pluginPaths; ///< absolute folders, searched before all others, in this order
    bool loadPlugins = true;
    bool listPlugins = false;
    QString simulate;     ///< number of cameras, scenario name or scenario file; empty: none
    bool openAll = false; ///< open every plugged-in camera at the start
    QString settingsFile; ///< absolute; empty: the user's own
    std::optional<int> interfaceLevel;
};

/// Text for the user instead of a run: help and version (exit code 0), or what
/// was wrong with the command line (exit code 2).
struct OptionsMessage
{
    QString text;
    int exitCode = 0;
};

/// Exit code of a program that was called wrongly.
inline constexpr int ExitUsage = 2;

/// \param arguments with the program's name; the toolkit's own ("-platform", "-style", ...) are passed over
/// Needs a QCoreApplication, whose working directory relative paths refer to.
std::variant<ViewerOptions, OptionsMessage> parseViewerArguments(const QStringList &arguments);

/// A message about wrong use, as parseViewerArguments() makes them.
OptionsMessage usageMessage(const QString &problem);

} // namespace host
