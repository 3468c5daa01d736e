#include "measurement/Log.h"
#include "tests/measurement/LogCapture.h"

#include <QThread>
#include <QtTest>

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineOfAMessage();
    void lineOfAFailure();
    void percentSignsStayAsTheyAre();
};

void LogTest::lineOfAMessage()
{
    LogCapture log;
    const int line = __LINE__ + 1;
    cxLog(QStringLiteral("two words \"quoted\""));
    QCOMPARE(log.entries().size(), 1);
    const LogEntry entry = log.entries().first();
    QCOMPARE(entry.type, QtCriticalMsg);
    QCOMPARE(entry.category, QByteArray("default"));
    QCOMPARE(entry.line, line);
    QCOMPARE(entry.file, QByteArray(__FILE__));
    QVERIFY2(entry.function.contains("lineOfAMessage"), entry.function.constData());
    const quintptr thread = reinterpret_cast<quintptr>(QThread::currentThreadId());
    QCOMPARE(entry.text, QStringLiteral("0x%1 %2 L %3 :  two words \"quoted\"")
                             .arg(thread, 0, 16)
                             .arg(QStringLiteral(__FILE__))
                             .arg(line));
}

void LogTest::lineOfAFailure()
{
    LogCapture log;
    const int line = __LINE__ + 1;
    cxLogFailure("CxSomething::method", "call(A, B) failed");
    QCOMPARE(log.messages(), QStringList(QStringLiteral("CxSomething::method(): call(A, B) failed")));
    QCOMPARE(log.entries().first().line, line);
    QCOMPARE(log.entries().first().file, QByteArray(__FILE__));
}

void LogTest::percentSignsStayAsTheyAre()
{
    LogCapture log;
    cxLogFailure("CxSomething::method", "at 50 %1 of %2");
    cxLog(QStringLiteral("%1 %s"));
    QCOMPARE(log.messages(),
             QStringList({QStringLiteral("CxSomething::method(): at 50 %1 of %2"), QStringLiteral("%1 %s")}));
}

QTEST_APPLESS_MAIN(LogTest)
#include "LogTest.moc"
