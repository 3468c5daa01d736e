#include "zuCoreGui/CxPlugin.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QtTest>

#include <cstddef>
#include <cstring>

namespace {

/// Implements nothing.
class PlainPlugin : public CxPlugin
{
};

class VersionedPlugin : public CxPlugin
{
public:
    using CxPlugin::version;
    void version(int &major, int &minor, int &build) const override
    {
        major = 3;
        minor = 14;
        build = 15;
    }
};

/// Offset of a virtual operation in its class's table, in entries. By the
/// Itanium C++ ABI a pointer to a virtual member holds the byte offset plus one;
/// on ARM the plain offset, with the mark in its second word.
template <typename Member> int slot(Member member)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof words == sizeof member);
    std::memcpy(words, &member, sizeof words);
#if defined(__aarch64__) || defined(__arm__)
    return int(words[0] / std::ptrdiff_t(sizeof(void *)));
#else
    return int((words[0] - 1) / std::ptrdiff_t(sizeof(void *)));
#endif
}

} // namespace

/// What plug-ins that were built elsewhere rely on, and the defaults of the
/// operations that they leave out.
class PluginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotOrder_data();
    void slotOrder();
    void interfaceId();
    void defaults();
    void versionText();
    void symbols_data();
    void symbols();
};

void PluginTest::slotOrder_data()
{
    using NumbersVersion = void (CxPlugin::*)(int &, int &, int &) const;
    using TextVersion = QString (CxPlugin::*)() const;
    QTest::addColumn<int>("actual");
    QTest::addColumn<int>("expected");
    int next = 2; // behind the two destructors
    const auto row = [&next](const char *name, int actual) { QTest::newRow(name) << actual << next++; };
    row("init", slot(&CxPlugin::init));
    row("finish", slot(&CxPlugin::finish));
    row("loadSettings", slot(&CxPlugin::loadSettings));
    row("saveSettings", slot(&CxPlugin::saveSettings));
    row("copyrightNotice", slot(&CxPlugin::copyrightNotice));
    row("name", slot(&CxPlugin::name));
    row("author", slot(&CxPlugin::author));
    row("description", slot(&CxPlugin::description));
    row("version, numbers", slot(static_cast<NumbersVersion>(&CxPlugin::version)));
    row("version, text", slot(static_cast<TextVersion>(&CxPlugin::version)));
    row("website", slot(&CxPlugin::website));
    row("activeViewChanged", slot(&CxPlugin::activeViewChanged));
    row("viewAboutToClose", slot(&CxPlugin::viewAboutToClose));
    row("newCameraConnected", slot(&CxPlugin::newCameraConnected));
    row("cameraDisconnected", slot(&CxPlugin::cameraDisconnected));
    row("viewGotNewImage", slot(&CxPlugin::viewGotNewImage));
    row("viewMouseBtnPressEvent", slot(&CxPlugin::viewMouseBtnPressEvent));
    row("viewMouseMoveEvent", slot(&CxPlugin::viewMouseMoveEvent));
    row("viewMouseBtnReleaseEvent", slot(&CxPlugin::viewMouseBtnReleaseEvent));
    row("viewMouseDoubleClickEvent", slot(&CxPlugin::viewMouseDoubleClickEvent));
    row("customCommand", slot(&CxPlugin::customCommand));

    next = 0; // the delegate has no virtual destructor
    row("defaultSavePath", slot(&IxAppDelegate::defaultSavePath));
    row("setDefaultSavePath", slot(&IxAppDelegate::setDefaultSavePath));
    row("addPluginWidget", slot(&IxAppDelegate::addPluginWidget));
    row("setCameraControlEnabled", slot(&IxAppDelegate::setCameraControlEnabled));
    row("interfaceLevel", slot(&IxAppDelegate::interfaceLevel));
    row("registerPlotWidget", slot(&IxAppDelegate::registerPlotWidget));
}

void PluginTest::slotOrder()
{
    QFETCH(int, actual);
    QFETCH(int, expected);
    QCOMPARE(actual, expected);
}

