#include "host/app/LogStore.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QLoggingCategory>
#include <QThread>
#include <QtTest>

using namespace host;

Q_DECLARE_METATYPE(QtMsgType)

namespace {

int passedOn = 0;
bool logsItself = false;

/// Stands for the handler of before; Qt Test's own would print and count all.
void previous(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++passedOn;
    if (logsItself)
        qWarning("from inside the handler");
}

QtMessageHandler below = nullptr;

void onTop(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    ++passedOn;
    below(type, context, text);
}

QtMessageHandler currentHandler()
{
    const QtMessageHandler current = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(current);
    return current;
}

LogLine lineOf(const QString &text)
{
    LogLine line;
    line.text = text;
    return line;
}

QStringList texts(const LogStore &store)
{
    QStringList list;
    for (int row = 0; row < store.rowCount(); ++row)
        list += store.line(row).text;
    return list;
}

QString cell(const LogStore &store, int row, int column, int role = Qt::DisplayRole)
{
    return store.data(store.index(row, column), role).toString();
}

} // namespace

class LogStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void recordsAMessage_data();
    void recordsAMessage();
    void fillsTheTable();
    void deliversByItself();
    void passesOnAndUninstalls();
    void staysOutOfOthersChains();
    void isInstalledOnce();
    void takesMessagesFromItsOwnListeners();
    void survivesAHandlerThatLogs();
    void dropsTheOldest_data();
    void dropsTheOldest();
    void boundsTheCharacters();
    void cutsALongText();
    void clears();
    void writesForeignTextPlainly_data();
    void writesForeignTextPlainly();
    void doesNotTakeATextForRichText();

private:
    QtMessageHandler m_testHandler = nullptr;
};

void LogStoreTest::init()
{
    passedOn = 0;
    logsItself = false;
    m_testHandler = qInstallMessageHandler(previous);
}

void LogStoreTest::cleanup()
{
    qInstallMessageHandler(m_testHandler);
}

void LogStoreTest::recordsAMessage_data()
{
    QTest::addColumn<QtMsgType>("type");
    QTest::addColumn<QByteArray>("category");
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("shownCategory");
    QTest::addColumn<int>("rank");
    QTest::newRow("debug") << QtDebugMsg << QByteArray("default") << "Debug"
                           << "" << 0;
    QTest::newRow("info") << QtInfoMsg << QByteArray("host.camera") << "Info"
                          << "host.camera" << 1;
    QTest::newRow("warning") << QtWarningMsg << QByteArray() << "Warning"
                             << "" << 2;
    QTest::newRow("critical") << QtCriticalMsg << QByteArray("qt.qpa") << "Critical"
                              << "qt.qpa" << 3;
}

void LogStoreTest::recordsAMessage()
{
    QFETCH(QtMsgType, type);
    QFETCH(QByteArray, category);
    LogStore store;
    QVERIFY(store.install());
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const QMessageLogContext context("file.cpp", 1, "f()",
                                     category.isNull() ? nullptr : category.constData());
    qt_message_output(type, context, "Grüße 100%");
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QCOMPARE(store.rowCount(), 0);
    store.deliver();

    QCOMPARE(store.rowCount(), 1);
    const LogLine &line = store.line(0);
    QVERIFY(line.time >= before && line.time <= after);
    QCOMPARE(line.level, type);
    QCOMPARE(line.thread, reinterpret_cast<quintptr>(QThread::currentThreadId()));
    QCOMPARE(line.text, QString("Grüße 100%"));
    QTEST(cell(store, 0, LogStore::LevelColumn), "level");
    QTEST(cell(store, 0, LogStore::CategoryColumn), "shownCategory");
    QTEST(store.data(store.index(0, 0), LogStore::SeverityRole).toInt(), "rank");
}

