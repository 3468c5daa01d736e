#include "host/app/Application.h"

#include <QPushButton>
#include <QtTest>

#include <stdexcept>

class ApplicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exceptionsAreLogged_data();
    void exceptionsAreLogged();
    void otherEventsAreDelivered();
};

void ApplicationTest::exceptionsAreLogged_data()
{
    QTest::addColumn<bool>("standard");
    QTest::addColumn<QString>("reason");
    QTest::newRow("standard exception") << true << "no more bolts";
    QTest::newRow("a number") << false << "of unknown type";
}

void ApplicationTest::exceptionsAreLogged()
{
    QFETCH(bool, standard);
    QFETCH(QString, reason);
    // Posted, because the toolkit leaks a few bytes where an exception passes its
    // handling of the mouse.
    QTimer receiver;
    const auto slot = [standard] {
        if (standard)
            throw std::runtime_error("no more bolts");
        throw 42;
    };
    QMetaObject::invokeMethod(&receiver, slot, Qt::QueuedConnection);
    const QString line = "QTimer threw an exception while it handled an event: " + reason;
    QTest::ignoreMessage(QtCriticalMsg, qPrintable(line));
    QCoreApplication::sendPostedEvents(&receiver);
}

void ApplicationTest::otherEventsAreDelivered()
{
    QPushButton button;
    int clicks = 0;
    connect(&button, &QPushButton::clicked, &button, [&clicks] { ++clicks; });
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicks, 1);
}

int main(int argc, char *argv[])
{
    host::Application application(argc, argv);
    ApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ApplicationTest.moc"
