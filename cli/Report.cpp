#include "cli/Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace cli {

namespace {

using Row = std::vector<std::string>;

constexpr std::array counterTitles{"Transport skip",      "API skip",
                                   "Transferred",         "Missed trg. overlap",
                                   "Missed trg overflow", "Buffer overflow"};

std::string stateText(CameraState state)
{
    switch (state) {
    case CameraState::NotStarted:
        return "not started";
    case CameraState::Measuring:
        return "measuring";
    case CameraState::Stopped:
        return "ok";
    case CameraState::Lost:
        return "lost";
    }
    return {};
}

/// "-" where no interval was measured.
std::string rate(double megabytesPerSecond)
{
    if (!(megabytesPerSecond < std::numeric_limits<double>::max()))
        return "-";
    return fmt::format("{:.1f}", megabytesPerSecond);
}

Row throughputRow(const CameraResult &result)
{
    Row row{result.name, stateText(result.state), fmt::format("{}", result.frames),
            fmt::format("{:.0f}", result.requiredMBps)};
    if (result.throughput) {
        row.push_back(rate(result.throughput->avgMBps));
        row.push_back(rate(result.throughput->minMBps));
        row.push_back(fmt::format("{:.1f}", result.throughput->maxBufferLevel));
        row.push_back(fmt::format("{}", result.throughput->overflows));
    } else {
        row.insert(row.end(), 4, "-");
    }
    return row;
}

Row acquisitionRow(const CameraResult &result)
{
    Row row{result.name, stateText(result.state), fmt::format("{}", result.frames)};
    row.push_back(result.framesPerSecond ? fmt::format("{:.2f}", *result.framesPerSecond) : "-");
    for (const auto &counter : result.counters)
        row.push_back(counter ? fmt::format("{}", *counter) : "-");
    return row;
}

Row titles(MeasureMode mode)
{
    if (mode == MeasureModeThroughput) {
        return {"Camera",
                "State",
                "Frames",
                "Required MB/s",
                "Avg MB/s",
                "Min MB/s",
                "Max buffer level %",
                "Buffer overflows"};
    }
    Row row{"Camera", "State", "Frames", "Frames/s"};
    row.insert(row.end(), counterTitles.begin(), counterTitles.end());
    return row;
}

/// Characters of a UTF-8 text, not bytes.
std::size_t characters(const std::string &text)
{
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

/// Columns as wide as their widest cell; the camera's name to the left, numbers
/// to the right.
std::string layOut(const std::vector<Row> &rows)
{
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row &row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], characters(row[column]));
    }
    std::string text;
    for (const Row &row : rows) {
        std::string line = fmt::format("{:<{}}  {:<{}}", row[0], widths[0], row[1], widths[1]);
        for (std::size_t column = 2; column < row.size(); ++column)
            line += fmt::format("  {:>{}}", row[column], widths[column]);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

std::string progressOf(MeasureMode mode, const CameraResult &result)
{
    if (result.state == CameraState::NotStarted || result.state == CameraState::Lost)
        return fmt::format("{}: {}", result.name, stateText(result.state));
    std::string text = fmt::format("{}: {} frames", result.name, result.frames);
    if (mode == MeasureModeThroughput && result.throughput) {
        text += fmt::format(", avg {} min {} MB/s, buffer {:.1f} %, {} overflows",
                            rate(result.throughput->avgMBps), rate(result.throughput->minMBps),
                            result.throughput->maxBufferLevel, result.throughput->overflows);
    } else if (mode == MeasureModeAcquisition && result.framesPerSecond) {
        text += fmt::format(", {:.2f} frames/s", *result.framesPerSecond);
    }
    return text;
}

} // namespace

std::string progressLine(MeasureMode mode, double seconds, const std::vector<CameraResult> &results)
{
    std::string line = fmt::format("{:4.0f} s", seconds);
    for (const CameraResult &result : results)
        line += "  |  " + progressOf(mode, result);
    return line;
}

std::string resultTable(MeasureMode mode, const std::vector<CameraResult> &results)
{
    std::vector<Row> rows{titles(mode)};
    for (const CameraResult &result : results)
        rows.push_back(mode == MeasureModeThroughput ? throughputRow(result) : acquisitionRow(result));
    return layOut(rows);
}

} // namespace cli
