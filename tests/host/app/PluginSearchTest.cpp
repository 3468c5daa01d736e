#include "host/app/PluginSearch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using host::findPluginFiles;
using host::PluginSearchPath;

class PluginSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void environmentEntries_data();
    void environmentEntries();
    void readsTheVariable();
    void onlyLibraries();
    void firstFolderWins();
    void linkedFileOnce();
    void brokenLinkIsACandidate();
    void missingFolders();
};

namespace {

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QStringList environmentFolders(const QString &value)
{
    return PluginSearchPath{{}, value, "/program", "/installed"}.folders();
}

} // namespace

void PluginSearchTest::order()
{
    const PluginSearchPath path{{"/given/b", "/given/a"}, "/env/1:/env/2", "/x/bin", "/usr/lib/v/plugins"};
    QCOMPARE(path.folders(), QStringList({"/given/b", "/given/a", "/env/1", "/env/2", "/x/bin/plugins",
                                          "/x/plugins", "/usr/lib/v/plugins"}));
}

void PluginSearchTest::environmentEntries_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QStringList>("ignored");
    QTest::newRow("unset") << "" << QStringList() << QStringList();
    QTest::newRow("empty entries") << ":/a::/b:" << QStringList{"/a", "/b"} << QStringList{"", "", ""};
    QTest::newRow("only a colon") << ":" << QStringList() << QStringList{"", ""};
    QTest::newRow("relative") << ".:plugins:../x:/a" << QStringList{"/a"}
                              << QStringList{".", "plugins", "../x"};
    QTest::newRow("twice") << "/a:/a/" << QStringList{"/a"} << QStringList();
}

void PluginSearchTest::environmentEntries()
{
    QFETCH(QString, value);
    QFETCH(QStringList, taken);
    QFETCH(QStringList, ignored);
    for (const QString &entry : ignored) {
        const QString line =
            QStringLiteral("VELMORA_PLUGIN_PATH: \"%1\" is ignored: not an absolute folder").arg(entry);
        QTest::ignoreMessage(QtWarningMsg, qPrintable(line)); // fails when it does not come
    }
    QCOMPARE(environmentFolders(value), taken + QStringList({"/program/plugins", "/plugins", "/installed"}));
}

void PluginSearchTest::readsTheVariable()
{
    qputenv("VELMORA_PLUGIN_PATH", "/from/variable");
    const PluginSearchPath path = PluginSearchPath::ofThisProgram({"/given"});
    qunsetenv("VELMORA_PLUGIN_PATH");
    QCOMPARE(path.folders().mid(0, 4),
             QStringList({"/given", "/from/variable", QCoreApplication::applicationDirPath() + "/plugins",
                          QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../plugins")}));
    QVERIFY2(path.folders().last().endsWith("/lib/velmora/plugins"), qPrintable(path.folders().last()));
}

void PluginSearchTest::onlyLibraries()
{
    QTemporaryDir folder;
    for (const char *name : {"b.so", "a.so", "c.so.1.2", "readme.txt", "so", "d.sox"})
        touch(folder.filePath(name));
    QVERIFY(QDir(folder.path()).mkdir("folder.so"));
    QCOMPARE(findPluginFiles({folder.path()}),
             QStringList({folder.filePath("a.so"), folder.filePath("b.so"), folder.filePath("c.so.1.2")}));
}

void PluginSearchTest::firstFolderWins()
{
    QTemporaryDir first;
    QTemporaryDir second;
    touch(first.filePath("same.so"));
    touch(second.filePath("same.so"));
    touch(second.filePath("other.so"));
    QCOMPARE(findPluginFiles({first.path(), second.path()}),
             QStringList({first.filePath("same.so"), second.filePath("other.so")}));
    QCOMPARE(findPluginFiles({second.path(), first.path()}),
             QStringList({second.filePath("other.so"), second.filePath("same.so")}));
}

void PluginSearchTest::linkedFileOnce()
{
    QTemporaryDir first;
    QTemporaryDir second;
    touch(second.filePath("real.so"));
    QVERIFY(QFile::link(second.filePath("real.so"), first.filePath("linked.so")));
    QCOMPARE(findPluginFiles({first.path(), second.path()}), QStringList{first.filePath("linked.so")});
    // The folder itself under another name.
    QTemporaryDir third;
    QVERIFY(QFile::link(second.path(), third.filePath("link")));
    QCOMPARE(findPluginFiles({second.path(), third.filePath("link")}),
             QStringList{second.filePath("real.so")});
}

void PluginSearchTest::brokenLinkIsACandidate()
{
    QTemporaryDir folder;
    QVERIFY(QFile::link("/nowhere/x.so", folder.filePath("broken.so")));
    QCOMPARE(findPluginFiles({folder.path()}), QStringList{folder.filePath("broken.so")});
}

void PluginSearchTest::missingFolders()
{
    QTemporaryDir folder;
    touch(folder.filePath("file"));
    QCOMPARE(findPluginFiles({folder.filePath("missing"), folder.filePath("file")}), QStringList());
}

QTEST_GUILESS_MAIN(PluginSearchTest)
#include "PluginSearchTest.moc"