void LogStoreTest::fillsTheTable()
{
    LogStore store;
    const QAbstractItemModelTester tester(&store, QAbstractItemModelTester::FailureReportingMode::Fatal);
    LogLine line = lineOf("text");
    line.time = QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9, 12)).toMSecsSinceEpoch();
    line.thread = 0x7f12ab;
    store.enter(line);
    store.deliver();
    QCOMPARE(store.columnCount(), int(LogStore::ColumnCount));
    QCOMPARE(cell(store, 0, LogStore::TimeColumn), QString("07:08:09.012"));
    QCOMPARE(cell(store, 0, LogStore::TimeColumn, Qt::ToolTipRole), QString("2024-03-05T07:08:09.012"));
    QCOMPARE(cell(store, 0, LogStore::ThreadColumn), QString("0x7f12ab"));
    QCOMPARE(cell(store, 0, LogStore::TextColumn), QString("text"));
    QCOMPARE(store.headerData(LogStore::TextColumn, Qt::Horizontal, Qt::DisplayRole).toString(),
             QString("Message"));
    QVERIFY(!store.data(QModelIndex(), Qt::DisplayRole).isValid());
    QCOMPARE(wholeLine(store.line(0)), QString("2024-03-05T07:08:09.012\tDebug\t0x7f12ab\t\ttext"));
}

void LogStoreTest::deliversByItself()
{
    LogStore store;
    store.install();
    qInfo("soon there");
    QTRY_COMPARE(texts(store), QStringList{"soon there"});
}

void LogStoreTest::passesOnAndUninstalls()
{
    {
        LogStore store;
        store.install();
        qInfo("kept and passed on");
        QCOMPARE(passedOn, 1);
        store.uninstall();
        QVERIFY(currentHandler() == previous);
        qInfo("passed on only");
        QCOMPARE(passedOn, 2);
        store.deliver();
        QCOMPARE(texts(store), QStringList{"kept and passed on"});
        store.install();
    }
    QVERIFY2(currentHandler() == previous, "the destructor must uninstall");
}

void LogStoreTest::staysOutOfOthersChains()
{
    LogStore store;
    store.install();
    below = qInstallMessageHandler(onTop);
    store.uninstall();
    QVERIFY2(currentHandler() == onTop, "another's handler must stay");
    qInfo("through the chain");
    QCOMPARE(passedOn, 2);

    // The other handler still calls the store's: above it, the two would call
    // each other without end.
    store.install();
    passedOn = 0;
    qInfo("again in the store");
    QCOMPARE(passedOn, 2);
    store.deliver();
    QCOMPARE(texts(store), QStringList{"again in the store"});

    qInstallMessageHandler(below);
    store.uninstall();
    QVERIFY(currentHandler() == previous);
}

void LogStoreTest::isInstalledOnce()
{
    LogStore first;
    LogStore second;
    QVERIFY(first.install());
    QVERIFY(first.install());
    QVERIFY(!second.install());
    second.uninstall();
    qInfo("for the first");
    first.deliver();
    second.deliver();
    QCOMPARE(first.rowCount(), 1);
    QCOMPARE(second.rowCount(), 0);
}

void LogStoreTest::takesMessagesFromItsOwnListeners()
{
    LogStore store;
    store.install();
    connect(&store, &LogStore::rowsInserted, this, [] { qWarning("said while rows come"); });
    qInfo("first");
    store.deliver();
    QCOMPARE(texts(store), QStringList{"first"});
    store.deliver();
    QCOMPARE(texts(store), (QStringList{"first", "said while rows come"}));
}

void LogStoreTest::survivesAHandlerThatLogs()
{
    LogStore store;
    store.install();
    logsItself = true;
    qInfo("outer");
    QVERIFY(passedOn >= 1);
    store.deliver();
    QCOMPARE(store.line(0).text, QString("outer"));
}

void LogStoreTest::dropsTheOldest_data()
{
    QTest::addColumn<QVector<int>>("batches");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("dropped");
    QTest::newRow("all fit") << QVector<int>{4, 6} << 0 << 0;
    QTest::newRow("while waiting") << QVector<int>{25} << 15 << 15;
    QTest::newRow("in the table") << QVector<int>{8, 5} << 3 << 3;
    QTest::newRow("the whole table") << QVector<int>{8, 10} << 8 << 8;
    QTest::newRow("in both") << QVector<int>{8, 30, 3} << 31 << 31;
}

