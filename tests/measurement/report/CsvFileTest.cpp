#include "measurement/CsvFile.h"
#include "tests/measurement/report/FileLimit.h"
#include "tests/measurement/report/OtherUser.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>

using measurement::CsvFile;

namespace {

/// Lines of digits, each of them different.
QByteArray writeLines(CsvFile &file, int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const QByteArray line = QByteArray::number(i) + QByteArray(i % 200, 'x') + '\n';
        char *place = file.reserve();
        std::memcpy(place, line.constData(), static_cast<std::size_t>(line.size()));
        file.commit(place + line.size());
        text += line;
    }
    return text;
}

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class CsvFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEveryByte();
    void replacesWhatWasThere();
    void destructionWrites();
    void refusedNames_data();
    void refusedNames();
    void closedDirectory();
    void fullDevice();
    void sizeLimit_data();
    void sizeLimit();
    void removedFile();

private:
    QString path() const { return m_folder.filePath("report.csv"); }

    QTemporaryDir m_folder;
};

void CsvFileTest::keepsEveryByte()
{
    CsvFile file(path());
    QVERIFY(file.open());
    const QByteArray text = writeLines(file, 20000); // several buffers
    QVERIFY(text.size() > 2000000);
    QVERIFY(file.close());
    QVERIFY(!file.hasFailed());
    QCOMPARE(contentOf(path()), text);
}

void CsvFileTest::replacesWhatWasThere()
{
    {
        CsvFile longer(path());
        QVERIFY(longer.open());
        writeLines(longer, 1000);
    }
    CsvFile file(path());
    QVERIFY(file.open());
    const QByteArray text = writeLines(file, 3);
    QVERIFY(file.close());
    QCOMPARE(contentOf(path()), text);
}

void CsvFileTest::destructionWrites()
{
    QByteArray text;
    {
        CsvFile file(path());
        QVERIFY(file.open());
        text = writeLines(file, 5);
    }
    QCOMPARE(contentOf(path()), text);
}

void CsvFileTest::refusedNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing directory") << m_folder.filePath("missing/report.csv");
    QTest::newRow("a directory") << m_folder.path();
    QTest::newRow("empty") << QString();
}

void CsvFileTest::refusedNames()
{
    QFETCH(QString, name);
    CsvFile file(name);
    QVERIFY(!file.open());
    QVERIFY(file.hasFailed());
    QVERIFY(!file.errorText().isEmpty());
    writeLines(file, 5000); // goes nowhere
    QVERIFY(!file.close());
}

void CsvFileTest::closedDirectory()
{
    const QString folder = m_folder.filePath("closed");
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    const OtherUser user;
    CsvFile file(folder + "/report.csv");
    QVERIFY(!file.open());
    QCOMPARE(file.errorText(), QString("Permission denied"));
}

void CsvFileTest::fullDevice()
{
    CsvFile file("/dev/full");
    QVERIFY(file.open());
    writeLines(file, 3);
    QVERIFY(!file.hasFailed()); // nothing sent yet
    QVERIFY(!file.close());
    QCOMPARE(file.errorText(), QString("No space left on device"));
}

void CsvFileTest::sizeLimit_data()
{
    QTest::addColumn<int>("limit"); // bytes
    QTest::newRow("at once") << 0;
    QTest::newRow("in the first piece") << 10000;
    QTest::newRow("later") << 700000;
}

void CsvFileTest::sizeLimit()
{
    QFETCH(int, limit);
    CsvFile file(path());
    QVERIFY(file.open());
    QByteArray text;
    {
        const FileLimit full(limit);
        text = writeLines(file, 10000);
        QVERIFY(file.hasFailed());
        QCOMPARE(file.errorText(), QString("File too large"));
    }
    // There is room again, but not for what has lost its beginning.
    writeLines(file, 10000);
    QVERIFY(!file.close());
    QCOMPARE(contentOf(path()), text.left(limit));
}

void CsvFileTest::removedFile()
{
    CsvFile whileWriting(path());
    QVERIFY(whileWriting.open());
    QVERIFY(QFile::remove(path()));
    writeLines(whileWriting, 10000);
    QVERIFY(whileWriting.hasFailed());
    QCOMPARE(whileWriting.errorText(), QString("The file was removed"));

    CsvFile beforeTheEnd(path());
    QVERIFY(beforeTheEnd.open());
    writeLines(beforeTheEnd, 3);
    QVERIFY(QFile::remove(path()));
    QVERIFY(!beforeTheEnd.close());
    QCOMPARE(beforeTheEnd.errorText(), QString("The file was removed"));
}

QTEST_APPLESS_MAIN(CsvFileTest)
#include "CsvFileTest.moc"
