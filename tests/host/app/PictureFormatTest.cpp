#include "host/app/PictureFormat.h"

#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/ImageFormat.h"
#include "host/core/simulation/SimulationBackend.h"

#include <QtTest>

#include <vector>

using host::convertPicture;
using host::ImageFormat;
using host::Picture;
using host::PictureFormat;
using Bytes = QByteArray;

class PictureFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { host::HostCore::instance().shutDown(); }

    void readsEveryFormat_data();
    void readsEveryFormat();
    void judgesByTheSizeWithoutAFormat_data();
    void judgesByTheSizeWithoutAFormat();
    void saysWhyAFrameCannotBeShown_data();
    void saysWhyAFrameCannotBeShown();
    void reducesLargeFramesToNoLessThanIsShown_data();
    void reducesLargeFramesToNoLessThanIsShown();
    void reducedPixelsAreTheMeanOfFour();
    void showsWhatTheSimulatedCameraSends_data();
    void showsWhatTheSimulatedCameraSends();
};

namespace {

ZU_IMG frameOf(const Bytes &bytes, unsigned int width, unsigned int height)
{
    ZU_IMG frame{};
    frame.size = sizeof frame;
    frame.filledSize = static_cast<std::uint32_t>(bytes.size());
    frame.data = const_cast<char *>(bytes.constData());
    frame.width = width;
    frame.height = height;
    frame.frameNumber = 42;
    return frame;
}

PictureFormat formatOf(ImageFormat format, int bitDepth = 8, bool packed = false)
{
    return {static_cast<int>(format), bitDepth, packed};
}

/// The pixels of all lines, in hexadecimal: grey ones with two digits.
QString pixels(const QImage &image)
{
    QStringList list;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            list << (image.isGrayscale() ? QString::number(qRed(pixel), 16).rightJustified(2, '0')
                                         : QString::number(pixel & 0xffffffU, 16).rightJustified(6, '0'));
        }
    }
    return list.join(' ');
}

} // namespace

void PictureFormatTest::readsEveryFormat_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("bitDepth");
    QTest::addColumn<bool>("packed");
    QTest::addColumn<QByteArray>("data"); // of 2 x 2 pixels
    QTest::addColumn<QString>("shown");

    const auto row = [](const char *name, ImageFormat format, int bitDepth, bool packed, const char *data,
                        const char *shown) {
        QTest::newRow(name) << int(format) << bitDepth << packed << QByteArray::fromHex(data) << shown;
    };
    row("raw 8", ImageFormat::Raw8, 12, false, "00ff8001", "00 ff 80 01");
    row("mono 8", ImageFormat::Mono8, 8, true, "00ff8001", "00 ff 80 01");
    row("mono 16, 8 bits", ImageFormat::Mono16, 8, false, "0000ff0080000100", "00 ff 80 01");
    row("mono 16, 10 bits", ImageFormat::Mono16, 10, false, "0000ff0300020300", "00 ff 80 00");
    row("mono 16, 12 bits", ImageFormat::Mono16, 12, false, "0000ff0f00081000", "00 ff 80 01");
    row("raw 16, 16 bits", ImageFormat::Raw16, 16, false, "0000ffff00800001", "00 ff 80 01");
    row("more than the bit depth", ImageFormat::Raw16, 10, false, "000000040008ffff", "00 ff ff ff");
    row("transport data", ImageFormat::TransportData, 16, false, "12345678 9abc def0", "34 78 bc f0");
    row("no packing in whole words", ImageFormat::Raw16, 12, true, "0000ff0f00081000", "00 ff 80 01");
    // 3ff, 000, 200, 004 from the lowest bit on
    row("packed 10 bits", ImageFormat::TransportData, 10, true, "ff03002001", "ff 00 80 01");
    // abc, def, 123, 456
    row("packed 12 bits", ImageFormat::TransportData, 12, true, "bcfade236145", "ab de 12 45");
    row("packed 8 bits", ImageFormat::Raw16, 8, true, "00ff8001", "00 ff 80 01");
    row("rgb 24", ImageFormat::Rgb24, 8, false, "112233 445566 778899 aabbcc", "112233 445566 778899 aabbcc");
    row("rgb 32", ImageFormat::Rgb32, 8, false, "11223300 44556601 77889902 aabbccff",
        "112233 445566 778899 aabbcc");
    row("rgb 48", ImageFormat::Rgb48, 12, false, "100120023003 400450056006 700780089009 a00ab00bc00c",
        "112233 445566 778899 aabbcc");
    row("more data than pixels", ImageFormat::Mono8, 8, false, "00ff8001eeee", "00 ff 80 01");
}

