#include "ui/PolygonCoverage.h"

#include <QPainter>
#include <QTest>

#include <random>

Q_DECLARE_METATYPE(QPolygonF)

namespace {

constexpr QSize size(200, 60);

QImage canvas(const QColor &background = Qt::transparent)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(background);
    return image;
}

/// What the painter makes of it, left and top of the view cut off.
QImage painted(const QPolygonF &polygon, const QRect &view, const QColor &colour, const QColor &background)
{
    QImage image = canvas(background);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.setClipRect(view);
    painter.drawPolygon(polygon);
    return image;
}

QImage covered(const QPolygonF &polygon, const QRect &view, const QColor &colour, const QColor &background)
{
    QImage image = canvas(background);
    QPainter(&image).drawImage(view.topLeft(), polygoncoverage::paint(polygon, view, colour));
    return image;
}

QPolygonF randomPolygon(std::mt19937 &random, int corners, const QRectF &range)
{
    std::uniform_real_distribution<double> x(range.left(), range.right());
    std::uniform_real_distribution<double> y(range.top(), range.bottom());
    QPolygonF polygon;
    for (int i = 0; i < corners; ++i)
        polygon.append({x(random), y(random)});
    return polygon;
}

/// The area under a curve, its base at the bottom.
QPolygonF randomArea(std::mt19937 &random, int points, double left, double right)
{
    std::uniform_real_distribution<double> y(-20.0, 80.0);
    QPolygonF polygon;
    polygon.append({left, 50.3});
    for (int i = 0; i < points; ++i)
        polygon.append({left + (right - left) * i / (points - 1), y(random)});
    polygon.append({right, 50.3});
    return polygon;
}

} // namespace

/// Held against the painter, pixel by pixel. Rectangles whose first edge is level
/// are no polygons to the painter: it rounds their sides otherwise.
class PolygonCoverageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void samePixels_data();
    void samePixels();
    void sameColours_data();
    void sameColours();
    void randomPolygons();
    void viewsOfOnePolygon_data();
    void viewsOfOnePolygon();
    void nothingToFill_data();
    void nothingToFill();
};

void PolygonCoverageTest::samePixels_data()
{
    std::mt19937 random(11);
    QTest::addColumn<QPolygonF>("polygon");
    QTest::newRow("pixels as a whole") << QPolygonF(QRectF(10, 5, 60, 20));
    QTest::newRow("parts of pixels") << QPolygonF({{10.3, 26.3}, {10.3, 5.7}, {70.4, 5.7}, {70.4, 26.3}});
    QTest::newRow("within a pixel") << QPolygonF({{10.2, 7.1}, {10.9, 7.4}, {10.5, 7.8}});
    QTest::newRow("within a column") << QPolygonF({{10.2, 7.1}, {10.9, 41.4}, {10.5, 57.8}});
    QTest::newRow("within a row") << QPolygonF({{10.2, 7.1}, {160.9, 7.4}, {70.5, 7.8}});
    QTest::newRow("the other way round") << QPolygonF({{10.5, 57.8}, {10.9, 41.4}, {150.2, 7.1}});
    QTest::newRow("crossing itself") << QPolygonF({{10, 10}, {150, 50}, {150, 10}, {10, 50}});
    QTest::newRow("a hole where it lies on itself")
        << QPolygonF({{10, 5}, {150, 5}, {150, 55}, {30, 55}, {30, 20}, {120, 20}, {120, 40}, {10, 40}});
    QTest::newRow("a diamond over all bands") << QPolygonF({{-5, 30}, {100, -10}, {205, 30}, {100, 70}});
    QTest::newRow("a steep edge") << QPolygonF({{64.02, -30}, {63.97, 90}, {10, 90}});
    QTest::newRow("a flat edge") << QPolygonF({{-300, 29.9}, {400, 30.2}, {400, 70}, {-300, 70}});
    QTest::newRow("closed already") << QPolygonF({{10, 10}, {90, 20}, {60, 50}, {10, 10}});
    QTest::newRow("beyond the device") << QPolygonF({{-4000, -3000}, {4100, -2000}, {90, 5000}});
    QTest::newRow("a jagged area") << randomArea(random, 400, -10, 210);
}

