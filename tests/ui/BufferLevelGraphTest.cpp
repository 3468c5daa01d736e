#include "ui/BufferLevelGraph.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

using Points = QVector<QPointF>;
Q_DECLARE_METATYPE(Points)

namespace {

constexpr int width = 300;
constexpr int height = 120;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
const QColor background(40, 40, 40);
const QColor levelColour(30, 144, 255, 150);

/// Percent over seconds, the last 20 of them.
Points smooth(int count)
{
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = -20.0 + 20.0 * i / (count - 1);
        points.append({x, 50.0 + 45.0 * std::sin(x)});
    }
    return points;
}

Points jagged(int count, double lowest = 0.0)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> level(lowest, 100.0);
    Points points;
    for (int i = 0; i < count; ++i)
        points.append({-20.0 + 20.0 * i / (count - 1), level(random)});
    return points;
}

Points withGaps(Points points, int period)
{
    for (int i = period; i < points.size(); i += period)
        points[i].setY(notANumber);
    return points;
}

enum Variant { Plain, Aliased, Logarithmic, Reversed, Upright, Steps };

/// A plot with one graph.
template <typename Graph> std::unique_ptr<QCustomPlot> makePlot(const Points &points, Variant variant = Plain)
{
    auto plot = std::make_unique<QCustomPlot>();
    plot->setBackground(background);
    QCPAxis *keys = variant == Upright ? plot->yAxis : plot->xAxis;
    QCPAxis *values = variant == Upright ? plot->xAxis : plot->yAxis2;
    keys->setRange(-20.0, 0.0);
    values->setRange(-10.0, 110.0);
    keys->setRangeReversed(variant == Reversed);
    if (variant == Logarithmic) {
        values->setScaleType(QCPAxis::stLogarithmic);
        values->setRange(0.5, 110.0);
    }
    auto *graph = new Graph(keys, values);
    graph->setPen(QPen(QBrush(levelColour), 1.0));
    graph->setBrush(QBrush(levelColour));
    graph->setAntialiasedFill(variant != Aliased);
    graph->setLineStyle(variant == Steps ? QCPGraph::lsStepLeft : QCPGraph::lsLine);
    for (const QPointF &point : points)
        graph->addData(point.x(), point.y());
    return plot;
}

QImage pictureOf(QCustomPlot &plot, double scale = 1.0)
{
    return plot.toPixmap(width, height, scale).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// Largest difference of a colour channel, 0 to 255.
int largestDifference(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        const uchar *a = one.constScanLine(y);
        const uchar *b = other.constScanLine(y);
        for (int i = 0; i < one.bytesPerLine(); ++i)
            largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    return largest;
}

} // namespace

/// What the graph shows is held against the library's own graph, pixel by
/// pixel. No edge of the curve is cut, so that no pixel has a reason to differ,
/// except where a neighbour outside the view is so far off that the painter cuts
/// the polygon itself: it then rounds other points, and an edge may change by a
/// shade.
class BufferLevelGraphTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void samePicture_data();
    void samePicture();
    void sameZoomedPicture();
    void sameWithTheBaseFarOff();
    void sameFinePicture();
    void fillStaysFineInADrag();
    void plotWithoutAntialiasing();
    void fillsTheAreaOnce();
    void belongsToThePlot();
    void sameBrushes();
    void sameVectorDrawing();
};

void BufferLevelGraphTest::samePicture_data()
{
    QTest::addColumn<Points>("points");
    QTest::addColumn<bool>("hasFill");
    QTest::addColumn<int>("tolerance");
    QTest::newRow("no point") << Points{} << false << 0;
    QTest::newRow("one point") << Points{{-10, 50}} << false << 0;
    QTest::newRow("two points") << Points{{-15, 80}, {-3, 20}} << true << 0;
    QTest::newRow("a flat level") << Points{{-15.3, 40.7}, {-3.1, 40.7}} << true << 0;
    QTest::newRow("two points in one pixel") << Points{{-10, 10}, {-9.999, 90}} << true << 0;
    QTest::newRow("two points beyond both ends") << Points{{-90, 20}, {70, 60}} << true << 0;
    QTest::newRow("far beyond both ends") << Points{{-1e8, 40}, {1e8, 60}} << true << 0;
    QTest::newRow("all left of the view") << Points{{-60, 20}, {-30, 90}} << false << 0;
    QTest::newRow("an upright step") << Points{{-18, 20}, {-10, 20}, {-10, 90}, {-2, 90}} << true << 0;
    QTest::newRow("smooth, few points") << smooth(9) << true << 0;
    QTest::newRow("smooth") << smooth(300) << true << 0;
    QTest::newRow("jagged, few points") << jagged(30) << true << 0;
    QTest::newRow("jagged, a point a pixel") << jagged(300) << true << 0;
    QTest::newRow("jagged, many points a pixel") << jagged(900) << true << 0;
    QTest::newRow("jagged around zero") << jagged(300, -100.0) << true << 0;
    QTest::newRow("jagged, neighbours far beyond both ends")
        << Points{{-1e8, 40}} + jagged(300) + Points{{1e8, 60}} << true << 3;
    QTest::newRow("above and below the view")
        << Points{{-19, -400}, {-12, 900}, {-8, -1e7}, {-1, 1e7}} << true << 0;
    QTest::newRow("gaps") << withGaps(jagged(300), 37) << true << 0;
    QTest::newRow("single points between gaps") << withGaps(jagged(300).mid(1), 2).mid(1) << false << 0;
    QTest::newRow("pairs between gaps") << withGaps(jagged(300), 3) << true << 0;
    QTest::newRow("gaps at both ends")
        << Points{{-20, notANumber}, {-15, 60}, {-10, 20}, {0, notANumber}} << true << 0;
    QTest::newRow("dense, then a long edge, then dense")
        << jagged(900).mid(0, 300) + jagged(900).mid(750) << true << 0;
}

