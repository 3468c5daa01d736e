#include "bench/reference/CsvReference.h"
#include "bench/reference/Recordings.h"
#include "measurement/CsvFile.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <algorithm>
#include <limits>

namespace {

constexpr std::size_t frameCount = 250;
constexpr std::size_t stampsPerFrame = 2000;

class NeverCancelled final : public measurement::CsvProgress
{
public:
    void setValue(int) override {}
    bool wasCancelled() override { return false; }
};

/// An engine's records, and a file that each run writes anew.
class Subject
{
public:
    Subject()
    {
        const auto &regimes = reference::benchmarkRegimes();
        const auto regime = std::find_if(regimes.begin(), regimes.end(),
                                         [](const reference::Regime &r) { return r.name == "slow"; });
        const reference::Recording recording = reference::makeRecording(*regime, frameCount, stampsPerFrame);
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
        link = {4096, 400, regime->bufferSize};
        window.to = std::numeric_limits<qint64>::max();
    }

    QString fileName() const { return m_folder.filePath(QStringLiteral("report.csv")); }

    CxCameraLineData line;
    measurement::CsvLink link;
    measurement::CsvWindow window;

private:
    QTemporaryDir m_folder;
};

Subject &subject()
{
    static Subject instance;
    return instance;
}

void countRows(benchmark::State &state)
{
    constexpr std::size_t rows = frameCount * (stampsPerFrame - 1);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * rows));
}

void writeReport(const Subject &s)
{
    measurement::CsvFile file(s.fileName());
    file.open();
    NeverCancelled progress;
    measurement::CsvReport(file, s.window, progress).writeFrames(s.line.frames, s.link);
    file.close();
}

void textStream(benchmark::State &state)
{
    const Subject &s = subject();
    for ([[maybe_unused]] auto iteration : state) {
        QFile file(s.fileName());
        file.open(QIODevice::WriteOnly);
        reference::writeFrames(file, s.line.frames, s.window, s.link);
    }
    countRows(state);
}

void report(benchmark::State &state)
{
    for ([[maybe_unused]] auto iteration : state)
        writeReport(subject());
    countRows(state);
}

/// The finished text, in the pieces in which a report is written.
void rawWrite(benchmark::State &state)
{
    constexpr qint64 piece = 256 * 1024;
    writeReport(subject());
    QFile file(subject().fileName());
    file.open(QIODevice::ReadOnly);
    const QByteArray text = file.readAll();
    file.close();
    for ([[maybe_unused]] auto iteration : state) {
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        for (qint64 at = 0; at < text.size(); at += piece)
            file.write(text.constData() + at, std::min(piece, text.size() - at));
        file.close();
    }
    countRows(state);
}

BENCHMARK(textStream)->Name("csv/text-stream")->Unit(benchmark::kMillisecond);
BENCHMARK(report)->Name("csv/report")->Unit(benchmark::kMillisecond);
BENCHMARK(rawWrite)->Name("csv/raw")->Unit(benchmark::kMillisecond);

} // namespace
