#pragma once

#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulatedCamera.h"

#include <cstring>
#include <memory>
#include <vector>

/// 100 x 10 pixels: 1000 bytes on the link at 8 bit, 2000 bytes of transport
/// data. The readout takes 2000 ticks and the link 2500 for 1000 bytes.
inline host::CameraSettings smallCamera()
{
    host::CameraSettings settings;
    settings.name = "Small";
    settings.serial = "S-1";
    settings.width = 100;
    settings.height = 10;
    settings.frameRate = 50'000.0; // every 5000 ticks
    settings.requiredMBps = 125.0; // 0.5 bytes a tick
    settings.linkMBps = 100.0;     // 0.4 bytes a tick
    settings.internalBufferBytes = 100'000;
    return settings;
}

inline ZU_IMG emptyImage()
{
    ZU_IMG image;
    std::memset(&image, 0, sizeof image);
    image.size = sizeof image;
    return image;
}

/// The camera's time stamp of a frame.
inline std::int64_t microseconds(const ZU_IMG &image)
{
    return std::int64_t{image.timestampSeconds} * 1'000'000 + image.timestampMicroseconds;
}

/// An open camera on its own clock.
struct CameraOnClock
{
    explicit CameraOnClock(const host::CameraSettings &settings, std::uint64_t seed = 1,
                           host::Ticks limit = host::FreeRunningClock::NoLimit)
        : clock(std::make_shared<host::FreeRunningClock>(limit))
        , camera(settings, seed, 0, clock)
    {
        opening = camera.open();
    }

    bool capture(std::chrono::milliseconds timeout = std::chrono::seconds(5))
    {
        image = emptyImage();
        return camera.captureImage(opening, timeout, image);
    }

    /// As a measurement prepares the camera.
    bool selectCounterPattern()
    {
        return camera.writeParameter(ZU_PRM_IMAGE_DATA_FORMAT, ZU_FRM_TRANSPORT_DATA) &&
               camera.writeParameter(ZU_PRM_OUTPUT_DATA_BIT_DEPTH, ZU_BPP_16) &&
               camera.writeParameter(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, ZU_TESTPAT_GEN_FPGA) &&
               camera.writeParameter(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER) &&
               camera.writeParameter(ZU_PRM_TS_RST_MODE, ZU_TS_RST_MODE_ONCE) &&
               camera.writeParameter(ZU_PRM_TS_RST_SOURCE, ZU_TS_RST_SOURCE_ACQUISITION);
    }

    std::int64_t read(const char *name, std::int64_t otherwise = -1)
    {
        std::int64_t value = otherwise;
        camera.readParameter(name, value);
        return value;
    }

    std::int64_t counter(ZU_COUNTER_SELECTOR selector)
    {
        if (!camera.writeParameter(ZU_PRM_COUNTER_SELECTOR, selector))
            return -1;
        return read(ZU_PRM_COUNTER_VALUE);
    }

    std::int64_t truth(host::LedgerEntryKind kind) { return camera.ledger().count(kind); }

    /// The whole words of the frame captured last.
    std::vector<std::uint64_t> words() const
    {
        std::vector<std::uint64_t> result(image.filledSize / 8);
        if (!result.empty())
            std::memcpy(result.data(), image.data, result.size() * 8);
        return result;
    }

    std::vector<unsigned char> bytes() const
    {
        const auto *first = static_cast<const unsigned char *>(image.data);
        return {first, first + image.filledSize};
    }

    std::shared_ptr<host::FreeRunningClock> clock;
    host::SimulatedCamera camera;
    host::CameraDevice::Opening opening = 0; ///< whose frames capture() takes
    ZU_IMG image = emptyImage();
};
