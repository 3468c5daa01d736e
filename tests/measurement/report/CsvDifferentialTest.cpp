#include "bench/reference/CsvReference.h"
#include "tests/measurement/model/RandomCase.h"
#include "tests/measurement/report/ReportRig.h"

#include <QBuffer>
#include <QTest>

#include <limits>
#include <memory>

using namespace measurement;

Q_DECLARE_METATYPE(CaseFamily)

namespace {

using Random = std::mt19937_64;

template <typename T> T oneOf(std::initializer_list<T> values, Random &random)
{
    return values.begin()[random() % values.size()];
}

/// The first line in which two reports differ; empty if there is none.
QString firstDifference(const QByteArray &actual, const QByteArray &expected)
{
    if (actual == expected)
        return {};
    const QByteArrayList actualLines = actual.split('\n');
    const QByteArrayList expectedLines = expected.split('\n');
    for (int i = 0; i < actualLines.size() && i < expectedLines.size(); ++i) {
        if (actualLines[i] != expectedLines[i])
            return QString("line %1: %2 instead of %3")
                .arg(i + 1)
                .arg(QString(actualLines[i]), QString(expectedLines[i]));
    }
    return QString("%1 lines instead of %2").arg(actualLines.size()).arg(expectedLines.size());
}

void record(const RandomCase &drawn, quint64 shift, CxCameraLineData &line, RecordedLine &recorded,
            Random &random)
{
    const quint64 firstNumber =
        oneOf<quint64>({0, 1, 98, 99999990, std::numeric_limits<quint64>::max() - 2}, random);
    for (std::size_t i = 0; i < drawn.recording.size(); ++i) {
        const throughput::Frame source = drawn.recording.at(i);
        std::vector<quint64> stamps(source.stamps, source.stamps + source.count);
        for (quint64 &stamp : stamps)
            stamp += shift;
        auto &frame = recorded.addFrameOfTicks(source.timestamp, stamps);
        frame.frameNumber = firstNumber + i;
        frame.sampleSpan = source.span;
        frame.computerTimestamp = oneOf<qint64>({source.timestamp / 2, -1, 0, line.frames.size()}, random);
    }
}

} // namespace

/// Whole files of random records, compared with those of the plain writer.
class CsvDifferentialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void throughput_data();
    void throughput();
    void intervalsThatShareAPlace();
    void counters();

private:
    /// \return the size of the report
    qint64 compareFrames(ReportRig &rig, const CsvWindow &window);
};

qint64 CsvDifferentialTest::compareFrames(ReportRig &rig, const CsvWindow &window)
{
    rig.writeFrames(window);
    QBuffer expected;
    expected.open(QIODevice::WriteOnly);
    reference::writeFrames(expected, rig.recorded.line.frames, window, rig.link());
    [&] { QCOMPARE(firstDifference(rig.contents(), expected.data()), QString()); }();
    return expected.size();
}

void CsvDifferentialTest::throughput_data()
{
    QTest::addColumn<CaseFamily>("family");
    QTest::addColumn<quint64>("shift"); // of all stamps, ticks
    const auto row = [](CaseFamily family, quint64 shift = 0) {
        family.mixedLengths = true;
        QTest::newRow(family.name) << family << shift;
    };
    CaseFamily family = {"plain"};
    row(family);
    family = {"stalls"};
    family.stalls = 0.05;
    row(family);
    family = {"repeats"};
    family.repeats = 0.1;
    family.stalls = 0.01;
    row(family);
    family = {"backward"};
    family.backward = family.repeats = 0.02;
    row(family);
    family = {"disorder"};
    family.disorder = true;
    family.repeats = family.stalls = 0.01;
    row(family);
    family = {"scattered"};
    family.shortest = 1;
    family.longest = 5000000;
    row(family);
    family = {"slow"}; // the time since a frame's start passes eight digits
    family.shortest = 20000000;
    family.longest = 30000000;
    row(family);
    family = {"huge"};
    family.huge = family.backward = 0.02;
    row(family);
    family = {"strange numbers"};
    family.strangeNumbers = family.disorder = true;
    family.repeats = family.huge = family.backward = 0.01;
    row(family);
    family = {"nanoseconds beyond 64 bits"};
    row(family, (Q_UINT64_C(1) << 62) - Q_UINT64_C(86400000000) * 125);
}

