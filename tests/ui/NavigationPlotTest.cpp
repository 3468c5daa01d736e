#include "tests/ui/MeasuringCameras.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

using rig::MeasuringCameras;

/// How often the plot is drawn while the mouse moves the time axis, and what it
/// shows then.
class NavigationPlotTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void oneReplotPerEvent_data();
    void oneReplotPerEvent();
    void waitingEventsShareAReplot_data();
    void waitingEventsShareAReplot();
    void viewIsThereAtOnce();
    void showsTheLastEvent_data();
    void showsTheLastEvent();
    void releaseDrawsFinely();
    void refusedZoomIsRedrawn();
    void movesWithoutADrag_data();
    void movesWithoutADrag();
    void otherReplotsAreImmediate();
    void replotWithinAnEvent_data();
    void replotWithinAnEvent();
    void labelsFollowTheView();
    void changedStyleIsDrawn_data();
    void changedStyleIsDrawn();

private:
    QCustomPlot *plot() const { return m_cameras->rig.plot(); }
    QPoint place(int pixels = 0) const
    {
        return m_cameras->rig.axisRect((*m_cameras)[1])->rect().center() + QPoint(pixels, 0);
    }
    void send(QEvent::Type type, const QPoint &position, Qt::MouseButtons held) const;
    void press() const { send(QEvent::MouseButtonPress, place(), Qt::LeftButton); }
    void moveTo(int pixels) const { send(QEvent::MouseMove, place(pixels), Qt::LeftButton); }
    void release(int pixels) const { send(QEvent::MouseButtonRelease, place(pixels), Qt::NoButton); }
    void turnWheel(int steps) const;
    /// One of the two ways to change the view; the drag is under way already.
    void change(const QByteArray &means, int event) const
    {
        means == "drag" ? moveTo(10 * event) : turnWheel(event % 2 == 1 ? 1 : -3);
    }
    QImage picture() const { return plot()->grab().toImage(); }
    static void finishEvents();

    std::unique_ptr<MeasuringCameras> m_cameras;
};

void NavigationPlotTest::init()
{
    m_cameras = std::make_unique<MeasuringCameras>(2);
    QVERIFY(m_cameras->measureAndStop(0, 100));
    plot()->setBackground(Qt::darkGray); // axes are white
    m_cameras->showTime(-1.0, 4.0);
    finishEvents();
}

void NavigationPlotTest::cleanup()
{
    m_cameras.reset();
}

void NavigationPlotTest::send(QEvent::Type type, const QPoint &position, Qt::MouseButtons held) const
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, plot()->mapToGlobal(position), button, held, Qt::NoModifier);
    QApplication::sendEvent(plot(), &event);
}

