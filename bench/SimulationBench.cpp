#include "host/core/simulation/CounterPattern.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulatedCamera.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int width = 4096;
constexpr std::size_t mebibyte = 1024 * 1024;

/// As the simulation allocates a frame, but touched already.
std::unique_ptr<std::uint64_t[]> makeFrame(std::size_t bytes)
{
    std::unique_ptr<std::uint64_t[]> words(new std::uint64_t[bytes / sizeof(std::uint64_t)]);
    std::memset(words.get(), 0xff, bytes);
    return words;
}

void setBytes(benchmark::State &state)
{
    const std::size_t bytes = static_cast<std::size_t>(state.range(0)) * mebibyte;
    const auto words = makeFrame(bytes);
    int value = 0;
    for ([[maybe_unused]] auto iteration : state) {
        std::memset(words.get(), ++value, bytes);
        benchmark::DoNotOptimize(words.get());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// Stamps of one frame after the other, each where the link had got to.
void fillFrames(benchmark::State &state, const host::CameraSettings &settings)
{
    const std::size_t bytes = static_cast<std::size_t>(state.range(0)) * mebibyte;
    const std::size_t count = bytes / sizeof(std::uint64_t);
    const auto words = makeFrame(bytes);
    const host::LinkModel link(settings, 1, 0);
    host::LinkPosition position;
    for ([[maybe_unused]] auto iteration : state) {
        host::fillCounterPattern({words.get(), count}, static_cast<std::int64_t>(bytes), link, position, 0);
        benchmark::ClobberMemory();
        position.tick = static_cast<host::Ticks>(words[count - 1]);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// A division a word: what fillFrames() does on a link without changes.
void divideFrames(benchmark::State &state)
{
    const std::size_t bytes = static_cast<std::size_t>(state.range(0)) * mebibyte;
    const std::size_t count = bytes / sizeof(std::uint64_t);
    const auto words = makeFrame(bytes);
    auto rate = static_cast<std::uint64_t>(host::bytesPerSecond(host::CameraSettings().linkMBps));
    benchmark::DoNotOptimize(rate);
    for ([[maybe_unused]] auto iteration : state) {
        for (std::size_t i = 0; i < count; ++i)
            words[i] = (i + 1) * 8 * static_cast<std::uint64_t>(host::AmountPerByte) / rate;
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// A whole capture from the simulated camera, on a clock that does not wait:
/// the link's course, the queue and the ledger beside the stamps.
void captureFrames(benchmark::State &state, host::CameraSettings settings)
{
    settings.width = width;
    settings.height = static_cast<int>(static_cast<std::size_t>(state.range(0)) * mebibyte / width / 2);
    settings.frameRate = 60.0; // back to back
    host::SimulatedCamera camera(settings, 1, 0, std::make_shared<host::FreeRunningClock>());
    const auto opening = camera.open();
    camera.writeParameter(ZU_PRM_IMAGE_DATA_FORMAT, ZU_FRM_TRANSPORT_DATA);
    camera.writeParameter(ZU_PRM_OUTPUT_DATA_BIT_DEPTH, ZU_BPP_16);
    camera.writeParameter(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, ZU_TESTPAT_GEN_FPGA);
    camera.writeParameter(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER);
    ZU_IMG image = {};
    image.size = sizeof image;
    // The first capture touches the frame.
    if (!camera.startAcquisition() || !camera.captureImage(opening, std::chrono::seconds(5), image)) {
        state.SkipWithError("the camera delivers no frame");
        return;
    }
    for ([[maybe_unused]] auto iteration : state) {
        if (!camera.captureImage(opening, std::chrono::seconds(5), image)) {
            state.SkipWithError("a frame is missing");
            return;
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * image.filledSize);
}

struct Link
{
    std::string name;
    host::CameraSettings settings;
};

std::vector<Link> links()
{
    using host::TicksPerMillisecond;
    std::vector<Link> result(6);
    result[0].name = "steady";
    result[1].name = "uneven"; // a word takes no whole number of ticks
    result[1].settings.linkMBps = 333.333;
    result[2].name = "jitter";
    result[2].settings.jitter = {0.2, TicksPerMillisecond / 2};
    result[3].name = "fine-jitter"; // the rate changes every 4 kB
    result[3].settings.jitter = {0.2, TicksPerMillisecond / 100};
    result[4].name = "stalls";
    result[4].settings.stalls = {
        {5 * TicksPerMillisecond, 50 * TicksPerMillisecond, TicksPerMillisecond / 5, 1.0}};
    result[5].name = "jitter-stalls";
    result[5].settings.jitter = {0.05, TicksPerMillisecond};
    result[5].settings.stalls = {
        {20 * TicksPerMillisecond, 250 * TicksPerMillisecond, TicksPerMillisecond * 3 / 2, 1.0}};
    return result;
}

/// Eight and sixteen MiB.
void sizes(benchmark::internal::Benchmark *bench)
{
    bench->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);
}

[[maybe_unused]] const bool registered = [] {
    sizes(benchmark::RegisterBenchmark("simulation/memset", setBytes));
    sizes(benchmark::RegisterBenchmark("simulation/divisions", divideFrames));
    for (const Link &link : links()) {
        sizes(benchmark::RegisterBenchmark(("simulation/fill/" + link.name).c_str(), fillFrames,
                                           link.settings));
        sizes(benchmark::RegisterBenchmark(("simulation/capture/" + link.name).c_str(), captureFrames,
                                           link.settings));
    }
    return true;
}();

} // namespace
