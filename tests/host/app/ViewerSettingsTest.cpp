#include "host/app/ViewerSettings.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using host::ViewerSettings;

class ViewerSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void defaults();
    void roundTrip();
    void defaultFileIsTheProgramsOwn();
    void damagedFileIsKept_data();
    void damagedFileIsKept();
    void goodPartOfDamagedFileIsUsed();
    void olderCopiesStay();
    void filesThatAreLeftAlone_data();
    void filesThatAreLeftAlone();
    void folderIsMade();
    void unwritable();
    void wrongValues_data();
    void wrongValues();
    void savePathFallsBack();
    void overriddenLevelIsNotStored();
    void switchingPlugins();

private:
    QString path(const char *name) const { return m_folder->filePath(name); }
    QByteArray content(const char *name) const;
    void write(const char *name, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void ViewerSettingsTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName("Korvant");
    QCoreApplication::setApplicationName("velmora");
}

void ViewerSettingsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QByteArray ViewerSettingsTest::content(const char *name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not readable)");
}

void ViewerSettingsTest::write(const char *name, const QByteArray &bytes) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64{bytes.size()});
}

void ViewerSettingsTest::defaults()
{
    ViewerSettings settings(path("s.ini"));
    QCOMPARE(settings.problem(), QString());
    QVERIFY(settings.windowGeometry().isEmpty());
    QVERIFY(settings.windowState().isEmpty());
    QVERIFY(settings.openCameras().isEmpty());
    QCOMPARE(settings.interfaceLevel(), 3);
    QVERIFY(settings.theme().isEmpty());
    QVERIFY(settings.disabledPlugins().isEmpty());
    QVERIFY(QDir(settings.savePath()).exists());
    QVERIFY(!QFile::exists(path("s.ini"))); // asking writes nothing
}

void ViewerSettingsTest::roundTrip()
{
    const QByteArray geometry("\0\1\xff geometry", 12);
    const QByteArray state("\n]=[;state");
    const QStringList cameras{"a:1", "camera, with comma", QString::fromUtf8("Büro;=")};
    {
        ViewerSettings settings(path("s.ini"));
        settings.setWindowLayout(geometry, state);
        settings.setOpenCameras(cameras);
        settings.setSavePath(m_folder->path());
        settings.setInterfaceLevel(1);
        settings.setTheme("Dark");
        settings.setPluginEnabled("one.so", false);
        settings.store()->setValue("SomePlugin/key", 42);
        QCOMPARE(settings.save(), QString());
    }
    ViewerSettings settings(path("s.ini"));
    QCOMPARE(settings.problem(), QString());
    QCOMPARE(settings.windowGeometry(), geometry);
    QCOMPARE(settings.windowState(), state);
    QCOMPARE(settings.openCameras(), cameras);
    QCOMPARE(settings.savePath(), m_folder->path());
    QCOMPARE(settings.interfaceLevel(), 1);
    QCOMPARE(settings.theme(), QString("Dark"));
    QCOMPARE(settings.disabledPlugins(), QStringList{"one.so"});
    QCOMPARE(settings.store()->value("SomePlugin/key").toInt(), 42);
}

void ViewerSettingsTest::defaultFileIsTheProgramsOwn()
{
    const QString file = ViewerSettings::defaultFile();
    QVERIFY2(file.endsWith("/Korvant/velmora/velmora.ini"), qPrintable(file));
    QCOMPARE(ViewerSettings(QString()).fileName(), file);
}

void ViewerSettingsTest::damagedFileIsKept_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("text") << QByteArray("these are no settings\nat all\n");
    QTest::newRow("open section") << QByteArray("[MainWindow\nTheme=Dark\n");
    QTest::newRow("line in a section") << QByteArray("[MainWindow]\nTheme=Dark\nnonsense\n");
    QByteArray noise;
    for (quint32 i = 1, x = 7; i < 20000; ++i, x = x * 1664525U + 1013904223U)
        noise.append(static_cast<char>(x >> 24));
    QTest::newRow("noise") << noise;
}

void ViewerSettingsTest::damagedFileIsKept()
{
    QFETCH(QByteArray, bytes);
    write("s.ini", bytes);
    {
        ViewerSettings settings(path("s.ini"));
        QVERIFY2(settings.problem().contains(path("s.ini.bak")), qPrintable(settings.problem()));
        QCOMPARE(content("s.ini.bak"), bytes);
        settings.setInterfaceLevel(2);
        QCOMPARE(settings.save(), QString());
    }
    QCOMPARE(content("s.ini.bak"), bytes);
    ViewerSettings settings(path("s.ini"));
    QCOMPARE(settings.problem(), QString());
    QCOMPARE(settings.interfaceLevel(), 2);
}

void ViewerSettingsTest::goodPartOfDamagedFileIsUsed()
{
    write("s.ini", "[MainWindow]\nTheme=Dark\nnonsense\nInterfaceLevel=2\n");
    ViewerSettings settings(path("s.ini"));
    QCOMPARE(settings.theme(), QString("Dark"));
    QCOMPARE(settings.interfaceLevel(), 2);
}

