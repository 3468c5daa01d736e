#include "bench/reference/CsvReference.h"
#include "bench/reference/Recordings.h"
#include "measurement/CsvFile.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <algorithm>
#include <limits>
#include <memory>

namespace {

constexpr std::size_t rowsPerFrame = 2000;

/// 10 million rows, or a tenth in the short form.
std::size_t frameCount()
{
    return qgetenv("VELMORA_BENCH_FORM") == "short" ? 500 : 5000;
}

class NeverCancelled final : public measurement::CsvProgress
{
public:
    void setValue(int) override {}
    bool wasCancelled() override { return false; }
};

/// An engine's records.
class Records
{
public:
    explicit Records(const reference::Regime &regime)
        : link{4096, 400, regime.bufferSize}
    {
        const reference::Recording recording =
            reference::makeRecording(regime, frameCount(), rowsPerFrame + 1);
        for (std::size_t i = 0; i < recording.size(); ++i) {
            const measurement::throughput::Frame source = recording.at(i);
            auto *frame = new CxCameraLineData::CxFrameData;
            frame->frameNumber = i + 1;
            frame->cameraTimestamp = source.timestamp;
            frame->computerTimestamp = source.timestamp + 1500;
            frame->samples = new quint64[source.count];
            std::copy_n(source.stamps, source.count, frame->samples);
            frame->sampleCount = source.count;
            frame->sampleSpan = source.span;
            line.frames.append(frame);
        }
        window.to = std::numeric_limits<qint64>::max();
    }

    CxCameraLineData line;
    measurement::CsvLink link;
    measurement::CsvWindow window;
};

/// A link a little slower than the sensor, its intervals within half a
/// microsecond of each other: what a camera with a free link delivers.
const Records &steady()
{
    static const Records records([] {
        const auto &regimes = reference::benchmarkRegimes();
        return *std::find_if(regimes.begin(), regimes.end(),
                             [](const reference::Regime &regime) { return regime.name == "slow"; });
    }());
    return records;
}

/// Intervals that hardly ever repeat: every text has to be made.
const Records &scattered()
{
    static const Records records({"scattered", 100, 100000, 0.0, 0, 20, 256 << 20});
    return records;
}

/// A file on the disk, which /tmp need not be. Writing starts without it every
/// time, because a file system may wait for the disk when a file is replaced.
class Target
{
public:
    QString fileName() const { return m_folder.filePath(QStringLiteral("report.csv")); }
    void remove() const { QFile::remove(fileName()); }

    /// \param write called with the file absent; only this is timed
    template <typename Write> void measure(benchmark::State &state, Write write) const
    {
        for ([[maybe_unused]] auto iteration : state) {
            state.PauseTiming();
            remove();
            state.ResumeTiming();
            write();
        }
        const auto rows = static_cast<double>(frameCount() * rowsPerFrame);
        using benchmark::Counter;
        state.counters["per_row"] =
            Counter(rows, static_cast<Counter::Flags>(Counter::kIsIterationInvariantRate | Counter::kInvert));
    }

private:
    QTemporaryDir m_folder{QStringLiteral("/var/tmp/velmora-bench-XXXXXX")};
};

void writeReport(const Target &target, const Records &records)
{
    measurement::CsvFile file(target.fileName());
    file.open();
    NeverCancelled progress;
    measurement::CsvReport(file, records.window, progress).writeFrames(records.line.frames, records.link);
    file.close();
}

void textStream(benchmark::State &state)
{
    const Records &records = steady();
    const Target target;
    target.measure(state, [&] {
        QFile file(target.fileName());
        file.open(QIODevice::WriteOnly);
        reference::writeFrames(file, records.line.frames, records.window, records.link);
    });
}

void report(benchmark::State &state, const Records &(*records)())
{
    const Records &subject = records();
    const Target target;
    target.measure(state, [&] { writeReport(target, subject); });
}

/// The finished report. Read once and kept: so much memory, given back and asked
/// for again, would disturb what is measured next.
const QByteArray &steadyText()
{
    static const QByteArray text = [] {
        const Target target;
        writeReport(target, steady());
        QFile file(target.fileName());
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }();
    return text;
}

/// The finished text from memory, in the pieces in which a report is written.
void rawWrite(benchmark::State &state)
{
    constexpr qint64 piece = qint64{256} * 1024;
    const QByteArray &text = steadyText();
    const Target target;
    target.measure(state, [&] {
        QFile file(target.fileName());
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        for (qint64 at = 0; at < text.size(); at += piece)
            file.write(text.constData() + at, std::min(piece, text.size() - at));
    });
}

// By the processor's time, which other programs disturb least.
BENCHMARK(textStream)->Name("csv/text-stream")->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK_CAPTURE(report, steady, steady)->Name("csv/report")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(report, scattered, scattered)->Name("csv/report/scattered")->Unit(benchmark::kMillisecond);
// By the clock: waiting for the file system counts.
BENCHMARK_CAPTURE(report, steady, steady)->Name("csv/report")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(rawWrite)->Name("csv/raw")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
