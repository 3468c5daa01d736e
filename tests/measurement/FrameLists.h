#pragma once

#include "measurement/CameraLineData.h"
#include "tests/scriptedhost/ScriptedHost.h"

/// Frames of one line whose words hold their own number plus 10^6 × the frame's.
inline scripted::CounterFrames numberedFrames(std::uint32_t width)
{
    scripted::CounterFrames frames;
    frames.width = width;
    frames.height = 1;
    frames.firstStamp = 0;
    frames.ticksPerWord = 1;
    frames.ticksPerFrame = 1000000;
    return frames;
}

/// Numbers of the stored frames, oldest first.
inline QList<quint64> frameNumbers(const CxCameraLineData &line)
{
    QList<quint64> numbers;
    for (const CxCameraLineData::CxFrameData *frame : line.frames)
        numbers.append(frame->frameNumber);
    return numbers;
}
