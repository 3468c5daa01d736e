#include "tests/ui/PluginRig.h"

#include <QJsonObject>
#include <QLibrary>
#include <QMetaMethod>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

using rig::PluginRig;
using scripted::Function;
using scripted::Gui;
using scripted::Host;

namespace {

const QString group = QStringLiteral("DataThroughputGraphPlugin");

int callsOf(Function function)
{
    const std::vector<scripted::Call> calls = Host::instance().calls();
    return int(std::count_if(calls.begin(), calls.end(),
                             [function](const scripted::Call &call) { return call.function == function; }));
}

} // namespace

class PluginObjectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void metadata();
    void entryPoints();
    void casts_data();
    void casts();
    void metaObject();
    void getters();
    void versionIsTheHosts();
    void initDocksOneWindow();
    void everyInitMakesAWindow();
    void settingsBeforeInit();
    void settingsGoIntoTheGroup();
    void settingsWithinTheHostsGroup();
    void settingsAreReadFromTheGroup();
    void windowDestroyedByTheHost();
    void objectDestroyedBeforeTheWindow();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QSettings> m_settings; ///< of the host
};

void PluginObjectTest::initTestCase()
{
    QVERIFY2(QFile::exists(VELMORA_PLUGIN_FILE), VELMORA_PLUGIN_FILE);
    QCOMPARE(QFileInfo(VELMORA_PLUGIN_FILE).fileName(), "libmrdDataThroughputGraph.so");
}

void PluginObjectTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<QSettings>(m_folder->filePath("host.ini"), QSettings::IniFormat);
}

void PluginObjectTest::metadata()
{
    const QJsonObject data = QPluginLoader(VELMORA_PLUGIN_FILE).metaData();
    QCOMPARE(data["IID"].toString(), "com.korvant.Velmora.CxDataThroughputGraphPlugin");
    QCOMPARE(data["className"].toString(), "CxDataThroughputGraphPlugin");
    QCOMPARE(data["version"].toInt() & ~0xff, QT_VERSION & ~0xff); // the patch level counts as 0
#ifdef QT_NO_DEBUG
    QCOMPARE(data["debug"].toBool(), false);
#endif
    QVERIFY(data["MetaData"].toObject().isEmpty());
}

void PluginObjectTest::entryPoints()
{
    QLibrary library(VELMORA_PLUGIN_FILE);
    using Instance = QObject *(*)();
    const auto instance = reinterpret_cast<Instance>(library.resolve("qt_plugin_instance"));
    QVERIFY2(instance, qPrintable(library.errorString()));
    QVERIFY(library.resolve("qt_plugin_query_metadata"));

    const QPointer<QObject> first = instance();
    QVERIFY(first);
    QVERIFY(!first->parent());
    QCOMPARE(instance(), first.data());
    QCOMPARE(QPluginLoader(VELMORA_PLUGIN_FILE).instance(), first.data());
    delete first.data();
    const QPointer<QObject> second = instance();
    QVERIFY(second);
    QVERIFY(qobject_cast<CxPlugin *>(second));
    QCOMPARE(instance(), second.data());
    delete second.data();
}

void PluginObjectTest::casts_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("answer");
    QTest::newRow("its class") << QByteArray("CxDataThroughputGraphPlugin") << "object";
    QTest::newRow("base class") << QByteArray("QObject") << "object";
    QTest::newRow("interface by class") << QByteArray("CxPlugin") << "interface";
    QTest::newRow("interface by identifier") << QByteArray("com.korvant.CxPlugin") << "interface";
    QTest::newRow("plug-in identifier")
        << QByteArray("com.korvant.Velmora.CxDataThroughputGraphPlugin") << "none";
    QTest::newRow("another class") << QByteArray("QWidget") << "none";
    QTest::newRow("empty") << QByteArray("") << "none";
    QTest::newRow("null") << QByteArray() << "none";
}

void PluginObjectTest::casts()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, answer);
    const PluginRig rig;
    void *expected = nullptr;
    if (answer == "object")
        expected = rig.object();
    if (answer == "interface")
        expected = rig.plugin();
    QCOMPARE(rig.object()->qt_metacast(name.isNull() ? nullptr : name.constData()), expected);
    // The QObject part comes first, the interface behind it.
    QVERIFY(static_cast<void *>(rig.plugin()) != static_cast<void *>(rig.object()));
}

void PluginObjectTest::metaObject()
{
    const PluginRig rig;
    const QMetaObject *meta = rig.object()->metaObject();
    QCOMPARE(meta->className(), "CxDataThroughputGraphPlugin");
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta->methodCount(), meta->methodOffset());
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
}

void PluginObjectTest::getters()
{
    const PluginRig rig;
    QCOMPARE(rig.plugin()->name(), "Data Throughput Graph Tool");
    QCOMPARE(rig.plugin()->author(), "Korvant");
    QCOMPARE(rig.plugin()->description(),
             "Measures the available bandwidth during time and shows results in graph.");
    QCOMPARE(rig.plugin()->website(), "https://korvant.example");
    QVERIFY(rig.plugin()->copyrightNotice().isEmpty()); // the host's default
    QVERIFY(Host::instance().calls().empty());
}

