#include "host/app/PlotDecoration.h"
#include "host/app/PlotLibrary.h"
#include "host/app/PlotReadout.h"
#include "host/app/Theme.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace host;

namespace {

/// An area as plug-ins make them: time below, values left and right.
QCPAxisRect *addArea(QCustomPlot &plot, int row)
{
    auto *rect = new QCPAxisRect(&plot, true);
    for (const auto type : {QCPAxis::atBottom, QCPAxis::atLeft, QCPAxis::atRight})
        rect->axis(type)->setVisible(true);
    const QSharedPointer<QCPAxisTickerTime> ticker(new QCPAxisTickerTime);
    ticker->setTimeFormat("%m:%s.%z");
    rect->axis(QCPAxis::atBottom)->setTicker(ticker);
    rect->axis(QCPAxis::atBottom)->setRange(-20, 0);
    rect->axis(QCPAxis::atLeft)->setRange(0, 2000);
    rect->axis(QCPAxis::atRight)->setRange(-10, 110);
    rect->setRangeZoomAxes(rect->axis(QCPAxis::atBottom), nullptr);
    plot.plotLayout()->addElement(row, 0, rect);
    return rect;
}

QCPGraph *addGraph(QCPAxisRect *rect, QCPAxis::AxisType side, const QString &name, const QColor &colour)
{
    QCPGraph *graph = rect->parentPlot()->addGraph(rect->axis(QCPAxis::atBottom), rect->axis(side));
    graph->setName(name);
    graph->setPen(QPen(colour));
    return graph;
}

} // namespace

class PlotDecorationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stylesAreasAddedLater();
    void stylesForAnExportedPicture();
    void leavesLaterChangesAlone();
    void writesNumbers_data();
    void writesNumbers();
    void readsTheNearestPoint_data();
    void readsTheNearestPoint();
    void readsWhatHasNoValue();
    void readsEachAreaForItself();
    void readsNothingOutside();
    void showsTheReadoutUnderThePointer();
    void followsNewData();
    void staysInsideThePlot();
    void hidesWhileDragging();
    void hidesWhenThePointerLeaves();
    void leavesTheWheelToThePlot();
    void asksForNoReplot();
    void isInNoExportedPicture();
    void survivesClearingUnderThePointer();
    void diesWithThePlot();
    void mayBeDeletedFirst();

private:
    PlotReadout *readout() const { return m_plot->findChild<PlotReadout *>("plotReadout"); }
    QPoint at(const QCPAxisRect *rect, double key, double value) const
    {
        return {qRound(rect->axis(QCPAxis::atBottom)->coordToPixel(key)),
                qRound(rect->axis(QCPAxis::atLeft)->coordToPixel(value))};
    }
    void moveTo(QPoint position) const { QTest::mouseMove(m_plot->window()->windowHandle(), position); }

    std::unique_ptr<QCustomPlot> m_plot;
    QCPAxisRect *m_rect = nullptr;
    QCPGraph *m_rate = nullptr;
    QCPGraph *m_level = nullptr;
};

void PlotDecorationTest::init()
{
    m_plot = std::make_unique<QCustomPlot>();
    new PlotDecoration(m_plot.get());
    m_plot->resize(640, 400);
    m_plot->plotLayout()->clear();
    m_rect = addArea(*m_plot, 0);
    m_rate = addGraph(m_rect, QCPAxis::atLeft, "Rate", QColor(255, 165, 0));
    m_level = addGraph(m_rect, QCPAxis::atRight, "Level", QColor(30, 144, 255, 150));
    for (const double key : {-18.0, -10.0, -9.0, -2.0}) {
        m_rate->addData(key, 1234.5 - key - 10);
        m_level->addData(key, 50 + key / 4);
    }
    m_plot->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_plot.get()));
    m_plot->replot();
    moveTo({1, 1});
}

void PlotDecorationTest::cleanup()
{
    m_plot.reset();
}

