#include "ui/PlotStyle.h"

#include <QTest>

#include <memory>

namespace {

/// A plot with areas as the window makes them, with white texts on black.
std::unique_ptr<QCustomPlot> makePlot(int areas, const QSize &size)
{
    auto plot = std::make_unique<QCustomPlot>();
    plot->setBackground(Qt::black);
    plot->plotLayout()->clear();
    for (int area = 0; area < areas; ++area) {
        auto *title = new QCPTextElement(plot.get(), "Camera (QgÅ)", plotstyle::titleFont());
        title->setTextColor(Qt::white);
        plot->plotLayout()->addElement(2 * area, 0, title);
        auto *rect = new QCPAxisRect(plot.get());
        for (QCPAxis *axis : rect->axes()) {
            plotstyle::styleAxis(axis);
            axis->setVisible(axis->axisType() != QCPAxis::atTop);
        }
        rect->axis(QCPAxis::atLeft)->setLabel("Avg. rate [MB/s]");
        rect->axis(QCPAxis::atLeft)->setRange(0, area == 0 ? 1 : 1000000);
        rect->axis(QCPAxis::atRight)->setLabel("Buffer filled [%]");
        rect->axis(QCPAxis::atRight)->setRange(-10, 110);
        plotstyle::fitIntoPlot(rect);
        plot->plotLayout()->addElement(2 * area + 1, 0, rect);
    }
    plot->resize(size);
    plot->setViewport(QRect(QPoint(), size));
    plot->replot();
    return plot;
}

int labelWidth(const QCPAxis *axis)
{
    return QFontMetrics(axis->labelFont()).size(Qt::TextSingleLine, axis->label()).width();
}

} // namespace

class PlotStyleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areasAreAligned();
    void backgroundLiesBelowTheGrid();
    void ticksFit_data();
    void ticksFit();
    void ticksFollowTheSize();
    void labelsKeepClear();
    void titleIsWhole();
    void closedAreaIsForgotten();
};

void PlotStyleTest::areasAreAligned()
{
    const auto plot = makePlot(3, {800, 600});
    const QRect first = plot->axisRect(0)->rect();
    for (const QCPAxisRect *rect : plot->axisRects()) {
        QCOMPARE(rect->left(), first.left());
        QCOMPARE(rect->right(), first.right());
    }
}

/// A host may give the areas a background.
void PlotStyleTest::backgroundLiesBelowTheGrid()
{
    const auto plot = makePlot(1, {600, 300});
    const QImage bare = plot->toPixmap(600, 300).toImage();
    plot->axisRect()->setBackground(Qt::black);
    QVERIFY(plot->toPixmap(600, 300).toImage() == bare);
    plot->axisRect()->axis(QCPAxis::atBottom)->grid()->setVisible(false);
    QVERIFY(plot->toPixmap(600, 300).toImage() != bare);
}

void PlotStyleTest::ticksFit_data()
{
    QTest::addColumn<int>("areas");
    QTest::addColumn<QSize>("size");
    QTest::newRow("one area") << 1 << QSize(800, 400);
    QTest::newRow("three areas in a high plot") << 3 << QSize(1600, 900);
    QTest::newRow("three areas in a low plot") << 3 << QSize(514, 250);
    QTest::newRow("four areas") << 4 << QSize(514, 340);
    QTest::newRow("one area, narrow") << 1 << QSize(220, 400);
}

/// No label of a value axis covers its neighbour.
void PlotStyleTest::ticksFit()
{
    QFETCH(int, areas);
    QFETCH(QSize, size);
    const auto plot = makePlot(areas, size);
    for (const QCPAxisRect *rect : plot->axisRects()) {
        const QCPAxis *axis = rect->axis(QCPAxis::atRight);
        const int line = QFontMetrics(axis->tickLabelFont()).ascent();
        const QVector<double> ticks = axis->tickVector();
        for (int i = 1; i < ticks.size(); ++i) {
            if (!axis->range().contains(ticks[i]) || !axis->range().contains(ticks[i - 1]))
                continue;
            const double distance = axis->coordToPixel(ticks[i - 1]) - axis->coordToPixel(ticks[i]);
            QVERIFY2(distance >= line, qPrintable(QString("%1 < %2").arg(distance).arg(line)));
        }
    }
}

void PlotStyleTest::ticksFollowTheSize()
{
    const auto plot = makePlot(2, {800, 600});
    const QCPAxisRect *rect = plot->axisRect();
    QCOMPARE(rect->axis(QCPAxis::atLeft)->ticker()->tickCount(), 5);
    QCOMPARE(rect->axis(QCPAxis::atBottom)->ticker()->tickCount(), 5);
    plot->setViewport(QRect(0, 0, 300, 150));
    plot->replot();
    const int low = rect->axis(QCPAxis::atLeft)->ticker()->tickCount();
    const int narrow = rect->axis(QCPAxis::atBottom)->ticker()->tickCount();
    QVERIFY(low >= 1 && low < 5);
    QVERIFY(narrow >= 1 && narrow < 5);
    plot->setViewport(QRect(0, 0, 1, 1));
    plot->replot();
    QCOMPARE(rect->axis(QCPAxis::atLeft)->ticker()->tickCount(), 1);
    plot->setViewport(QRect(0, 0, 800, 600));
    plot->replot();
    QCOMPARE(rect->axis(QCPAxis::atLeft)->ticker()->tickCount(), 5);
}

void PlotStyleTest::labelsKeepClear()
{
    const auto high = makePlot(3, {800, 600});
    const auto low = makePlot(3, {800, 260});
    const QCPAxis *large = high->axisRect()->axis(QCPAxis::atLeft);
    const QCPAxis *small = low->axisRect()->axis(QCPAxis::atLeft);
    QCOMPARE(large->labelFont().pointSize(), 8);
    QVERIFY(small->labelFont().pointSize() < 8);
    QVERIFY(labelWidth(small) <= 260 / 3);
}

/// Three areas in the least height of the window's plot that shows them.
void PlotStyleTest::titleIsWhole()
{
    const auto plot = makePlot(3, {514, 250});
    const QFontMetrics metrics(plotstyle::titleFont());
    for (int area = 0; area < 3; ++area) {
        const QCPLayoutElement *title = plot->plotLayout()->element(2 * area, 0);
        QVERIFY(title->rect().height() >= metrics.height());
        QVERIFY(title->outerRect().bottom() < plot->axisRect(area)->top());
    }
}

void PlotStyleTest::closedAreaIsForgotten()
{
    const auto plot = makePlot(2, {800, 600});
    plot->plotLayout()->clear();
    plot->replot();
    QCOMPARE(plot->axisRectCount(), 0);
    QCOMPARE(plot->findChildren<QCPMarginGroup *>().size(), 1);
    QVERIFY(plot->findChild<QCPMarginGroup *>()->isEmpty());
}

QTEST_MAIN(PlotStyleTest)
#include "PlotStyleTest.moc"
