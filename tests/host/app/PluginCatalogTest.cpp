#include "host/app/PluginCatalog.h"

#include "host/app/CameraControl.h"
#include "host/app/ViewerDelegate.h"
#include "host/app/ViewerSettings.h"
#include "tests/host/app/PluginFiles.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QSettings>
#include <QtTest>

#include <cstring>
#include <elf.h>
#include <link.h>
#include <sys/stat.h>

using host::PluginCatalog;
using host::PluginEntry;
using host::PluginState;

Q_DECLARE_METATYPE(PluginState)

class PluginCatalogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void states_data();
    void states();
    void damagedFiles_data();
    void damagedFiles();
    void otherProcessor_data();
    void otherProcessor();
    void builtWithNewerToolkit();
    void pipeIsNotOpened();
    void describesLoadedPlugin();
    void disabledCodeNeverRuns();
    void disablingNeedsOwnMetadata();
    void goodOneAmongBrokenOnes();
    void settingsAndEnd();
    void forgetfulPluginsDoNotNest();

private:
    /// Loads the one file.
    PluginEntry load(const QString &path, const QStringList &disabled = {});
    QStringList traced() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<host::ViewerSettings> m_settings;
    host::CameraControl m_control;
    std::unique_ptr<host::ViewerDelegate> m_delegate;
    std::unique_ptr<QMainWindow> m_window;
};

namespace {

/// Offset of the metadata's text in a plug-in file.
int metaDataOffset(const QByteArray &library)
{
    const int offset = library.indexOf("QTMETADATA !");
    if (offset < 0)
        qFatal("the fixture has no metadata");
    return offset;
}

/// The loader would map this library and then die reading what is not there.
QByteArray withLongSegment(QByteArray library)
{
    ElfW(Ehdr) header;
    std::memcpy(&header, library.constData(), sizeof header);
    for (int i = 0; i < header.e_phnum; ++i) {
        char *place = library.data() + header.e_phoff + i * sizeof(ElfW(Phdr));
        ElfW(Phdr) segment;
        std::memcpy(&segment, place, sizeof segment);
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W)) {
            segment.p_offset += 0x100000;
            std::memcpy(place, &segment, sizeof segment);
        }
    }
    return library;
}

} // namespace

void PluginCatalogTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("VELMORA_TEST_TRACE", QFile::encodeName(m_folder->filePath("trace")));
    m_settings = std::make_unique<host::ViewerSettings>(m_folder->filePath("settings.ini"));
    m_delegate = std::make_unique<host::ViewerDelegate>(*m_settings, m_control);
    m_window = std::make_unique<QMainWindow>();
    m_delegate->setWindow(m_window.get());
}

void PluginCatalogTest::cleanup()
{
    m_window.reset();
    m_delegate.reset();
    m_settings.reset();
    m_folder.reset();
}

PluginEntry PluginCatalogTest::load(const QString &path, const QStringList &disabled)
{
    // A folder of its own, so that nothing else is found.
    QTemporaryDir alone;
    QFile::link(path, alone.filePath(QFileInfo(path).fileName()));
    PluginCatalog catalog;
    catalog.load({alone.path()}, disabled);
    return catalog.entries().size() == 1 ? catalog.entries().front() : PluginEntry();
}