void CsvDifferentialTest::throughput()
{
    QFETCH(CaseFamily, family);
    QFETCH(quint64, shift);
    Random random(8);
    qint64 compared = 0;
    for (int i = 0; i < 40; ++i) {
        ReportRig rig;
        const RandomCase drawn = drawCase(family, random);
        CxCameraLineData &line = rig.recorded.line;
        record(drawn, shift, line, rig.recorded, random);
        line.sampleInterval = drawn.settings.sampleInterval;
        line.avgTransportSpeedMBps = static_cast<unsigned int>(drawn.settings.requiredMBps);
        line.internalBuffSize = drawn.settings.bufferSize;
        if (!family.strangeNumbers) {
            line.sampleInterval = oneOf({1000U, 4096U, 51200U}, random);
            line.avgTransportSpeedMBps = oneOf({375U, 400U, 625U}, random);
            line.internalBuffSize = oneOf<quint64>({32768, 999999, 1 << 20, 256 << 20}, random);
        }
        const CsvWindow window = {drawn.settings.from, drawn.settings.to, TimestampOriginCamera,
                                  drawn.settings.resetBufferLevel};
        compared += compareFrames(rig, window);
        compared += compareFrames(rig, ReportRig::everything());
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(compared > 1000000);
}

/// Intervals that a table of any likely size puts into one place.
void CsvDifferentialTest::intervalsThatShareAPlace()
{
    Random random(9);
    ReportRig rig;
    for (int frame = 0; frame < 20; ++frame) {
        std::vector<quint64> stamps = {random() >> 20};
        for (int i = 0; i < 2000; ++i)
            stamps.push_back(stamps.back() + oneOf<quint64>({0, 2500, 2500 + 65536, 65536, 131072}, random));
        rig.recorded.addFrameOfTicks(frame, stamps);
    }
    QVERIFY(compareFrames(rig, ReportRig::everything()) > 1000000);
}

void CsvDifferentialTest::counters()
{
    Random random(10);
    qint64 compared = 0;
    for (int i = 0; i < 40; ++i) {
        ReportRig rig;
        const int shift = static_cast<int>(random() % 62);
        const qint64 middle = static_cast<qint64>(random()) >> shift;
        for (int k = 0; k < 300; ++k) {
            auto &added = rig.addCounters(static_cast<qint64>(random()) >> shift);
            added.frameNumber = random() >> shift;
            added.transportSkip = static_cast<qint32>(random()) >> shift % 32;
            added.apiSkip = static_cast<qint32>(random());
            added.missedTrgOverlap = static_cast<qint32>(random() % 3);
            added.missedTrgOverflow = -static_cast<qint32>(random() % 100);
            added.bufferOverflow = k;
        }
        const qint64 end = oneOf({std::numeric_limits<qint64>::max(), middle}, random);
        const CsvWindow window = {oneOf({std::numeric_limits<qint64>::min(), middle}, random), end,
                                  oneOf({TimestampOriginCamera, TimestampOriginComputer}, random)};
        rig.writeCounters(window);
        QBuffer expected;
        expected.open(QIODevice::WriteOnly);
        reference::writeCounters(expected, rig.recorded.line.counterData, window);
        QCOMPARE(firstDifference(rig.contents(), expected.data()), QString());
        compared += expected.size();
    }
    QVERIFY(compared > 100000);
}

QTEST_APPLESS_MAIN(CsvDifferentialTest)
#include "CsvDifferentialTest.moc"