void ViewerSettingsTest::olderCopiesStay()
{
    write("s.ini", "second mess\n");
    write("s.ini.bak", "first mess\n");
    const ViewerSettings settings(path("s.ini"));
    QVERIFY2(settings.problem().contains(path("s.ini.bak2")), qPrintable(settings.problem()));
    QCOMPARE(content("s.ini.bak"), QByteArray("first mess\n"));
    QCOMPARE(content("s.ini.bak2"), QByteArray("second mess\n"));
}

void ViewerSettingsTest::filesThatAreLeftAlone_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("folder") << "folder";
    QTest::newRow("pipe") << "pipe";
    QTest::newRow("device") << "device";
    QTest::newRow("huge") << "huge";
}

void ViewerSettingsTest::filesThatAreLeftAlone()
{
    QFETCH(QString, kind);
    QString file = path("s.ini");
    if (kind == "folder")
        QVERIFY(QDir(m_folder->path()).mkdir("s.ini"));
    else if (kind == "pipe")
        QCOMPARE(::mkfifo(QFile::encodeName(file).constData(), 0600), 0);
    else if (kind == "device")
        file = "/dev/zero";
    else
        QVERIFY(QFile(file).open(QIODevice::WriteOnly) && QFile::resize(file, 100'000'000));

    ViewerSettings settings(file);
    QVERIFY2(settings.problem().contains(file), qPrintable(settings.problem()));
    QVERIFY2(settings.problem().contains("not kept"), qPrintable(settings.problem()));
    settings.setInterfaceLevel(1); // works for this run
    settings.save();
    QCOMPARE(settings.interfaceLevel(), 1);
    QVERIFY(QFileInfo(file).isFile() == (kind == "huge"));
    QVERIFY(kind != "huge" || QFileInfo(file).size() == 100'000'000);
}

void ViewerSettingsTest::folderIsMade()
{
    ViewerSettings settings(path("new/folder/s.ini"));
    QCOMPARE(settings.problem(), QString());
    settings.setTheme("Light");
    QCOMPARE(settings.save(), QString());
    QVERIFY(QFile::exists(path("new/folder/s.ini")));
}

void ViewerSettingsTest::unwritable()
{
    write("file", "x");
    // Below a file there can be no folder, whoever asks.
    ViewerSettings settings(path("file/s.ini"));
    QVERIFY2(settings.problem().contains("cannot be written"), qPrintable(settings.problem()));
    settings.setTheme("Dark");
    QVERIFY2(settings.save().contains(path("file/s.ini")), qPrintable(settings.save()));
    QCOMPARE(settings.theme(), QString("Dark"));
}

void ViewerSettingsTest::wrongValues_data()
{
    QTest::addColumn<QByteArray>("value");
    for (const char *value :
         {"0", "4", "-1", "99999999999999", "expert", "@Invalid()", "@ByteArray(x)", "a, b"})
        QTest::newRow(value) << QByteArray(value);
}

void ViewerSettingsTest::wrongValues()
{
    QFETCH(QByteArray, value);
    write("s.ini", "[MainWindow]\nInterfaceLevel=" + value + "\nGeometry=" + value +
                       "\n[Paths]\nSave=" + value + "\n[Cameras]\nOpen=" + value + "\n");
    ViewerSettings settings(path("s.ini"));
    QCOMPARE(settings.interfaceLevel(), 3);
    QVERIFY(QDir(settings.savePath()).exists());
    settings.windowGeometry();
    settings.openCameras();
}

void ViewerSettingsTest::savePathFallsBack()
{
    ViewerSettings settings(path("s.ini"));
    const QString fallback = settings.savePath();
    QVERIFY(QDir::isAbsolutePath(fallback));
    settings.setSavePath(m_folder->path());
    QCOMPARE(settings.savePath(), m_folder->path());
    for (const QString &gone : {path("gone"), QString("."), QString()}) {
        settings.setSavePath(gone);
        QCOMPARE(settings.savePath(), fallback);
    }
    write("file", "x");
    settings.setSavePath(path("file"));
    QCOMPARE(settings.savePath(), fallback);
}

void ViewerSettingsTest::overriddenLevelIsNotStored()
{
    ViewerSettings settings(path("s.ini"));
    settings.setInterfaceLevel(2);
    settings.overrideInterfaceLevel(1);
    QCOMPARE(settings.interfaceLevel(), 1);
    QCOMPARE(settings.save(), QString());
    QCOMPARE(ViewerSettings(path("s.ini")).interfaceLevel(), 2);
    settings.setInterfaceLevel(3); // the user's choice
    QCOMPARE(settings.interfaceLevel(), 3);
}

void ViewerSettingsTest::switchingPlugins()
{
    ViewerSettings settings(path("s.ini"));
    settings.setPluginEnabled("a.so", false);
    settings.setPluginEnabled("b.so", false);
    settings.setPluginEnabled("a.so", false);
    QCOMPARE(settings.disabledPlugins(), QStringList({"b.so", "a.so"}));
    settings.setPluginEnabled("b.so", true);
    QCOMPARE(settings.disabledPlugins(), QStringList{"a.so"});
}

QTEST_GUILESS_MAIN(ViewerSettingsTest)
#include "ViewerSettingsTest.moc"