void PolygonCoverageTest::samePixels()
{
    QFETCH(QPolygonF, polygon);
    const QRect view(QPoint(), size);
    const QImage expected = painted(polygon, view, Qt::white, Qt::transparent);
    QVERIFY(expected != canvas());
    QCOMPARE(covered(polygon, view, Qt::white, Qt::transparent), expected);
}

void PolygonCoverageTest::sameColours_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QColor>("background");
    QTest::newRow("the level's, on nothing") << QColor(30, 144, 255, 150) << QColor(Qt::transparent);
    QTest::newRow("the level's, on dark") << QColor(30, 144, 255, 150) << QColor(40, 40, 40);
    QTest::newRow("opaque") << QColor(255, 165, 0) << QColor(40, 40, 40);
    QTest::newRow("nearly nothing") << QColor(250, 3, 77, 1) << QColor(Qt::white);
    QTest::newRow("nearly all") << QColor(250, 3, 77, 254) << QColor(90, 80, 70, 60);
    QTest::newRow("fine steps") << QColor::fromRgbF(0.123, 0.4567, 0.891, 0.333) << QColor(1, 2, 3);
}

void PolygonCoverageTest::sameColours()
{
    QFETCH(QColor, colour);
    QFETCH(QColor, background);
    std::mt19937 random(5);
    const QPolygonF polygon = randomArea(random, 300, 3.3, 190.7);
    const QRect view(QPoint(), size);
    QCOMPARE(covered(polygon, view, colour, background), painted(polygon, view, colour, background));
}

void PolygonCoverageTest::randomPolygons()
{
    std::mt19937 random(20240229);
    const QRect view(QPoint(), size);
    for (int round = 0; round < 300; ++round) {
        const QPolygonF polygon = randomPolygon(random, 3 + round % 12, QRectF(-60, -40, 320, 140));
        QVERIFY2(covered(polygon, view, Qt::white, Qt::transparent) ==
                     painted(polygon, view, Qt::white, Qt::transparent),
                 qPrintable(QString::number(round)));
    }
}

void PolygonCoverageTest::viewsOfOnePolygon_data()
{
    QTest::addColumn<QRect>("view");
    QTest::newRow("all") << QRect(0, 0, 200, 60);
    QTest::newRow("a pixel") << QRect(77, 31, 1, 1);
    QTest::newRow("a column") << QRect(77, 0, 1, 60);
    QTest::newRow("a row") << QRect(0, 31, 200, 1);
    QTest::newRow("one band") << QRect(40, 10, 64, 40);
    QTest::newRow("one column more") << QRect(40, 10, 65, 40);
    QTest::newRow("right end") << QRect(150, 3, 50, 57);
}

void PolygonCoverageTest::viewsOfOnePolygon()
{
    QFETCH(QRect, view);
    std::mt19937 random(3);
    const QPolygonF polygon = randomArea(random, 250, -30.4, 260.9);
    QCOMPARE(polygoncoverage::paint(polygon, view, Qt::white).size(), view.size());
    QCOMPARE(covered(polygon, view, Qt::white, Qt::transparent),
             painted(polygon, view, Qt::white, Qt::transparent));
}

void PolygonCoverageTest::nothingToFill_data()
{
    QTest::addColumn<QPolygonF>("polygon");
    QTest::newRow("no corner") << QPolygonF();
    QTest::newRow("one corner") << QPolygonF(QVector<QPointF>{{20, 20}});
    QTest::newRow("an edge") << QPolygonF(QVector<QPointF>{{20, 20}, {70, 50}});
    QTest::newRow("left of the view") << QPolygonF(QRectF(-50, 5, 40, 20));
    QTest::newRow("right of the view") << QPolygonF(QRectF(250, 5, 40, 20));
    QTest::newRow("above the view") << QPolygonF(QRectF(20, -50, 40, 20));
    QTest::newRow("below the view") << QPolygonF(QRectF(20, 90, 40, 20));
}

void PolygonCoverageTest::nothingToFill()
{
    QFETCH(QPolygonF, polygon);
    QCOMPARE(covered(polygon, QRect(QPoint(), size), Qt::white, Qt::transparent), canvas());
}

QTEST_MAIN(PolygonCoverageTest)
#include "PolygonCoverageTest.moc"