void BufferLevelGraphTest::samePicture()
{
    QFETCH(Points, points);
    QFETCH(bool, hasFill);
    QFETCH(int, tolerance);
    for (const Variant variant : {Plain, Aliased, Logarithmic, Reversed, Upright, Steps}) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            if (scale != 1.0 && variant > Aliased)
                continue;
            const QImage expected = pictureOf(*makePlot<QCPGraph>(points, variant), scale);
            const QImage got = pictureOf(*makePlot<BufferLevelGraph>(points, variant), scale);
            QCOMPARE(got.size(), expected.size());
            const int difference = largestDifference(got, expected);
            QVERIFY2(difference <= tolerance, qPrintable(QStringLiteral("variant %1, scale %2: off by %3")
                                                             .arg(variant)
                                                             .arg(scale)
                                                             .arg(difference)));
        }
    }
    auto plot = makePlot<BufferLevelGraph>(points);
    const QImage filled = pictureOf(*plot);
    plot->graph(0)->setBrush(Qt::NoBrush);
    QCOMPARE(largestDifference(filled, pictureOf(*plot)) > 0, hasFill);
}

void BufferLevelGraphTest::sameZoomedPicture()
{
    const Points points = withGaps(jagged(1500), 250);
    auto expected = makePlot<QCPGraph>(points);
    auto got = makePlot<BufferLevelGraph>(points);
    for (double lower = -19.5, size = 15.0; size > 0.05; lower += 1.1, size *= 0.5) {
        expected->xAxis->setRange(lower, lower + size);
        got->xAxis->setRange(lower, lower + size);
        QVERIFY2(pictureOf(*got) == pictureOf(*expected), qPrintable(QString::number(size)));
    }
}

void BufferLevelGraphTest::sameWithTheBaseFarOff()
{
    Points points = jagged(300);
    for (QPointF &point : points)
        point.ry() += 1e7;
    auto expected = makePlot<QCPGraph>(points);
    auto got = makePlot<BufferLevelGraph>(points);
    for (const double distance : {1e7, 1e6, 1e4, 5e3}) {
        for (QCustomPlot *plot : {expected.get(), got.get()})
            plot->yAxis2->setRange(1e7 - distance, 1e7 + 100.0);
        QVERIFY2(pictureOf(*got) == pictureOf(*expected), qPrintable(QString::number(distance)));
    }
    for (QCustomPlot *plot : {expected.get(), got.get()})
        plot->yAxis2->setRange(1e7 - 10.0, 1e7 + 110.0);
    QVERIFY(pictureOf(*got) == pictureOf(*expected));
}

