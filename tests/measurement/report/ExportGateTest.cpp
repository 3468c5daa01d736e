#include "measurement/ExportGate.h"

#include <QCoreApplication>
#include <QTest>

#include <memory>
#include <stdexcept>

class ExportGateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openWithoutAnExport();
    void closedUntilTheWorkIsDone();
    void keepsTheOrder();
    void workOfADeletedContextIsDropped();
    void throwingWorkLosesNothing();
    void exportsDoNotNest();
    void postponedWorkMayExport();
};

void ExportGateTest::openWithoutAnExport()
{
    bool done = false;
    QVERIFY(!CxExportGate::isClosed());
    QVERIFY(!CxExportGate::putOff(this, [&] { done = true; }));
    {
        const CxExportGate::Closer gate;
        QVERIFY(CxExportGate::isClosed());
    }
    QVERIFY(!CxExportGate::isClosed());
    QCoreApplication::processEvents();
    QVERIFY(!done);
}

void ExportGateTest::closedUntilTheWorkIsDone()
{
    bool openInside = false;
    int done = 0;
    {
        const CxExportGate::Closer gate;
        QVERIFY(CxExportGate::putOff(this, [&] {
            ++done;
            openInside = !CxExportGate::isClosed() && !CxExportGate::putOff(this, [] {});
        }));
        QCoreApplication::processEvents();
        QCOMPARE(done, 0);
    }
    // Never within the call that ended the export.
    QCOMPARE(done, 0);
    QVERIFY(CxExportGate::isClosed());
    QCoreApplication::processEvents();
    QCOMPARE(done, 1);
    QVERIFY(openInside);
    QVERIFY(!CxExportGate::isClosed());
    QCoreApplication::processEvents();
    QCOMPARE(done, 1);
}

/// What comes after the export does not overtake what came during it.
void ExportGateTest::keepsTheOrder()
{
    QString order;
    {
        const CxExportGate::Closer gate;
        QVERIFY(CxExportGate::putOff(this, [&] { order += 'a'; }));
        QVERIFY(CxExportGate::putOff(this, [&] { order += 'b'; }));
    }
    QVERIFY(CxExportGate::putOff(this, [&] { order += 'c'; }));
    QCoreApplication::processEvents();
    QCOMPARE(order, QString("abc"));
}

void ExportGateTest::workOfADeletedContextIsDropped()
{
    QString order;
    auto context = std::make_unique<QObject>();
    auto victim = std::make_unique<QObject>();
    {
        const CxExportGate::Closer gate;
        CxExportGate::putOff(context.get(), [&] { order += 'a'; });
        CxExportGate::putOff(this, [&] {
            order += 'b';
            victim.reset();
        });
        CxExportGate::putOff(victim.get(), [&] { order += 'c'; });
        context.reset();
    }
    QCoreApplication::processEvents();
    QCOMPARE(order, QString("b"));
    QVERIFY(!CxExportGate::isClosed());
}

void ExportGateTest::throwingWorkLosesNothing()
{
    QString order;
    {
        const CxExportGate::Closer gate;
        CxExportGate::putOff(this, [&] {
            order += 'a';
            throw std::runtime_error("work");
        });
        CxExportGate::putOff(this, [&] { order += 'b'; });
    }
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(order, QString("ab"));
    QVERIFY(!CxExportGate::isClosed());
}

void ExportGateTest::exportsDoNotNest()
{
    const CxExportGate::Closer first;
    QVERIFY(first.isFirst());
    {
        const CxExportGate::Closer second;
        QVERIFY(!second.isFirst());
    }
    QVERIFY(CxExportGate::isClosed());
}

void ExportGateTest::postponedWorkMayExport()
{
    QString order;
    {
        const CxExportGate::Closer gate;
        CxExportGate::putOff(this, [&] {
            const CxExportGate::Closer another;
            order += another.isFirst() ? 'a' : '!';
            order += CxExportGate::putOff(this, [&] { order += 'c'; }) ? 'b' : '!';
        });
    }
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(order, QString("abc"));
    QVERIFY(!CxExportGate::isClosed());
}

/// As a host that survives what leaves an event handler.
class CatchingApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        try {
            return QCoreApplication::notify(receiver, event);
        } catch (const std::runtime_error &) {
            return false;
        }
    }
};

int main(int argc, char *argv[])
{
    CatchingApplication application(argc, argv);
    ExportGateTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ExportGateTest.moc"
