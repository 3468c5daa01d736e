#pragma once

#include "tests/host/core/FakeCamera.h"

#include <atomic>

/// A fake camera that knows who captures from it.
class WatchedCamera : public FakeCamera
{
public:
    using FakeCamera::FakeCamera;

    bool captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image) override
    {
        ++m_captures;
        ++m_running;
        const bool ok = FakeCamera::captureImage(opening, timeout, image);
        --m_running;
        return ok;
    }

    bool isInUse() const { return m_running != 0; }
    int captures() const { return m_captures; }

private:
    std::atomic<int> m_captures = 0;
    std::atomic<int> m_running = 0;
};
