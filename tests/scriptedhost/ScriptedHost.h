#pragma once

#include "tests/scriptedhost/ScriptedCall.h"
#include "zuCore/CxCameraParam.h"
#include "zuCore/CxCameraParameters.h"
#include "zuCore/ZuApi.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace scripted {

/// Fills a record that arrives zeroed with its size set; runs on the capturing
/// thread without any lock. False fails the capture, as does null data.
using ImageSource = std::function<bool(ZU_IMG &)>;

/// The test's side of a host library that does nothing but what it is told and
/// remembers every call. It stands in for libzuCore.so.
///
/// Safe to use from any thread, except for what concerns signals and parameter
/// sets: those belong to the GUI thread, as in the contract.
class Q_DECL_EXPORT Host
{
public:
    static Host &instance();

    /// Forgets cameras (without signals), calls, failures and settings. No
    /// capture may be under way.
    void reset();

    // Cameras -------------------------------------------------------------

    /// Opens a camera without a signal. Its parameters are those of a camera
    /// that has everything; the defaults stand at their definition.
    ZUCORE_HANDLE addCamera(const CxCameraInfo &info = {});
    /// The same with CxCameraManager::cameraOpened.
    ZUCORE_HANDLE openCamera(const CxCameraInfo &info = {});
    /// Takes the camera off the list, emits cameraClosed, then refuses calls.
    void closeCamera(ZUCORE_HANDLE camera);
    /// Every camera function of it fails from now on (or no longer).
    void setLost(ZUCORE_HANDLE camera, bool lost);
    /// A camera of which the host has no parameter set.
    void removeParameterSet(ZUCORE_HANDLE camera);
    /// The host's own acquisition, with acquisitionStarted or acquisitionFinished.
    void setHostAcquisition(ZUCORE_HANDLE camera, bool running);
    void emitImageFormatChanged(ZUCORE_HANDLE camera);
    /// What zuCoreVersion answers; 9.8.7 at first.
    void setVersion(int major, int minor, int build);

    // Parameters ----------------------------------------------------------

    /// A parameter that the camera has. What lies behind selectors is named with
    /// their values: "device_unit_register_value[8,4096]" (unit, register),
    /// "dp_param_value[1,5,7]" (unit, processing block, parameter),
    /// "counter_value[3]". Maxima are parameters of their own, "NAME:max".
    void setValue(ZUCORE_HANDLE camera, const std::string &name, long long value);
    /// Current value; 0 when the camera lacks the parameter.
    long long value(ZUCORE_HANDLE camera, const std::string &name) const;
    /// Reads and writes of the name fail from now on.
    void removeValue(ZUCORE_HANDLE camera, const std::string &name);
    void setEnumItems(ZUCORE_HANDLE camera, const std::string &name,
                      const QList<CxCameraParam::CxEnumItem> &items);

    void fail(const Failure &failure);
    void clearFailures();

    // Captures ------------------------------------------------------------

    /// CounterFrames of 64 × 64 pixels at first.
    void setImageSource(ZUCORE_HANDLE camera, ImageSource source);
    /// Lets that many more captures succeed. A capture beyond waits: for more,
    /// for the end of streaming, for one of the two below. Then it fails.
    void deliver(ZUCORE_HANDLE camera, int frames);
    /// Ends waiting captures as soon as the condition holds; a waiting capture
    /// looks every millisecond. Called with the host's lock held. Captures of a
    /// camera without such a condition wait 20 ms at most, so that a stop ends.
    void endCapturesWhen(ZUCORE_HANDLE camera, std::function<bool()> condition);
    /// Ends waiting captures and lets none wait until streaming starts again.
    void releaseCaptures(ZUCORE_HANDLE camera);
    /// Waits for a capture that waits: everything delivered before has been
    /// dealt with by the capturing thread. False after 30 s.
    bool waitUntilStarved(ZUCORE_HANDLE camera);
    bool isStreaming(ZUCORE_HANDLE camera) const;

    // Record --------------------------------------------------------------

    std::vector<Call> calls() const;
    /// Texts of the camera functions called for one camera, or for any.
    std::vector<std::string> cameraCalls(ZUCORE_HANDLE camera = nullptr) const;
    void clearCalls();
    void record(Call call);
    /// Called as a camera function is entered, on its thread and without the
    /// host's lock; sees function, handle, name and a written value.
    void observe(std::function<void(const Call &)> observer);

    /// The library's own side.
    struct Private;
    Private &priv() { return *d; }

private:
    Host();
    ~Host();

    std::unique_ptr<Private> d;
};

/// Frames of transport data as a camera's counter pattern makes them: word w of
/// frame f is `firstStamp` + f × `ticksPerFrame` + w × `ticksPerWord`.
class Q_DECL_EXPORT CounterFrames
{
public:
    std::uint32_t width = 64;
    std::uint32_t height = 64;
    unsigned long long firstStamp = 1000;
    unsigned long long ticksPerWord = 5;
    unsigned long long ticksPerFrame = 2500000; ///< 10 ms
    std::uint32_t firstFrameNumber = 1;
    std::uint64_t firstMicroseconds = 1000000; ///< camera time stamp of the first frame
    std::uint64_t microsecondsPerFrame = 10000;

    bool operator()(ZU_IMG &image);

private:
    std::vector<unsigned long long> words;
    std::uint64_t frame = 0;
};

} // namespace scripted
