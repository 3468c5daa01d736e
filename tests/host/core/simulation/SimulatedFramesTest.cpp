#include "SimulationTestHelpers.h"

#include <QTest>

using namespace host;

class SimulatedFramesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stampsOfASteadyLink();
    void backToBackFramesContinueTheStamps();
    void stampsAcrossAStall();
    void timestampRestart_data();
    void timestampRestart();
    void withoutTheCounterAPictureComes();
    void pictureMoves_data();
    void pictureMoves();
    void oddSizes_data();
    void oddSizes();
    void sameSeedSameBytes();
};

void SimulatedFramesTest::stampsOfASteadyLink()
{
    CameraSettings settings = smallCamera();
    settings.frameRate = 10'000.0; // every 25000 ticks, a frame takes 5000
    CameraOnClock on(settings);
    QVERIFY(on.selectCounterPattern());
    on.clock->advance(123'456);
    QVERIFY(on.camera.startAcquisition());
    for (std::uint32_t frame = 0; frame < 5; ++frame) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.frameNumber, frame);
        QCOMPARE(on.image.width, 100U);
        QCOMPARE(on.image.height, 10U);
        QCOMPARE(on.image.filledSize, 2000U);
        QCOMPARE(microseconds(on.image), std::int64_t{frame} * 100);
        const auto words = on.words();
        QCOMPARE(words.size(), std::size_t{250});
        for (std::size_t i = 0; i < words.size(); ++i)
            QCOMPARE(words[i], frame * std::uint64_t{25'000} + 20 * (i + 1));
        QCOMPARE(on.clock->now(), 123'456 + Ticks{frame} * 25'000 + 5000);
    }
}

void SimulatedFramesTest::backToBackFramesContinueTheStamps()
{
    CameraSettings settings = smallCamera();
    settings.linkMBps = 93.0; // a word takes 21.5 ticks
    CameraOnClock on(settings);
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.startAcquisition());
    for (std::uint64_t frame = 0; frame < 8; ++frame) {
        QVERIFY(on.capture());
        const auto words = on.words();
        for (std::size_t i = 0; i < words.size(); ++i)
            QCOMPARE(words[i], (frame * 250 + i + 1) * 2000 / 93);
        const std::uint64_t begin = frame * 250 * 2000 / 93;
        QCOMPARE(microseconds(on.image), static_cast<std::int64_t>(begin / 250));
    }
}

void SimulatedFramesTest::stampsAcrossAStall()
{
    CameraSettings settings = smallCamera();
    settings.stalls = {{1010, 0, 2000, 1.0}};
    CameraOnClock on(settings);
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    const auto words = on.words();
    QCOMPARE(words[49], std::uint64_t{1000});
    QCOMPARE(words[50], std::uint64_t{3020});
    QCOMPARE(words.back(), std::uint64_t{7000});
    QCOMPARE(on.clock->now(), Ticks{7000});
}

void SimulatedFramesTest::timestampRestart_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("source");
    QTest::addColumn<qint64>("first");
    QTest::addColumn<qint64>("second");
    // The acquisitions start at 10 and 30 s.
    QTest::newRow("never") << 0 << 0 << qint64{10'000'000} << qint64{30'000'000};
    QTest::newRow("once") << 0 << 19 << qint64{0} << qint64{20'000'000};
    QTest::newRow("every time") << 1 << 19 << qint64{0} << qint64{0};
    QTest::newRow("every time, no source") << 1 << 0 << qint64{10'000'000} << qint64{30'000'000};
}

void SimulatedFramesTest::timestampRestart()
{
    QFETCH(int, mode);
    QFETCH(int, source);
    CameraOnClock on(smallCamera());
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.writeParameter("ts_rst_mode", mode));
    QVERIFY(on.camera.writeParameter("ts_rst_source", source));
    on.clock->advance(10 * TicksPerSecond);
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QTEST(qint64{microseconds(on.image)}, "first");
    QCOMPARE(on.words()[0], static_cast<std::uint64_t>(microseconds(on.image)) * 250 + 20);
    QVERIFY(on.camera.stopAcquisition());
    on.clock->advance(30 * TicksPerSecond - on.clock->now());
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QTEST(qint64{microseconds(on.image)}, "second");
}