QStringList PluginCatalogTest::traced() const
{
    QFile file(m_folder->filePath("trace"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

void PluginCatalogTest::states_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<PluginState>("state");
    QTest::addColumn<QString>("reason");
    QTest::newRow("good") << files::fixture("TracingPlugin") << PluginState::Loaded << "";
    QTest::newRow("other program") << files::fixture("ForeignPlugin") << PluginState::Foreign
                                   << "org.example.Other.ForeignPlugin";
    QTest::newRow("no interface") << files::fixture("NoInterfacePlugin") << PluginState::InitFailed
                                  << "CxPlugin";
    QTest::newRow("refuses") << files::fixture("RefusingPlugin") << PluginState::InitFailed
                             << "init() returned false";
    QTest::newRow("throws") << files::fixture("ThrowingPlugin") << PluginState::InitFailed << "no more paper";
    QTest::newRow("root throws") << files::fixture("ThrowingRootPlugin") << PluginState::InitFailed
                                 << "unknown type";
    QTest::newRow("missing symbol") << files::fixture("MissingSymbolPlugin") << PluginState::LoadFailed
                                    << "functionThatNobodyHas";
    QTest::newRow("library, but no plug-in")
        << QString(ZUCORE_FILE) << PluginState::Invalid << "not a Qt plug-in";
}

void PluginCatalogTest::states()
{
    QFETCH(QString, file);
    QFETCH(PluginState, state);
    QFETCH(QString, reason);
    const PluginEntry entry = load(file);
    QCOMPARE(host::pluginStateName(entry.state), host::pluginStateName(state));
    QVERIFY2(entry.reason.contains(reason), qPrintable(entry.reason));
    QCOMPARE(entry.reason.isEmpty(), state == PluginState::Loaded);
    QCOMPARE(entry.plugin != nullptr, state == PluginState::Loaded);
    QVERIFY2(!entry.reason.contains(entry.path), qPrintable(entry.reason));
}

void PluginCatalogTest::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    const QString other = "not a shared library";
    const QString damaged = "the file is damaged: a part of it is missing";
    const QByteArray good = files::contents(files::fixture("TracingPlugin"));
    QTest::newRow("empty") << QByteArray() << other;
    QTest::newRow("text") << QByteArray("#!/bin/sh\nexit 1\n") << other;
    QTest::newRow("magic only") << good.left(4) << damaged;
    QTest::newRow("half a header") << good.left(40) << damaged;
    QTest::newRow("header only") << good.left(sizeof(ElfW(Ehdr))) << damaged;
    QTest::newRow("first page") << good.left(4096) << damaged;
    QTest::newRow("half") << good.left(good.size() / 2) << damaged;
    QTest::newRow("metadata, but no end") << good.left(metaDataOffset(good) + 2048) << damaged;
    QTest::newRow("one byte short") << good.left(good.size() - 1) << damaged;
    QTest::newRow("segment beyond the end") << withLongSegment(good) << damaged;
    QTest::newRow("zeros") << good.left(4) + QByteArray(good.size() - 4, '\0')
                           << "built for another processor";
}

void PluginCatalogTest::damagedFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const PluginEntry entry = load(files::write(m_folder->filePath("damaged.so"), content));
    QVERIFY(entry.state == PluginState::Invalid || entry.state == PluginState::LoadFailed);
    QCOMPARE(entry.reason, reason);
    QVERIFY(traced().isEmpty());
}

void PluginCatalogTest::otherProcessor_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("byte");
    QTest::newRow("word size") << int(EI_CLASS) << (sizeof(void *) == 8 ? ELFCLASS32 : ELFCLASS64);
    QTest::newRow("byte order") << int(EI_DATA) << ELFDATA2MSB;
    QTest::newRow("machine") << int(offsetof(ElfW(Ehdr), e_machine)) << EM_RISCV;
}

void PluginCatalogTest::otherProcessor()
{
    QFETCH(int, offset);
    QFETCH(int, byte);
    QByteArray library = files::contents(files::fixture("TracingPlugin"));
    library[offset] = static_cast<char>(byte);
    const PluginEntry entry = load(files::write(m_folder->filePath("other.so"), library));
    QCOMPARE(host::pluginStateName(entry.state), QString("load failed"));
    QCOMPARE(entry.reason, QString("built for another processor"));
}

void PluginCatalogTest::builtWithNewerToolkit()
{
    QByteArray library = files::contents(files::fixture("TracingPlugin"));
    // Behind the marker: a format byte, then the toolkit's major and minor version.
    library[metaDataOffset(library) + 14] = QT_VERSION_MINOR + 1;
    const PluginEntry entry = load(files::write(m_folder->filePath("newer.so"), library));
    QCOMPARE(host::pluginStateName(entry.state), QString("load failed"));
    QVERIFY2(entry.reason.contains("incompatible Qt library"), qPrintable(entry.reason));
    QVERIFY(traced().isEmpty());
}