void PlotDecorationTest::stylesAreasAddedLater()
{
    const QColor subtle = m_rect->axis(QCPAxis::atLeft)->grid()->pen().color();
    QCPAxisRect *added = addArea(*m_plot, 1);
    QVERIFY(added->axis(QCPAxis::atLeft)->grid()->pen().color() != subtle);
    m_plot->replot();
    for (const QCPAxis *axis : added->axes()) {
        QCOMPARE(axis->grid()->pen().color(), subtle);
        QCOMPARE(axis->grid()->zeroLinePen().color().lightness() < 128, true);
    }
    m_plot->plotLayout()->clear();
    QCPAxisRect *again = addArea(*m_plot, 0);
    m_plot->replot();
    QCOMPARE(again->axis(QCPAxis::atBottom)->grid()->pen().color(), subtle);

    const QImage picture = m_plot->grab().toImage();
    for (const QPoint &point : {QPoint(2, 2), again->rect().topLeft() + QPoint(3, 3)}) {
        QVERIFY2(Theme::contrast(picture.pixelColor(point), Qt::white) > 12, "white axes must stand out");
        QVERIFY2(Theme::contrast(picture.pixelColor(point), subtle) < 2.0, "the grid must not");
    }
}

void PlotDecorationTest::stylesForAnExportedPicture()
{
    const QColor subtle = m_rect->axis(QCPAxis::atLeft)->grid()->pen().color();
    QCPAxisRect *added = addArea(*m_plot, 1);
    const QImage picture = m_plot->toPixmap(300, 200).toImage();
    QCOMPARE(added->axis(QCPAxis::atLeft)->grid()->pen().color(), subtle);
    QVERIFY(picture.pixelColor(1, 1).lightness() < 50);
}

void PlotDecorationTest::leavesLaterChangesAlone()
{
    QCPGrid *grid = m_rect->axis(QCPAxis::atLeft)->grid();
    grid->setPen(QPen(Qt::red));
    m_plot->replot();
    QCOMPARE(grid->pen().color(), QColor(Qt::red));
}

void PlotDecorationTest::writesNumbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("resolution");
    QTest::addColumn<QString>("text");
    QTest::newRow("a tenth") << 1234.5 << 5.0 << "1\u202f234.5";
    QTest::newRow("rounded") << 1234.56 << 5.0 << "1\u202f234.6";
    QTest::newRow("whole") << 1234.56 << 50.0 << "1\u202f235";
    QTest::newRow("no zeros behind") << 80.0 << 0.01 << "80";
    QTest::newRow("zeros before") << 100.0 << 50.0 << "100";
    QTest::newRow("fine") << 0.12345 << 0.0005 << "0.12345";
    QTest::newRow("millions") << 1234567.0 << 1000.0 << "1\u202f234\u202f567";
    QTest::newRow("three digits") << 999.0 << 10.0 << "999";
    QTest::newRow("negative") << -1234.5 << 5.0 << "\u22121\u202f234.5";
    QTest::newRow("no negative zero") << -0.01 << 5.0 << "0";
    QTest::newRow("huge") << 2.5e20 << 1e18 << "2.5e+20";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1.0 << "inf";
    QTest::newRow("no resolution") << 12.7 << 0.0 << "13";
    QTest::newRow("unknown resolution") << 12.7 << std::nan("") << "13";
}

void PlotDecorationTest::writesNumbers()
{
    QFETCH(double, value);
    QFETCH(double, resolution);
    QTEST(readoutNumber(value, resolution), "text");
}

void PlotDecorationTest::readsTheNearestPoint_data()
{
    QTest::addColumn<double>("key");
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("level");
    QTest::newRow("before the first") << -19.5 << "1\u202f242.5"
                                      << "45.5";
    QTest::newRow("on a point") << -10.0 << "1\u202f234.5"
                                << "47.5";
    QTest::newRow("nearer to the left") << -9.6 << "1\u202f234.5"
                                        << "47.5";
    QTest::newRow("nearer to the right") << -9.4 << "1\u202f233.5"
                                         << "47.75";
    QTest::newRow("behind the last") << -0.5 << "1\u202f226.5"
                                     << "49.5";
}

void PlotDecorationTest::readsTheNearestPoint()
{
    QFETCH(double, key);
    const auto text = readoutAt(*m_plot, at(m_rect, key, 700));
    QVERIFY(text);
    QCOMPARE(text->rows.size(), 2);
    QCOMPARE(text->rows[0].name, QString("Rate"));
    QCOMPARE(text->rows[0].color, QColor(255, 165, 0));
    QCOMPARE(text->rows[1].name, QString("Level"));
    QCOMPARE(text->rows[1].color, QColor(30, 144, 255));
    QTEST(text->rows[0].value, "rate");
    QTEST(text->rows[1].value, "level");
}