void PluginTest::interfaceId()
{
    QCOMPARE(qobject_interface_iid<CxPlugin *>(), "com.korvant.CxPlugin");
}

void PluginTest::defaults()
{
    PlainPlugin plain;
    CxPlugin &plugin = plain;
    QVERIFY(plugin.init());
    int major = -1;
    int minor = -1;
    int build = -1;
    plugin.version(major, minor, build);
    QCOMPARE(major, 0);
    QCOMPARE(minor, 0);
    QCOMPARE(build, 0);
    QCOMPARE(plugin.version(), QStringLiteral("0.0.0"));
    for (const QString &text :
         {plugin.copyrightNotice(), plugin.name(), plugin.author(), plugin.description(), plugin.website()})
        QVERIFY(text.isEmpty());
    // Nothing to see of the others but that they bear null.
    plugin.loadSettings(nullptr);
    plugin.saveSettings(nullptr);
    plugin.newCameraConnected(nullptr);
    plugin.cameraDisconnected(nullptr);
    plugin.viewGotNewImage(0, nullptr);
    plugin.viewMouseMoveEvent(0, nullptr);
    plugin.customCommand(QString(), 0, 0, nullptr, nullptr);
    plugin.finish();
}

void PluginTest::versionText()
{
    const VersionedPlugin plugin;
    QCOMPARE(static_cast<const CxPlugin &>(plugin).version(), QStringLiteral("3.14.15"));
}

void PluginTest::symbols_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name :
         {"vtable for CxPlugin",
          "typeinfo for CxPlugin",
          "CxPlugin::~CxPlugin()",
          "CxPlugin::init()",
          "CxPlugin::finish()",
          "CxPlugin::loadSettings(QSettings*)",
          "CxPlugin::saveSettings(QSettings*)",
          "CxPlugin::copyrightNotice() const",
          "CxPlugin::name() const",
          "CxPlugin::author() const",
          "CxPlugin::description() const",
          "CxPlugin::version(int&, int&, int&) const",
          "CxPlugin::version() const",
          "CxPlugin::website() const",
          "CxPlugin::activeViewChanged(int)",
          "CxPlugin::viewAboutToClose(int)",
          "CxPlugin::newCameraConnected(void*)",
          "CxPlugin::cameraDisconnected(void*)",
          "CxPlugin::viewGotNewImage(int, CxImageData const*)",
          "CxPlugin::viewMouseBtnPressEvent(int, QGraphicsSceneMouseEvent*)",
          "CxPlugin::viewMouseMoveEvent(int, QGraphicsSceneMouseEvent*)",
          "CxPlugin::viewMouseBtnReleaseEvent(int, QGraphicsSceneMouseEvent*)",
          "CxPlugin::viewMouseDoubleClickEvent(int, QGraphicsSceneMouseEvent*)",
          "CxPlugin::customCommand(QString const&, int, int, void*, void*)",
          "IxAppDelegate::instance()",
          "CxExportToolButton::CxExportToolButton(QWidget*)",
          "CxExportToolButton::addSupportedExportType(CxExportToolButton::ExExportType)",
          "CxExportToolButton::setExportType(CxExportToolButton::ExExportType)",
          "CxExportToolButton::exportType()",
          "CxExportToolButton::exportClicked(int)",
          "CxExportToolButton::exportImage(QImage const&, CxExportToolButton::ExExportType, QWidget*, "
          "QString const&)"})
        QTest::newRow(name) << QByteArray(name);
}

void PluginTest::symbols()
{
    QFETCH(QByteArray, name);
    static const QStringList exported = [] {
        QProcess nm;
        nm.start(QStringLiteral("nm"),
                 {QStringLiteral("-DC"), QStringLiteral("--defined-only"), QStringLiteral(ZUCOREGUI_FILE)});
        nm.waitForFinished();
        QStringList names;
        for (const QString &line : QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n')))
            names << line.section(QLatin1Char(' '), 2);
        return names;
    }();
    QVERIFY2(exported.contains(QString::fromLatin1(name)), "not exported");
}

QTEST_GUILESS_MAIN(PluginTest)
#include "PluginTest.moc"