void PluginCatalogTest::pipeIsNotOpened()
{
    const QString path = m_folder->filePath("pipe.so");
    QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    PluginCatalog catalog;
    catalog.load({m_folder->path()}, {}); // would wait for a writer
    QCOMPARE(catalog.entries().size(), std::size_t(1));
    QCOMPARE(host::pluginStateName(catalog.entries().front().state), QString("invalid"));
}

void PluginCatalogTest::describesLoadedPlugin()
{
    const PluginEntry entry = load(files::fixture("TracingPlugin"));
    QCOMPARE(entry.name, QString("Tracing plug-in"));
    QCOMPARE(entry.author, QString("Tester"));
    QCOMPARE(entry.description, QString("Writes down what happens to it."));
    QCOMPARE(entry.version, QString("1.2.3"));
    QCOMPARE(entry.website, QString("https://tester.example"));
    QCOMPARE(traced(), QStringList{"init"});
    QVERIFY(m_window->findChild<QDockWidget *>("plugin.tracingWidget"));
}

void PluginCatalogTest::disabledCodeNeverRuns()
{
    const PluginEntry entry = load(files::fixture("TracingPlugin"), {"x.so", "TracingPlugin.so"});
    QCOMPARE(host::pluginStateName(entry.state), QString("disabled"));
    QCOMPARE(entry.name, QString("TracingPlugin")); // its class, from the metadata
    QVERIFY(!entry.plugin);
    QVERIFY(traced().isEmpty());
}

void PluginCatalogTest::disablingNeedsOwnMetadata()
{
    const PluginEntry entry = load(files::fixture("ForeignPlugin"), {"ForeignPlugin.so"});
    QCOMPARE(host::pluginStateName(entry.state), QString("foreign"));
}

void PluginCatalogTest::goodOneAmongBrokenOnes()
{
    PluginCatalog catalog;
    catalog.load({QStringLiteral(PLUGIN_FIXTURES)}, {});
    QMap<QString, int> counts;
    for (const PluginEntry &entry : catalog.entries())
        ++counts[host::pluginStateName(entry.state)];
    QCOMPARE(counts,
             (QMap<QString, int>{{"foreign", 1}, {"init failed", 4}, {"load failed", 1}, {"loaded", 1}}));
    // The refusing one ends the program when it is called any more.
    catalog.loadSettings(*m_settings->store());
    catalog.finish();
}

void PluginCatalogTest::settingsAndEnd()
{
    PluginCatalog catalog;
    catalog.load({QStringLiteral(PLUGIN_FIXTURES)}, {});
    QSettings &store = *m_settings->store();
    store.beginGroup("left over");
    catalog.loadSettings(store);
    QCOMPARE(store.group(), QString()); // although the plug-in did not leave its own
    catalog.saveSettings(store);
    QCOMPARE(store.group(), QString());
    QCOMPARE(store.value("Tracing/runs").toInt(), 1);
    catalog.finish();
    catalog.finish();
    catalog.saveSettings(store);
    QCOMPARE(traced(), QStringList({"init", "loadSettings 0", "saveSettings", "finish"}));
}

void PluginCatalogTest::forgetfulPluginsDoNotNest()
{
    for (const char *name : {"One.so", "Two.so"})
        files::copyInto(*m_folder, "TracingPlugin", name);
    PluginCatalog catalog;
    catalog.load({m_folder->path()}, {});
    catalog.saveSettings(*m_settings->store());
    QCOMPARE(m_settings->store()->allKeys(), QStringList{"Tracing/runs"});
    QCOMPARE(m_settings->store()->value("Tracing/runs").toInt(), 2);
}

QTEST_MAIN(PluginCatalogTest)
#include "PluginCatalogTest.moc"
