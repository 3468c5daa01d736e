#include "host/app/ViewerOptions.h"

#include "host/app/InterfaceLevel.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <array>

namespace host {

namespace {

struct Declarations
{
    QCommandLineOption pluginPath{QStringLiteral("plugin-path"),
                                  QStringLiteral("Search this folder for plug-ins first; may be repeated."),
                                  QStringLiteral("DIR")};
    QCommandLineOption noPlugins{QStringLiteral("no-plugins"), QStringLiteral("Load no plug-in.")};
    QCommandLineOption listPlugins{
        QStringLiteral("list-plugins"),
        QStringLiteral("Print each plug-in that is found, with its state, and end.")};
    QCommandLineOption simulate{QStringLiteral("simulate"),
                                QStringLiteral("Plug in simulated cameras: a number of cameras, the name of "
                                               "a built-in scenario, or a scenario file."),
                                QStringLiteral("N|NAME|FILE")};
    QCommandLineOption openAll{QStringLiteral("open-all"), QStringLiteral("Open every camera at the start.")};
    QCommandLineOption settings{QStringLiteral("settings"),
                                QStringLiteral("Keep the settings in this file instead of the user's own."),
                                QStringLiteral("FILE")};
    QCommandLineOption interfaceLevel{
        QStringLiteral("interface-level"),
        QStringLiteral("How much is shown, this time: 1 basic, 2 advanced, 3 expert."), QStringLiteral("N")};
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this text.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")},
                               QStringLiteral("Show the version.")};

    void addTo(QCommandLineParser &parser) const
    {
        parser.addOptions(
            {pluginPath, noPlugins, listPlugins, simulate, openAll, settings, interfaceLevel, help, version});
    }
};

/// The options that QApplication takes for itself, but only once it exists,
/// which needs a display; without their dashes.
constexpr std::array toolkitOptionsWithValue{
    "display", "fontengine",      "geometry",      "icon",
    "name",    "platform",        "platformtheme", "platformpluginpath",
    "plugin",  "qwindowgeometry", "qwindowicon",   "qwindowtitle",
    "session", "style",           "stylesheet",    "title"};
constexpr std::array toolkitOptions{"reverse", "nograb", "dograb", "sync", "widgetcount"};

template <typename Names> bool isNamed(const QString &argument, const Names &names)
{
    return std::any_of(names.begin(), names.end(), [&argument](const char *name) {
        return argument == QLatin1Char('-') + QLatin1String(name) ||
               argument == QLatin1String("--") + QLatin1String(name);
    });
}

QStringList withoutToolkitOptions(const QStringList &arguments)
{
    QStringList own;
    for (int i = 0; i < arguments.size(); ++i) {
        if (isNamed(arguments.at(i), toolkitOptionsWithValue) && i + 1 < arguments.size())
            ++i;
        else if (!isNamed(arguments.at(i), toolkitOptions))
            own.append(arguments.at(i));
    }
    return own;
}

QString absolutePath(const QString &path)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

/// Fills `options`; returns what is wrong, or an empty text.
QString readValues(const QCommandLineParser &parser, const Declarations &declared, ViewerOptions &options)
{
    const auto isEmptyValue = [&parser](const QCommandLineOption &option) {
        return parser.values(option).contains(QString());
    };
    for (const QCommandLineOption *option : {&declared.pluginPath, &declared.simulate, &declared.settings}) {
        if (isEmptyValue(*option))
            return QStringLiteral("--%1: the value is empty").arg(option->names().constFirst());
    }
    for (const QString &path : parser.values(declared.pluginPath))
        options.pluginPaths.append(absolutePath(path));
    options.loadPlugins = !parser.isSet(declared.noPlugins);
    options.listPlugins = parser.isSet(declared.listPlugins);
    options.simulate = parser.value(declared.simulate);
    options.openAll = parser.isSet(declared.openAll);
    if (parser.isSet(declared.settings))
        options.settingsFile = absolutePath(parser.value(declared.settings));

    if (parser.isSet(declared.interfaceLevel)) {
        const QString text = parser.value(declared.interfaceLevel);
        bool ok = false;
        const int level = text.toInt(&ok);
        if (!ok || !isInterfaceLevel(level))
            return QStringLiteral("--interface-level: \"%1\" is not a number from 1 to 3").arg(text);
        options.interfaceLevel = level;
    }
    return {};
}

} // namespace

OptionsMessage usageMessage(const QString &problem)
{
    return {QStringLiteral("velmora: %1\nTry 'velmora --help'.\n").arg(problem), ExitUsage};
}

std::variant<ViewerOptions, OptionsMessage> parseViewerArguments(const QStringList &arguments)
{
    const Declarations declared;
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows cameras and runs plug-ins that use them."));
    declared.addTo(parser);

    if (!parser.parse(withoutToolkitOptions(arguments)))
        return usageMessage(parser.errorText());
    if (parser.isSet(declared.help))
        return OptionsMessage{parser.helpText(), 0};
    if (parser.isSet(declared.version))
        return OptionsMessage{QStringLiteral("velmora %1\n").arg(QCoreApplication::applicationVersion()), 0};
    if (!parser.positionalArguments().isEmpty()) {
        return usageMessage(
            QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().constFirst()));
    }

    ViewerOptions options;
    const QString problem = readValues(parser, declared, options);
    if (!problem.isEmpty())
        return usageMessage(problem);
    return options;
}

} // namespace host