void PluginObjectTest::versionIsTheHosts()
{
    const PluginRig rig;
    QCOMPARE(rig.plugin()->version(), "9.8.7");
    Host::instance().setVersion(12, 0, 345);
    int major = -1;
    int minor = -1;
    int build = -1;
    rig.plugin()->version(major, minor, build);
    QCOMPARE(major, 12);
    QCOMPARE(minor, 0);
    QCOMPARE(build, 345);
}

void PluginObjectTest::initDocksOneWindow()
{
    PluginRig rig;
    QVERIFY(Gui::instance().dockedWidgets().isEmpty());
    QVERIFY(rig.plugin()->init());
    const QList<scripted::DockedWidget> docked = Gui::instance().dockedWidgets();
    QCOMPARE(docked.size(), 1);
    QCOMPARE(docked[0].widget->metaObject()->className(), "CxDataGraphForm");
    QVERIFY(!docked[0].widget->parent());
    QCOMPARE(int(docked[0].area), 8);
    QCOMPARE(int(docked[0].allowedAreas), 12);
    QCOMPARE(docked[0].flags, 0);
    QCOMPARE(callsOf(Function::AddPluginWidget), 1);
    QCOMPARE(Host::instance().calls().back().function, Function::AddPluginWidget);
    Gui::instance().reset();
}

/// The host asks once; nothing keeps it from asking again.
void PluginObjectTest::everyInitMakesAWindow()
{
    const PluginRig rig;
    QVERIFY(rig.plugin()->init());
    QVERIFY(rig.plugin()->init());
    const QList<scripted::DockedWidget> docked = Gui::instance().dockedWidgets();
    QCOMPARE(docked.size(), 2);
    QVERIFY(docked[0].widget && docked[1].widget);
    QVERIFY(docked[0].widget != docked[1].widget);
    Gui::instance().reset();
}

void PluginObjectTest::settingsBeforeInit()
{
    const PluginRig rig;
    m_settings->setValue(group + "/DTGTSamplePeriod", 4096);
    const QStringList keys = m_settings->allKeys();
    rig.plugin()->loadSettings(m_settings.get());
    QCOMPARE(m_settings->group(), QString());
    rig.plugin()->saveSettings(m_settings.get());
    QCOMPARE(m_settings->group(), QString());
    QCOMPARE(m_settings->allKeys(), keys);
    QCOMPARE(m_settings->value(keys[0]).toInt(), 4096);
    QVERIFY(Host::instance().calls().empty());
}

void PluginObjectTest::settingsGoIntoTheGroup()
{
    PluginRig rig;
    rig.createForm();
    rig.plugin()->saveSettings(m_settings.get());
    QCOMPARE(m_settings->group(), QString());
    QVERIFY(m_settings->childKeys().isEmpty());
    QCOMPARE(m_settings->childGroups(), QStringList(group));
    for (const QString &key : m_settings->allKeys())
        QVERIFY2(key.startsWith(group + "/DTGT"), qPrintable(key));
}

void PluginObjectTest::settingsWithinTheHostsGroup()
{
    PluginRig rig;
    rig.createForm();
    m_settings->beginGroup("Plugins");
    m_settings->setValue(group + "/DTGTSamplePeriod", 51200);
    rig.plugin()->loadSettings(m_settings.get());
    QCOMPARE(m_settings->group(), "Plugins");
    m_settings->remove(group);
    rig.plugin()->saveSettings(m_settings.get());
    QCOMPARE(m_settings->group(), "Plugins");
    m_settings->endGroup();
    QCOMPARE(m_settings->value("Plugins/" + group + "/DTGTSamplePeriod").toInt(), 51200);
    QCOMPARE(m_settings->childGroups(), QStringList("Plugins"));
}

void PluginObjectTest::settingsAreReadFromTheGroup()
{
    PluginRig rig;
    rig.createForm();
    m_settings->setValue("DTGTSamplePeriod", 1);
    m_settings->setValue("Other/DTGTSamplePeriod", 2);
    m_settings->setValue(group + "/DTGTSamplePeriod", 8192);
    rig.plugin()->loadSettings(m_settings.get());
    QCOMPARE(rig.savedSettings()["DTGTSamplePeriod"].toInt(), 8192);
}

void PluginObjectTest::windowDestroyedByTheHost()
{
    PluginRig rig;
    rig.createForm();
    rig.destroyForm();
    Host::instance().clearCalls();
    m_settings->setValue(group + "/DTGTLiveGraph", 1);
    rig.plugin()->loadSettings(m_settings.get());
    rig.plugin()->saveSettings(m_settings.get());
    QCOMPARE(m_settings->group(), QString());
    QCOMPARE(m_settings->allKeys(), QStringList(group + "/DTGTLiveGraph"));
    QVERIFY(Host::instance().calls().empty());
    // The host's signals no longer find a window.
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    Host::instance().closeCamera(camera);
    QVERIFY(!rig.plugin()->name().isEmpty());
    rig.plugin()->finish();
}

void PluginObjectTest::objectDestroyedBeforeTheWindow()
{
    PluginRig rig;
    const QPointer<QWidget> form = rig.createForm();
    delete rig.object();
    QVERIFY(form);
    rig::openCamera("Model", "1");
    QCOMPARE(rig.table()->rowCount(), 1);
    rig.destroyForm();
    QVERIFY(!form);
}

QTEST_MAIN(PluginObjectTest)
#include "PluginObjectTest.moc"
