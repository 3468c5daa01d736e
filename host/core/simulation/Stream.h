#pragma once

#include "host/core/simulation/FramePipeline.h"
#include "host/core/simulation/Ledger.h"
#include "host/core/simulation/PicturePattern.h"
#include "zuCore/ZuApi.h"

#include <deque>
#include <memory>
#include <span>

namespace host {

/// The settings an acquisition starts with; they do not change while it runs.
struct StreamSettings
{
    std::uint64_t seed = 0;
    std::uint64_t cameraIndex = 0;
    ImageFormat format = ImageFormat::Raw8;
    int width = 0;
    int height = 0;
    int bitDepth = 8;
    bool packed = false;
    bool counterPattern = false; ///< transport data carry stamps
    PictureContent content = PictureContent::Moving;
    double frameRate = 0.0;
    std::int64_t readoutRate = 0; ///< bytes a second
    std::int64_t bufferBytes = 0;
    std::size_t queueSize = 1;
    double transportLoss = 0.0;
    int captureFailureEvery = 0;
    Ticks stampOffset = 0; ///< the camera's time stamp at the start of the acquisition
};

/// One acquisition: the camera's pipeline, the host's queue and the ledger.
/// All times count from its start. Not thread-safe: its camera locks.
class Stream
{
public:
    enum class Fetch { Delivered, Damaged, Empty };

    /// \param link must outlive the stream
    Stream(const StreamSettings &settings, const LinkModel &link);

    /// Bytes of a frame in the host's format.
    std::size_t frameBytes() const;

    /// Lets everything happen up to and including `now`, which never steps back.
    void advanceTo(Ticks now);

    /// When to look for a frame again: the next one's arrival or a tick before
    /// it, at most `limit`.
    Ticks nextArrival(Ticks limit);

    /// Takes a frame out of the queue and fills its data and record.
    /// \param newest skip all but the last one
    /// \param buffer at least frameBytes(), rounded up to whole words
    Fetch fetch(bool newest, std::span<std::uint64_t> buffer, ZU_IMG &image);

    const Ledger &ledger() const { return m_ledger; }

private:
    void stepPipeline();
    void apply(const PipelineEvent &event);
    void applyDue();
    bool isLost(std::uint32_t frame) const;
    void fillData(const FrameRecord &frame, std::span<std::uint64_t> buffer) const;

    StreamSettings m_settings;
    const LinkModel &m_link;
    PicturePattern m_picture;
    std::unique_ptr<FramePipeline> m_pipeline;
    std::deque<PipelineEvent> m_future; ///< computed ahead of the time, in its order
    std::deque<FrameRecord> m_queue;    ///< frames the host holds
    Ledger m_ledger;
    Ticks m_now = 0;
    std::int64_t m_fetched = 0;
};

} // namespace host