void PictureFormatTest::readsEveryFormat()
{
    QFETCH(int, format);
    QFETCH(int, bitDepth);
    QFETCH(bool, packed);
    QFETCH(QByteArray, data);
    QFETCH(QString, shown);
    const Picture picture = convertPicture(frameOf(data, 2, 2), {format, bitDepth, packed}, {});
    QCOMPARE(picture.problem, QString());
    QCOMPARE(pixels(picture.image), shown);
    QCOMPARE(picture.size, QSize(2, 2));
    QCOMPARE(picture.frameNumber, 42U);
}

void PictureFormatTest::judgesByTheSizeWithoutAFormat_data()
{
    QTest::addColumn<QByteArray>("data"); // of 2 x 1 pixels
    QTest::addColumn<QString>("shown");
    QTest::newRow("1 byte") << QByteArray::fromHex("1122") << "11 22";
    QTest::newRow("2 bytes") << QByteArray::fromHex("11002200") << "11 22";
    QTest::newRow("3 bytes") << QByteArray::fromHex("112233445566") << "112233 445566";
    QTest::newRow("4 bytes") << QByteArray::fromHex("1122330044556600") << "112233 445566";
    QTest::newRow("6 bytes") << QByteArray::fromHex("110022003300440055006600") << "112233 445566";
    QTest::newRow("5 bytes") << QByteArray(10, '\1') << QString();
    QTest::newRow("odd") << QByteArray(3, '\1') << QString();
}

void PictureFormatTest::judgesByTheSizeWithoutAFormat()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, shown);
    const Picture picture = convertPicture(frameOf(data, 2, 1), PictureFormat(), {});
    QCOMPARE(picture.image.isNull(), shown.isEmpty());
    QCOMPARE(picture.problem.isEmpty(), !shown.isEmpty());
    QCOMPARE(pixels(picture.image), shown);
}

void PictureFormatTest::saysWhyAFrameCannotBeShown_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<unsigned int>("width");
    QTest::addColumn<unsigned int>("height");
    QTest::addColumn<int>("bytes"); // -1: no data at all
    QTest::addColumn<QString>("text");
    QTest::newRow("unknown format") << 99 << 2U << 2U << 4 << "image format 99";
    QTest::newRow("no pixels") << 2 << 0U << 2U << 4 << "without a picture";
    QTest::newRow("no data") << 2 << 2U << 2U << -1 << "without a picture";
    QTest::newRow("a byte is missing") << 2 << 2U << 2U << 3 << "incomplete pictures: 3 bytes for 2 × 2";
    QTest::newRow("half is missing") << 3 << 2U << 2U << 7 << "incomplete pictures: 7 bytes";
    QTest::newRow("colours are missing") << 6 << 2U << 2U << 23 << "incomplete pictures: 23 bytes";
    QTest::newRow("more pixels than 64 bits count")
        << 6 << 0xffffffffU << 0xffffffffU << 100 << "incomplete pictures";
}

void PictureFormatTest::saysWhyAFrameCannotBeShown()
{
    QFETCH(int, format);
    QFETCH(unsigned int, width);
    QFETCH(unsigned int, height);
    QFETCH(int, bytes);
    QFETCH(QString, text);
    ZU_IMG frame = frameOf(QByteArray(qMax(bytes, 0), '\1'), width, height);
    if (bytes < 0)
        frame.data = nullptr;
    const Picture picture = convertPicture(frame, {format, 8, false}, {});
    QVERIFY(picture.image.isNull());
    QVERIFY2(picture.problem.contains(text), qPrintable(picture.problem));
}