void PlotDecorationTest::readsWhatHasNoValue()
{
    const QPoint position = at(m_rect, -10, 700);
    m_rate->setData({-10.0}, {std::nan("")});
    QCOMPARE(readoutAt(*m_plot, position)->rows[0].value, QString("–"));
    m_rate->setData({}, {});
    QCOMPARE(readoutAt(*m_plot, position)->rows[0].value, QString("–"));
    m_rate->setData({-30.0, 5.0}, {1, 2});
    QCOMPARE(readoutAt(*m_plot, position)->rows[0].value, QString("–"));
    m_rate->setVisible(false);
    QCOMPARE(readoutAt(*m_plot, position)->rows.size(), 1);
    m_plot->clearGraphs();
    QCOMPARE(readoutAt(*m_plot, position)->rows.size(), 0);
}

void PlotDecorationTest::readsEachAreaForItself()
{
    QCPAxisRect *second = addArea(*m_plot, 1);
    QCPGraph *fps = addGraph(second, QCPAxis::atRight, "FPS", Qt::green);
    fps->addData(-5, 30);
    second->axis(QCPAxis::atBottom)->setTicker(QSharedPointer<QCPAxisTicker>(new QCPAxisTicker));
    second->axis(QCPAxis::atBottom)->setRange(-8, 0);
    m_plot->replot();

    const QPoint lower = second->rect().center();
    const auto below = readoutAt(*m_plot, lower);
    QVERIFY(below);
    QCOMPARE(below->rows.size(), 1);
    QCOMPARE(below->rows[0].name, QString("FPS"));
    QCOMPARE(below->rows[0].value, QString("30"));
    QVERIFY(qAbs(below->key.toDouble() + 4) < 0.1);

    const auto above = readoutAt(*m_plot, at(m_rect, -10, 700));
    QCOMPARE(above->rows.size(), 2);
    // One pixel is more than 30 ms wide.
    QVERIFY2(QRegularExpression("^-00:(09\\.9|10\\.0)\\d\\d$").match(above->key).hasMatch(),
             qPrintable(above->key));
}

void PlotDecorationTest::readsNothingOutside()
{
    QVERIFY(!readoutAt(*m_plot, QPoint(2, 2)));
    QVERIFY(!readoutAt(*m_plot, m_rect->rect().bottomLeft() + QPoint(5, 10)));
    QVERIFY(!readoutAt(*m_plot, QPoint(-50, 900)));
    m_plot->plotLayout()->clear();
    QVERIFY(!readoutAt(*m_plot, QPoint(300, 200)));
}

void PlotDecorationTest::showsTheReadoutUnderThePointer()
{
    QVERIFY(!readout()->isVisible());
    const QPoint position = at(m_rect, -10, 700);
    const QImage before = m_plot->grab().toImage();
    moveTo(position);
    QTRY_VERIFY(readout()->isVisible());
    QVERIFY((readout()->geometry().topLeft() - position).manhattanLength() < 60);
    QVERIFY(!readout()->geometry().contains(position));
    const QImage picture = m_plot->grab(readout()->geometry()).toImage();
    QVERIFY(picture != before.copy(readout()->geometry()));
    int marked = 0;
    for (int y = 0; y < picture.height(); ++y)
        marked += picture.pixelColor(8, y) == m_rate->pen().color();
    QVERIFY2(marked >= 2, "the graph's colour must mark its row");

    moveTo({2, 2});
    QTRY_VERIFY(!readout()->isVisible());
}

void PlotDecorationTest::followsNewData()
{
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(readout()->isVisible());
    const QImage before = readout()->grab().toImage();
    const QSize size = readout()->size();
    m_plot->clearGraphs();
    addGraph(m_rect, QCPAxis::atLeft, "Rate", Qt::red)->addData(-10, 17);
    m_plot->replot();
    QVERIFY(readout()->isVisible());
    QVERIFY(readout()->height() < size.height());
    QVERIFY(readout()->grab().toImage() != before);
}