void LogStoreTest::dropsTheOldest()
{
    QFETCH(QVector<int>, batches);
    QFETCH(int, first);
    LogLimits limits;
    limits.lines = 10;
    LogStore store(nullptr, limits);
    const QAbstractItemModelTester tester(&store, QAbstractItemModelTester::FailureReportingMode::Fatal);
    int next = 0;
    for (const int size : qAsConst(batches)) {
        for (int i = 0; i < size; ++i)
            store.enter(lineOf(QString::number(next++)));
        store.deliver();
    }
    QStringList expected;
    for (int number = first; number < next; ++number)
        expected += QString::number(number);
    QCOMPARE(texts(store), expected);
    QTEST(int(store.dropped()), "dropped");
}

void LogStoreTest::boundsTheCharacters()
{
    LogLimits limits;
    limits.characters = 100;
    LogStore store(nullptr, limits);
    const QString text(30, 'x');
    for (int i = 0; i < 3; ++i)
        store.enter(lineOf(text));
    store.deliver();
    QCOMPARE(store.rowCount(), 3);
    store.enter(lineOf(text));
    store.deliver();
    QCOMPARE(store.rowCount(), 3);
    QCOMPARE(store.dropped(), 1u);
    for (int i = 0; i < 5; ++i)
        store.enter(lineOf(text));
    store.deliver();
    QCOMPARE(store.rowCount(), 3);
    QCOMPARE(store.dropped(), 6u);
}

void LogStoreTest::cutsALongText()
{
    LogLimits limits;
    limits.lineCharacters = 10;
    LogStore store(nullptr, limits);
    store.enter(lineOf("0123456789"));
    store.enter(lineOf("0123456789abc"));
    store.deliver();
    QCOMPARE(texts(store), (QStringList{"0123456789", "0123456789… [3 more characters]"}));
}

void LogStoreTest::clears()
{
    LogLimits limits;
    limits.lines = 2;
    LogStore store(nullptr, limits);
    for (int i = 0; i < 3; ++i)
        store.enter(lineOf("old"));
    store.deliver();
    store.enter(lineOf("waiting"));
    store.clear();
    store.deliver();
    QCOMPARE(store.rowCount(), 0);
    QCOMPARE(store.dropped(), 0u);
    store.enter(lineOf("new"));
    store.deliver();
    QCOMPARE(texts(store), QStringList{"new"});
}

void LogStoreTest::writesForeignTextPlainly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("row");
    QTest::newRow("plain") << "a b"
                           << "a b";
    QTest::newRow("markup") << "<b>a</b> &amp;"
                            << "<b>a</b> &amp;";
    QTest::newRow("lines") << "one\ntwo\r\nthree\n"
                           << "one↵two↵three";
    QTest::newRow("unicode lines") << QString("one") + QChar(QChar::LineSeparator) + "two"
                                   << "one↵two";
    QTest::newRow("tab") << "a\tb"
                         << "a b";
    QTest::newRow("control") << "a\x1b[31mb" << QString("a\ufffd[31mb");
    QTest::newRow("zero") << QString("a") + QChar(0) + "b" << QString("a\ufffdb");
    QTest::newRow("direction") << QString("a\u202eb") << QString("a\ufffdb");
    QTest::newRow("very long") << QString(5000, 'x') << QString(1000, 'x') + "…";
}

void LogStoreTest::writesForeignTextPlainly()
{
    QFETCH(QString, text);
    LogStore store;
    store.enter(lineOf(text));
    store.deliver();
    QTEST(cell(store, 0, LogStore::TextColumn), "row");
    QVERIFY2(wholeLine(store.line(0)).endsWith('\t' + text), "copies have the text as it is");
}

void LogStoreTest::doesNotTakeATextForRichText()
{
    LogStore store;
    store.enter(lineOf("<img src='/etc/passwd'>\n<b>bold</b>"));
    store.deliver();
    const QString toolTip = cell(store, 0, LogStore::TextColumn, Qt::ToolTipRole);
    QVERIFY(toolTip.contains("&lt;img"));
    QVERIFY(!toolTip.contains("<img"));
    QVERIFY(!toolTip.contains("<b>"));
}

QTEST_GUILESS_MAIN(LogStoreTest)
#include "LogStoreTest.moc"