void PictureFormatTest::reducesLargeFramesToNoLessThanIsShown_data()
{
    QTest::addColumn<QSize>("frame");
    QTest::addColumn<QSize>("shown");
    QTest::addColumn<QSize>("image");
    QTest::newRow("smaller") << QSize(100, 50) << QSize(300, 300) << QSize(100, 50);
    QTest::newRow("a little larger") << QSize(100, 50) << QSize(60, 60) << QSize(100, 50);
    QTest::newRow("twice") << QSize(100, 50) << QSize(50, 50) << QSize(50, 25);
    QTest::newRow("one side decides") << QSize(100, 90) << QSize(1000, 20) << QSize(25, 22);
    QTest::newRow("narrow") << QSize(100, 1) << QSize(10, 10) << QSize(10, 1);
    QTest::newRow("high") << QSize(1, 100) << QSize(10, 10) << QSize(1, 10);
    QTest::newRow("not known") << QSize(100, 50) << QSize() << QSize(100, 50);
}

void PictureFormatTest::reducesLargeFramesToNoLessThanIsShown()
{
    QFETCH(QSize, frame);
    QFETCH(QSize, shown);
    QFETCH(QSize, image);
    const Bytes data(frame.width() * frame.height(), '\x55');
    const Picture picture = convertPicture(frameOf(data, unsigned(frame.width()), unsigned(frame.height())),
                                           PictureFormat(), shown);
    QCOMPARE(picture.image.size(), image);
    QCOMPARE(picture.size, frame);
    QCOMPARE(qGray(picture.image.pixel(image.width() - 1, image.height() - 1)), 0x55);
}

void PictureFormatTest::reducedPixelsAreTheMeanOfFour()
{
    const Bytes raw = QByteArray::fromHex("00108090"
                                          "2030a0b0");
    QCOMPARE(pixels(convertPicture(frameOf(raw, 4, 2), formatOf(ImageFormat::Raw8), {2, 1}).image),
             QString("18 98"));
    const Bytes colours = QByteArray::fromHex("100000 300000 000810 000830");
    QCOMPARE(pixels(convertPicture(frameOf(colours, 2, 2), formatOf(ImageFormat::Rgb24), {1, 1}).image),
             QString("100410"));
}

void PictureFormatTest::showsWhatTheSimulatedCameraSends_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("bitDepth");
    for (int format = 0; format <= int(ImageFormat::TransportData); ++format) {
        for (int depth : {8, 10, 12, 14, 16})
            QTest::addRow("format %d, %d bits", format, depth) << format << depth;
    }
}

void PictureFormatTest::showsWhatTheSimulatedCameraSends()
{
    QFETCH(int, format);
    QFETCH(int, bitDepth);
    host::Scenario scenario;
    scenario.cameras.resize(1);
    scenario.cameras[0].serial = "SIM-1";
    scenario.cameras[0].width = 600;
    scenario.cameras[0].height = 3;
    host::HostCore &core = host::HostCore::instance();
    core.addBackend(
        std::make_unique<host::SimulationBackend>(scenario, std::make_shared<host::FreeRunningClock>()));
    const ZUCORE_HANDLE camera = core.open("simulated:SIM-1");
    QVERIFY(zuApi_SetParamInt(camera, ZU_PRM_IMAGE_DATA_FORMAT, format, nullptr));
    QVERIFY(zuApi_SetParamInt(camera, ZU_PRM_OUTPUT_DATA_BIT_DEPTH, bitDepth, nullptr));
    QVERIFY(zuApi_SetParamInt(camera, ZU_PRM_OUTPUT_DATA_PACKING, 1, nullptr));
    QVERIFY(core.startAcquisition(camera));
    ZU_IMG frame{};
    frame.size = sizeof frame;
    QVERIFY(zuApi_GetImage(camera, 10000, &frame, nullptr, true));
    const Picture picture = convertPicture(frame, host::readPictureFormat(camera), {});
    QCOMPARE(picture.problem, QString());
    QCOMPARE(picture.image.size(), QSize(600, 3));
    // A ramp of 256 grey values, whatever the format.
    const int first = qGray(picture.image.pixel(0, 0));
    for (int x : {1, 100, 255, 256, 599})
        QCOMPARE(qGray(picture.image.pixel(x, 2)), (first + 2 + x) % 256);
}

QTEST_GUILESS_MAIN(PictureFormatTest)
#include "PictureFormatTest.moc"
