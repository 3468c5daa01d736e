#include "tests/ui/MeasuringCameras.h"

#include <QApplication>
#include <QImage>
#include <QTest>

#include <cmath>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;

/// Whether the tables' texts in their own colours can be read whatever colours
/// the host's windows have.
class TableColoursTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void counters_data();
    void counters();
    void quantities_data();
    void quantities();
    void otherCellsAreAsUsual_data();
    void otherCellsAreAsUsual();
    void coloursChangeWhileTheWindowIsOpen();

private:
    const QPalette m_palette = QApplication::palette();
};

namespace {

const QColor light(250, 250, 250);
const QColor dark(35, 38, 41);

void useGround(const QColor &ground)
{
    const QColor text = ground == light ? QColor(Qt::black) : QColor(252, 252, 252);
    QPalette palette(ground.darker(105));
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Text, text);
    QApplication::setPalette(palette);
}

QImage cellOf(QTableWidget *table, int row, int column)
{
    const QTableWidgetItem *item = table->item(row, column);
    QCoreApplication::processEvents(); // columns take their new widths
    table->scrollToItem(item);
    return table->viewport()->grab(table->visualItemRect(item)).toImage();
}

/// What lies around the text.
QColor groundOf(const QImage &cell)
{
    return cell.pixelColor(2, 2);
}

/// The pixel that differs most from the ground: the middle of a stroke.
QColor textOf(const QImage &cell)
{
    const QColor ground = groundOf(cell);
    QColor text = ground;
    int distance = 0;
    for (int y = 1; y + 1 < cell.height(); ++y) {
        for (int x = 1; x + 1 < cell.width(); ++x) {
            const QColor pixel = cell.pixelColor(x, y);
            const int difference = qAbs(pixel.red() - ground.red()) + qAbs(pixel.green() - ground.green()) +
                                   qAbs(pixel.blue() - ground.blue());
            if (difference > distance) {
                distance = difference;
                text = pixel;
            }
        }
    }
    return text;
}

/// Relative luminance.
double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// From 1, no difference, to 21.
double contrast(const QImage &cell)
{
    const double a = luminance(groundOf(cell));
    const double b = luminance(textOf(cell));
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

bool isNear(const QColor &colour, const QColor &expected)
{
    constexpr int antialiasing = 40;
    return qAbs(colour.red() - expected.red()) <= antialiasing &&
           qAbs(colour.green() - expected.green()) <= antialiasing &&
           qAbs(colour.blue() - expected.blue()) <= antialiasing;
}

void addGrounds()
{
    QTest::addColumn<QColor>("ground");
    QTest::newRow("light") << light;
    QTest::newRow("dark") << dark;
}

} // namespace

void TableColoursTest::cleanup()
{
    QApplication::setPalette(m_palette);
}

void TableColoursTest::counters_data()
{
    addGrounds();
}

void TableColoursTest::counters()
{
    QFETCH(QColor, ground);
    useGround(ground);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(888888)});
    cameras.host.fail(scripted::Failure::write("counter_selector:settable", 1));
    QVERIFY(cameras.measure(0, 1));
    cameras.tick();
    QTableWidget *table = cameras.rig.table();
    const QImage supported = cellOf(table, 0, 4);
    QVERIFY(isNear(textOf(supported), Qt::white));
    QVERIFY2(contrast(supported) > 7, qPrintable(QString::number(contrast(supported))));
    const QImage unsupported = cellOf(table, 0, 6);
    QVERIFY(isNear(textOf(unsupported), QColor(128, 128, 128)));
    QVERIFY2(contrast(unsupported) > 2.5, qPrintable(QString::number(contrast(unsupported))));
}

void TableColoursTest::quantities_data()
{
    addGrounds();
}

void TableColoursTest::quantities()
{
    QFETCH(QColor, ground);
    useGround(ground);
    MeasuringCameras cameras(1, Mode::Acquisition);
    auto *table = cameras.rig.find<QTableWidget>("tablePlotCheck");
    for (const Mode mode : {Mode::Acquisition, Mode::Throughput}) {
        cameras.setMode(mode);
        for (int row = 0; row < table->rowCount(); ++row) {
            const double found = contrast(cellOf(table, row, 1));
            QVERIFY2(found > 2.5, qPrintable(QString("%1 %2").arg(table->item(row, 1)->text()).arg(found)));
        }
    }
}

void TableColoursTest::otherCellsAreAsUsual_data()
{
    addGrounds();
}

void TableColoursTest::otherCellsAreAsUsual()
{
    QFETCH(QColor, ground);
    useGround(ground);
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const QImage status = cellOf(cameras.rig.table(), 0, 1);
    QCOMPARE(groundOf(status), ground);
    QVERIFY(contrast(status) > 7);
}

void TableColoursTest::coloursChangeWhileTheWindowIsOpen()
{
    useGround(dark);
    const MeasuringCameras cameras(1, Mode::Acquisition);
    QCOMPARE(groundOf(cellOf(cameras.rig.table(), 0, 4)), dark);
    useGround(light);
    const QImage counter = cellOf(cameras.rig.table(), 0, 4);
    QVERIFY(luminance(groundOf(counter)) < 0.1);
    QCOMPARE(groundOf(cellOf(cameras.rig.table(), 0, 1)), light);
    useGround(dark);
    QCOMPARE(groundOf(cellOf(cameras.rig.table(), 0, 4)), dark);
}

QTEST_MAIN(TableColoursTest)
#include "TableColoursTest.moc"