void NavigationPlotTest::turnWheel(int steps) const
{
    const QPoint position = place();
    QWheelEvent event(position, plot()->mapToGlobal(position), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(plot(), &event);
}

void NavigationPlotTest::finishEvents()
{
    for (int turn = 0; turn < 5; ++turn)
        QApplication::processEvents();
}

void NavigationPlotTest::oneReplotPerEvent_data()
{
    QTest::addColumn<QByteArray>("means");
    QTest::addColumn<bool>("measuring");
    QTest::newRow("drag") << QByteArray("drag") << false;
    QTest::newRow("drag while measuring") << QByteArray("drag") << true;
    QTest::newRow("wheel") << QByteArray("wheel") << false;
    QTest::newRow("wheel while measuring") << QByteArray("wheel") << true;
}

void NavigationPlotTest::oneReplotPerEvent()
{
    QFETCH(QByteArray, means);
    QFETCH(bool, measuring);
    m_cameras->liveGraph()->setChecked(false); // ticks draw nothing
    if (measuring)
        QVERIFY(m_cameras->measure(0, 10));
    press();
    finishEvents();
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    for (int event = 1; event <= 4; ++event) {
        change(means, event);
        finishEvents();
        QCOMPARE(replots.size(), event);
    }
}

void NavigationPlotTest::waitingEventsShareAReplot_data()
{
    QTest::addColumn<QByteArray>("means");
    QTest::newRow("drag") << QByteArray("drag");
    QTest::newRow("wheel") << QByteArray("wheel");
}

void NavigationPlotTest::waitingEventsShareAReplot()
{
    QFETCH(QByteArray, means);
    press();
    finishEvents();
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    for (int event = 1; event <= 7; ++event)
        change(means, event);
    QCOMPARE(replots.size(), 0);
    finishEvents();
    QCOMPARE(replots.size(), 1);
}

/// Only the drawing waits: axes and points are those of the event.
void NavigationPlotTest::viewIsThereAtOnce()
{
    m_cameras->showTime(0.0, 60.0);
    const std::size_t coarse = m_cameras->points(0).size();
    while (m_cameras->timeAxis(0)->range().size() > 5.0)
        turnWheel(1);
    QCOMPARE(m_cameras->timeAxis(0)->range(), m_cameras->timeAxis(1)->range());
    QVERIFY(m_cameras->points(0).size() != coarse);
}

void NavigationPlotTest::showsTheLastEvent_data()
{
    waitingEventsShareAReplot_data();
}

void NavigationPlotTest::showsTheLastEvent()
{
    QFETCH(QByteArray, means);
    const QImage before = picture();
    press();
    for (int event = 1; event <= 3; ++event)
        change(means, event);
    finishEvents();
    const QImage shown = picture();
    QVERIFY(shown != before);
    plot()->replot(QCustomPlot::rpImmediateRefresh);
    QCOMPARE(picture(), shown);
}

void NavigationPlotTest::releaseDrawsFinely()
{
    press();
    moveTo(-40);
    finishEvents();
    const QImage coarse = picture();
    release(-40);
    finishEvents();
    const QImage fine = picture();
    QVERIFY(fine != coarse);
    m_cameras->refresh();
    QCOMPARE(picture(), fine);
}

void NavigationPlotTest::refusedZoomIsRedrawn()
{
    m_cameras->showTime(0.0, 1.0);
    finishEvents();
    const QImage before = picture();
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    turnWheel(1);
    finishEvents();
    QCOMPARE(m_cameras->timeAxis(0)->range(), QCPRange(0.0, 1.0));
    QCOMPARE(replots.size(), 1);
    QCOMPARE(picture(), before);
}

void NavigationPlotTest::movesWithoutADrag_data()
{
    QTest::addColumn<Qt::MouseButtons>("held");
    QTest::newRow("no button") << Qt::MouseButtons(Qt::NoButton);
    QTest::newRow("the right button") << Qt::MouseButtons(Qt::RightButton);
}

void NavigationPlotTest::movesWithoutADrag()
{
    QFETCH(Qt::MouseButtons, held);
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    send(QEvent::MouseMove, place(10), held);
    send(QEvent::MouseMove, place(20), held);
    finishEvents();
    QCOMPARE(replots.size(), 0);
    QCOMPARE(m_cameras->timeAxis(0)->range(), QCPRange(-1.0, 4.0));
}

void NavigationPlotTest::otherReplotsAreImmediate()
{
    press();
    moveTo(10);
    turnWheel(1);
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    m_cameras->showTime(0.0, 3.0);
    QCOMPARE(replots.size(), 1);
    m_cameras->refresh();
    QCOMPARE(replots.size(), 2);
}

void NavigationPlotTest::replotWithinAnEvent_data()
{
    QTest::addColumn<QByteArray>("means");
    QTest::newRow("drag") << QByteArray("drag");
    QTest::newRow("press beside the axes") << QByteArray("title");
    QTest::newRow("wheel") << QByteArray("wheel");
}

/// A host that answers to the mouse gets what it asks for, too.
void NavigationPlotTest::replotWithinAnEvent()
{
    QFETCH(QByteArray, means);
    const auto mark = [this] {
        plot()->axisRect(0)->setBackground(Qt::red);
        plot()->replot();
    };
    if (means == "wheel") {
        connect(plot(), &QCustomPlot::mouseWheel, plot(), mark);
        turnWheel(1);
    } else {
        const QPoint start = means == "drag" ? place() : QPoint(2, 2);
        send(QEvent::MouseButtonPress, start, Qt::LeftButton);
        finishEvents();
        connect(plot(), &QCustomPlot::mouseMove, plot(), mark);
        send(QEvent::MouseMove, start + QPoint(3, 3), Qt::LeftButton);
    }
    finishEvents();
    QCOMPARE(picture().pixelColor(plot()->axisRect(0)->rect().topLeft() + QPoint(12, 6)), QColor(Qt::red));
}

/// Labels are kept as pictures between replots: the right ones must be shown.
void NavigationPlotTest::labelsFollowTheView()
{
    const QImage first = picture();
    m_cameras->showTime(-4.0, 9.0);
    finishEvents();
    QVERIFY(picture() != first);
    m_cameras->showTime(-1.0, 4.0);
    finishEvents();
    QCOMPARE(picture(), first);
}

void NavigationPlotTest::changedStyleIsDrawn_data()
{
    QTest::addColumn<QByteArray>("what");
    for (const char *what : {"colour", "font", "background", "size"})
        QTest::newRow(what) << QByteArray(what);
}

void NavigationPlotTest::changedStyleIsDrawn()
{
    QFETCH(QByteArray, what);
    QCPAxis *axis = m_cameras->timeAxis(0);
    const QImage before = picture();
    const QColor colour = axis->tickLabelColor();
    const QFont font = axis->tickLabelFont();
    const QSize size = plot()->size();
    const auto apply = [&](bool changed) {
        if (what == "colour")
            axis->setTickLabelColor(changed ? QColor(Qt::red) : colour);
        else if (what == "font")
            axis->setTickLabelFont(changed ? QFont("sans serif", 14) : font);
        else if (what == "background")
            plot()->setBackground(changed ? Qt::darkBlue : Qt::darkGray);
        else
            plot()->resize(changed ? size * 0.8 : size);
        turnWheel(1);
        finishEvents();
        m_cameras->showTime(-1.0, 4.0);
        finishEvents();
    };
    apply(true);
    QVERIFY(picture() != before);
    apply(false);
    QCOMPARE(picture(), before);
}

QTEST_MAIN(NavigationPlotTest)
#include "NavigationPlotTest.moc"