void PlotDecorationTest::staysInsideThePlot()
{
    for (const QPoint &corner : {m_rect->rect().topLeft(), m_rect->rect().topRight(),
                                 m_rect->rect().bottomLeft(), m_rect->rect().bottomRight()}) {
        moveTo(corner);
        QTRY_VERIFY(readout()->isVisible());
        QTRY_VERIFY(m_plot->rect().contains(readout()->geometry()));
        QVERIFY(!readout()->geometry().contains(corner));
    }
}

void PlotDecorationTest::hidesWhileDragging()
{
    m_plot->setInteraction(QCP::iRangeDrag);
    const QPoint position = at(m_rect, -10, 700);
    moveTo(position);
    QTRY_VERIFY(readout()->isVisible());
    QCPAxis *axis = m_rect->axis(QCPAxis::atBottom);
    QTest::mousePress(m_plot.get(), Qt::LeftButton, {}, position);
    QVERIFY(!readout()->isVisible());
    QMouseEvent drag(QEvent::MouseMove, position + QPoint(50, 0), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(m_plot.get(), &drag);
    QVERIFY2(axis->range().lower < -20, "the plot itself must have been dragged");
    m_plot->replot();
    QVERIFY(!readout()->isVisible());
    QTest::mouseRelease(m_plot.get(), Qt::LeftButton, {}, position + QPoint(50, 0));
    QVERIFY(readout()->isVisible());
}

void PlotDecorationTest::hidesWhenThePointerLeaves()
{
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(readout()->isVisible());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_plot.get(), &leave);
    QVERIFY(!readout()->isVisible());
    m_plot->replot();
    QVERIFY2(!readout()->isVisible(), "new data must not bring it back");
}

void PlotDecorationTest::leavesTheWheelToThePlot()
{
    m_plot->setInteraction(QCP::iRangeZoom);
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(readout()->isVisible());
    const double before = m_rect->axis(QCPAxis::atBottom)->range().size();
    const QPoint inside = readout()->geometry().center();
    QWheelEvent wheel(inside, m_plot->mapToGlobal(inside), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QVERIFY(m_plot->childAt(inside) == nullptr);
    QApplication::sendEvent(m_plot.get(), &wheel);
    QVERIFY(m_rect->axis(QCPAxis::atBottom)->range().size() < before);
}

void PlotDecorationTest::asksForNoReplot()
{
    QSignalSpy replots(m_plot.get(), &QCustomPlot::beforeReplot);
    for (int x = 0; x < 40; ++x)
        moveTo(m_rect->rect().center() + QPoint(x, 0));
    QTRY_VERIFY(readout()->isVisible());
    QCOMPARE(replots.size(), 0);
}

void PlotDecorationTest::isInNoExportedPicture()
{
    const QImage before = m_plot->toPixmap().toImage();
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(readout()->isVisible());
    QCOMPARE(m_plot->toPixmap().toImage(), before);
}

void PlotDecorationTest::survivesClearingUnderThePointer()
{
    const QPoint position = at(m_rect, -10, 700);
    moveTo(position);
    QTRY_VERIFY(readout()->isVisible());
    m_plot->clearGraphs();
    moveTo(position + QPoint(1, 0));
    readout()->grab();
    m_plot->replot();
    QVERIFY(readout()->isVisible());
    m_plot->plotLayout()->clear();
    readout()->grab();
    moveTo(position);
    QTRY_VERIFY(!readout()->isVisible());
    m_plot->replot();
    addArea(*m_plot, 0);
    m_plot->replot();
    QVERIFY2(readout()->isVisible(), "the pointer has not moved since");
}

void PlotDecorationTest::diesWithThePlot()
{
    const QPointer<PlotDecoration> decoration = m_plot->findChild<PlotDecoration *>();
    const QPointer<PlotReadout> label = readout();
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(label->isVisible());
    m_plot.reset();
    QVERIFY(!decoration);
    QVERIFY(!label);
}

void PlotDecorationTest::mayBeDeletedFirst()
{
    moveTo(at(m_rect, -10, 700));
    QTRY_VERIFY(readout()->isVisible());
    delete m_plot->findChild<PlotDecoration *>();
    QVERIFY(!readout());
    moveTo(at(m_rect, -5, 700));
    addArea(*m_plot, 1);
    m_plot->replot();
}

QTEST_MAIN(PlotDecorationTest)
#include "PlotDecorationTest.moc"