/// On a screen with several device pixels to a pixel.
void BufferLevelGraphTest::sameFinePicture()
{
    QImage pictures[2];
    const std::unique_ptr<QCustomPlot> plots[] = {makePlot<QCPGraph>(jagged(300)),
                                                  makePlot<BufferLevelGraph>(jagged(300))};
    for (int i = 0; i < 2; ++i) {
        plots[i]->resize(width, height);
        plots[i]->setViewport(QRect(0, 0, width, height));
        plots[i]->setBufferDevicePixelRatio(2.0);
        plots[i]->replot();
        QImage picture(2 * width, 2 * height, QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(2.0);
        plots[i]->render(&picture);
        pictures[i] = picture;
    }
    QVERIFY(pictures[0] == pictures[1]);
}

/// The plot switches all antialiasing off to be fast; this fill would be slower.
void BufferLevelGraphTest::fillStaysFineInADrag()
{
    auto expected = makePlot<QCPGraph>(jagged(300));
    auto got = makePlot<BufferLevelGraph>(jagged(300));
    expected->setNotAntialiasedElements(QCP::aeAll);
    expected->setNotAntialiasedElement(QCP::aeFills, false);
    got->setNoAntialiasingOnDrag(true);
    got->setNotAntialiasedElements(QCP::aeAll);
    QVERIFY(pictureOf(*got) == pictureOf(*expected));
}

void BufferLevelGraphTest::plotWithoutAntialiasing()
{
    auto expected = makePlot<QCPGraph>(jagged(300));
    auto got = makePlot<BufferLevelGraph>(jagged(300));
    const QImage fine = pictureOf(*got);
    for (const QCP::AntialiasedElements elements :
         {QCP::AntialiasedElements(QCP::aeAll), QCP::AntialiasedElements(QCP::aeFills)}) {
        expected->setNotAntialiasedElements(elements);
        got->setNotAntialiasedElements(elements);
        QVERIFY(pictureOf(*got) == pictureOf(*expected));
        QVERIFY(pictureOf(*got) != fine);
    }
}

/// Neither gaps nor overlaps of the strips: a flat level is one colour.
void BufferLevelGraphTest::fillsTheAreaOnce()
{
    Points points;
    for (int i = 0; i <= 2000; ++i)
        points.append({-25.0 + 30.0 * i / 2000, 100.0});
    auto plot = makePlot<BufferLevelGraph>(points);
    plot->graph(0)->setPen(Qt::NoPen);
    plot->xAxis->grid()->setVisible(false);
    plot->yAxis->grid()->setVisible(false);
    const QImage picture = pictureOf(*plot);
    const int y = qRound(plot->yAxis2->coordToPixel(50.0));
    const QRect area = plot->axisRect()->rect();
    const QColor expected((background.red() * 105 + levelColour.red() * 150) / 255,
                          (background.green() * 105 + levelColour.green() * 150) / 255,
                          (background.blue() * 105 + levelColour.blue() * 150) / 255);
    for (int x = area.left() + 2; x <= area.right() - 2; ++x) {
        const QColor colour = picture.pixelColor(x, y);
        QCOMPARE(colour, picture.pixelColor(area.left() + 2, y));
        QVERIFY(std::abs(colour.red() - expected.red()) <= 1 &&
                std::abs(colour.green() - expected.green()) <= 1 &&
                std::abs(colour.blue() - expected.blue()) <= 1);
    }
}

void BufferLevelGraphTest::belongsToThePlot()
{
    auto plot = makePlot<BufferLevelGraph>(smooth(10));
    QCOMPARE(plot->graphCount(), 1);
    QVERIFY(dynamic_cast<BufferLevelGraph *>(plot->graph(0)));
    QCOMPARE(plot->graph(0)->keyAxis(), plot->xAxis);
    QCOMPARE(plot->graph(0)->valueAxis(), plot->yAxis2);
    const QPointer<QCPGraph> graph = plot->graph(0);
    QCOMPARE(plot->clearGraphs(), 1);
    QVERIFY(graph.isNull());
}

void BufferLevelGraphTest::sameBrushes()
{
    auto expected = makePlot<QCPGraph>(jagged(300));
    auto got = makePlot<BufferLevelGraph>(jagged(300));
    for (const QBrush &brush : {QBrush(), QBrush(Qt::transparent), QBrush(Qt::red, Qt::Dense4Pattern),
                                QBrush(QLinearGradient(0, 0, 50, 0))}) {
        expected->graph(0)->setBrush(brush);
        got->graph(0)->setBrush(brush);
        QVERIFY(pictureOf(*got) == pictureOf(*expected));
    }
}

/// Strips would show as seams in a drawing that is scaled later.
void BufferLevelGraphTest::sameVectorDrawing()
{
    QByteArray drawings[2];
    const std::unique_ptr<QCustomPlot> plots[] = {makePlot<QCPGraph>(jagged(300)),
                                                  makePlot<BufferLevelGraph>(jagged(300))};
    for (int i = 0; i < 2; ++i) {
        QPicture picture;
        QCPPainter painter;
        painter.begin(&picture);
        painter.setMode(QCPPainter::pmVectorized);
        plots[i]->toPainter(&painter, width, height);
        painter.end();
        drawings[i] = QByteArray(picture.data(), static_cast<int>(picture.size()));
    }
    QVERIFY(!drawings[0].isEmpty());
    QVERIFY(drawings[0] == drawings[1]);
}

QTEST_MAIN(BufferLevelGraphTest)
#include "BufferLevelGraphTest.moc"
