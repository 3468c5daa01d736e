#include "tests/host/gui/TestDelegate.h"

#include "host/gui/AppDelegateRegistration.h"

#include <QtTest>

#include <cstring>

class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheRegisteredDelegate();
    void endsWithAMessageWithoutOne();
};

void AppDelegateTest::givesTheRegisteredDelegate()
{
    QVERIFY(!host::appDelegate());
    TestDelegate first;
    TestDelegate second;
    host::setAppDelegate(&first);
    QCOMPARE(IxAppDelegate::instance(), static_cast<IxAppDelegate *>(&first));
    QCOMPARE(host::appDelegate(), static_cast<IxAppDelegate *>(&first));
    host::setAppDelegate(&second);
    QCOMPARE(IxAppDelegate::instance(), static_cast<IxAppDelegate *>(&second));
    host::setAppDelegate(nullptr);
    QVERIFY(!host::appDelegate());
}

void AppDelegateTest::endsWithAMessageWithoutOne()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--ask-without-delegate")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QVERIFY(process.readAllStandardError().contains("no delegate is registered"));
}

int main(int argc, char **argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--ask-without-delegate") == 0)
        return IxAppDelegate::instance() ? 0 : 1;
    QCoreApplication application(argc, argv);
    AppDelegateTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "AppDelegateTest.moc"
