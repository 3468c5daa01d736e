#pragma once

#include "host/core/CameraDevice.h"
#include "host/core/simulation/CameraParameterSet.h"
#include "host/core/simulation/Clock.h"
#include "host/core/simulation/LinkModel.h"
#include "host/core/simulation/Stream.h"

#include <memory>
#include <mutex>
#include <optional>

namespace host {

/// A camera of a scenario behind the interface of a real one.
///
/// It has no thread: every call first lets the camera's state catch up with
/// the clock. Times of the model count from the start of the acquisition.
class ZUCORE_EXPORT SimulatedCamera : public CameraDevice
{
public:
    SimulatedCamera(CameraSettings settings, std::uint64_t seed, std::uint64_t cameraIndex,
                    std::shared_ptr<Clock> clock);
    ~SimulatedCamera() override;

    DeviceInfo info() const override;
    bool isConnected() const override;
    unsigned int connectionCount() const override;
    Opening open() override;
    void close() override;
    std::vector<ParameterDescription> parameters() const override;
    bool readParameter(std::string_view name, std::int64_t &value) override;
    bool readMaximum(std::string_view name, std::int64_t &value) override;
    bool writeParameter(std::string_view name, std::int64_t value) override;
    bool isSettable(std::string_view name, std::int64_t value) override;
    bool startAcquisition() override;
    bool stopAcquisition() override;
    bool captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image) override;

    /// The truth, for tests: the settings, the link's exact rate, and what has
    /// happened to the frames of the present or else the last acquisition.
    const CameraSettings &settings() const { return m_settings; }
    const LinkModel &link() const { return m_link; }
    Ledger ledger() const;

    /// The clock's time at the start of the last acquisition.
    Ticks acquisitionStart() const;

private:
    enum class Plug { In, Out, BackIn };

    /// The following are called with `m_mutex` held.
    bool isUsable() const;
    /// End of the host's pause that lasts at `now`; `now` while there is none.
    Ticks pauseEnd(Ticks now) const;
    void catchUp(Ticks now) const;
    void unplugIfDue(Ticks now) const;
    void endStream() const;
    void wakeCaptures();
    bool allocateBuffer(std::size_t bytes);
    StreamSettings streamSettings(Ticks start);
    const Ledger &currentLedger() const;
    const Ledger &counterLedger() const;

    const CameraSettings m_settings;
    const std::uint64_t m_seed;
    const std::uint64_t m_index;
    const LinkModel m_link;
    const std::shared_ptr<Clock> m_clock;

    /// Guards everything below. Mutable, because looking at the camera lets
    /// its state catch up with the time.
    mutable std::mutex m_mutex;
    mutable CameraParameterSet m_parameters;
    mutable std::unique_ptr<Stream> m_stream; ///< null: not streaming
    mutable Ledger m_lastLedger;              ///< of the stream that ended last
    mutable bool m_countersCleared = false;   ///< by a loss of power since that stream
    mutable Plug m_plug = Plug::In;
    mutable unsigned int m_connectionCount = 1;
    mutable bool m_open = false;
    Opening m_opening = 0; ///< the last one, over or not
    std::optional<Ticks> m_firstOpened;
    Ticks m_streamStart = 0;
    mutable Ticks m_stampOrigin = 0; ///< where the camera's time stamp is 0

    /// The frame handed out last. Only a start or a capture touches it, so that
    /// whoever still reads it when streaming stops does not lose it.
    std::unique_ptr<std::uint64_t[]> m_buffer;
    std::size_t m_bufferWords = 0;

    /// Ends the waits of captures: a stop or close makes them fail, a start
    /// makes them look again.
    Clock::Interrupt m_interrupt;
    std::uint64_t m_endCount = 0; ///< stops and closes so far
};

} // namespace host
