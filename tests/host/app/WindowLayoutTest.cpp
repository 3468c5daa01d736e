#include "host/app/WindowLayout.h"

#include <QMainWindow>
#include <QScreen>
#include <QtTest>

class WindowLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onScreen_data();
    void onScreen();
    void firstPlaceFitsTheScreen();
    void placeIsRestored();
    void farPlaceIsBroughtBack();
    void damagedPlaceIsIgnored();
};

void WindowLayoutTest::onScreen_data()
{
    QTest::addColumn<QRect>("wanted");
    QTest::addColumn<QRect>("expected");
    // Two screens side by side, the first with a bar of 30 pixels on top.
    QTest::newRow("inside") << QRect(100, 100, 800, 600) << QRect(100, 100, 800, 600);
    QTest::newRow("partly to the left") << QRect(-600, 100, 800, 600) << QRect(-600, 100, 800, 600);
    QTest::newRow("across both") << QRect(1800, 100, 800, 600) << QRect(1800, 100, 800, 600);
    QTest::newRow("on the second") << QRect(2000, 500, 800, 600) << QRect(2000, 500, 800, 600);
    QTest::newRow("far left") << QRect(-5000, 100, 800, 600) << QRect(0, 100, 800, 600);
    QTest::newRow("far right") << QRect(9000, 100, 800, 600) << QRect(3200 - 800, 100, 800, 600);
    QTest::newRow("title under the bar") << QRect(100, -10, 800, 600) << QRect(100, 30, 800, 600);
    QTest::newRow("below") << QRect(100, 2000, 800, 600) << QRect(100, 1080 - 600, 800, 600);
    QTest::newRow("too large") << QRect(100, 100, 100000, 90000) << QRect(1920, 0, 1280, 1024);
    QTest::newRow("grip only") << QRect(1900, 1075, 800, 600) << QRect(1920, 1024 - 600, 800, 600);
}

void WindowLayoutTest::onScreen()
{
    QFETCH(QRect, wanted);
    QFETCH(QRect, expected);
    const QRect first(0, 30, 1920, 1050);
    const QRect second(1920, 0, 1280, 1024);
    QCOMPARE(host::onScreen(wanted, {first, second}), expected);
}

void WindowLayoutTest::firstPlaceFitsTheScreen()
{
    QMainWindow window;
    host::restoreWindowPlace(window, {});
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QVERIFY(screen.contains(window.geometry()));
    // The offscreen platform's screen is smaller than the window's first size.
    QVERIFY(screen.width() <= 1280);
    QVERIFY(window.isMaximized());
}

void WindowLayoutTest::placeIsRestored()
{
    const QRect place(40, 50, 400, 300);
    QMainWindow before;
    before.setGeometry(place);
    QMainWindow window;
    host::restoreWindowPlace(window, before.saveGeometry());
    QCOMPARE(window.geometry(), place);
}

void WindowLayoutTest::farPlaceIsBroughtBack()
{
    QMainWindow before;
    before.setGeometry(-7000, 5000, 400, 300);
    QMainWindow window;
    host::restoreWindowPlace(window, before.saveGeometry());
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(window.geometry()));
    QCOMPARE(window.size(), QSize(400, 300));
}

void WindowLayoutTest::damagedPlaceIsIgnored()
{
    QMainWindow before;
    const QByteArray good = before.saveGeometry();
    for (const QByteArray &damaged : {QByteArray("x"), good.left(good.size() / 2), QByteArray(200, '\xff')}) {
        QMainWindow window;
        host::restoreWindowPlace(window, damaged);
        QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(window.geometry()));
    }
}

QTEST_MAIN(WindowLayoutTest)
#include "WindowLayoutTest.moc"