void SimulatedFramesTest::withoutTheCounterAPictureComes()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.writeParameter("test_pattern", 2)); // white
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QCOMPARE(on.image.filledSize, 2000U);
    QCOMPARE(on.words()[7], std::uint64_t{0xff00ff00ff00ff00});
}

void SimulatedFramesTest::pictureMoves_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("pixelBytes");
    QTest::addColumn<bool>("wide");
    QTest::newRow("RAW 8") << 0 << 8 << 1 << false;
    QTest::newRow("RAW 16") << 1 << 12 << 2 << true;
    QTest::newRow("MONO 8") << 2 << 8 << 1 << false;
    QTest::newRow("MONO 16") << 3 << 16 << 2 << true;
    QTest::newRow("RGB 24") << 4 << 8 << 3 << false;
    QTest::newRow("RGB 32") << 5 << 8 << 4 << false;
    QTest::newRow("RGB 48") << 6 << 10 << 6 << true;
    QTest::newRow("transport data") << 7 << 16 << 2 << true;
}

void SimulatedFramesTest::pictureMoves()
{
    QFETCH(int, format);
    QFETCH(int, depth);
    QFETCH(int, pixelBytes);
    QFETCH(bool, wide);
    CameraSettings settings = smallCamera();
    settings.width = 101;
    settings.height = 7;
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("imgdataformat", format));
    QVERIFY(on.camera.writeParameter("output_bit_depth", depth));
    QVERIFY(on.camera.startAcquisition());
    const auto grey = [&](int x, int y) {
        const unsigned char *pixel = static_cast<unsigned char *>(on.image.data) + (y * 101 + x) * pixelBytes;
        const int value = wide ? (pixel[0] + 256 * pixel[1]) >> (depth - 8) : pixel[0];
        // All channels are equal.
        for (int i = wide ? 2 : 1; i < pixelBytes; ++i)
            if (pixel[i] != pixel[i - (wide ? 2 : 1)])
                return -1;
        return value;
    };
    int corner = -1;
    for (int frame = 0; frame < 3; ++frame) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.filledSize, static_cast<std::uint32_t>(101 * 7 * pixelBytes));
        if (frame == 0)
            corner = grey(0, 0);
        QVERIFY(corner >= 0);
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < 101; ++x)
                QCOMPARE(grey(x, y), (corner + static_cast<int>(on.image.frameNumber) + x + y) % 256);
        }
    }
}

void SimulatedFramesTest::oddSizes_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("one pixel") << 1 << 1;
    QTest::newRow("three pixels") << 3 << 1;
    QTest::newRow("one word") << 4 << 1;
    QTest::newRow("five pixels") << 5 << 1;
    QTest::newRow("7 x 3") << 7 << 3;
    QTest::newRow("column") << 1 << 10;
}

void SimulatedFramesTest::oddSizes()
{
    QFETCH(int, width);
    QFETCH(int, height);
    CameraOnClock on(smallCamera());
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.writeParameter("width", width));
    QVERIFY(on.camera.writeParameter("height", height));
    QVERIFY(on.camera.startAcquisition());
    for (std::uint64_t frame = 0; frame < 3; ++frame) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.filledSize, static_cast<std::uint32_t>(width * height * 2));
        const auto words = on.words();
        QCOMPARE(words.size(), static_cast<std::size_t>(width * height / 4));
        for (std::size_t i = 0; i < words.size(); ++i)
            QCOMPARE(words[i], frame * 5000 + 20 * (i + 1));
    }
}

void SimulatedFramesTest::sameSeedSameBytes()
{
    CameraSettings settings = smallCamera();
    settings.jitter = {0.2, 2500};
    const auto record = [&settings](std::uint64_t seed) {
        CameraOnClock on(settings, seed);
        on.selectCounterPattern();
        on.camera.startAcquisition();
        std::vector<unsigned char> all;
        for (int frame = 0; frame < 20; ++frame) {
            on.capture();
            const auto bytes = on.bytes();
            all.insert(all.end(), bytes.begin(), bytes.end());
        }
        return all;
    };
    const auto first = record(5);
    QCOMPARE(first.size(), std::size_t{40'000});
    QVERIFY(record(5) == first);
    QVERIFY(record(6) != first);
}

QTEST_APPLESS_MAIN(SimulatedFramesTest)
#include "SimulatedFramesTest.moc"
