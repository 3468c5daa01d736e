#pragma once

#include "measurement/FrameOutline.h"
#include "measurement/RecordList.h"

#include "zuCore/ZuApi.h"

#include <QElapsedTimer>
#include <QList>
#include <QMutex>
#include <QString>

#include <array>
#include <atomic>
#include <limits>
#include <optional>

class CxAcquisitionThread;
class QCPGraph;
class QCPRange;
class QWidget;

/// What a measurement records.
enum MeasureMode : int {
    MeasureModeThroughput = 0,  ///< stamps of transport data, one CxFrameData a frame
    MeasureModeAcquisition = 1, ///< the camera's counters, one CxCounterData a frame
};

/// Which of a record's two time stamps places it on the time axis.
enum ExTimestampOrigin : int {
    TimestampOriginCamera = 0,
    TimestampOriginComputer = 1,
};

/// The measurement engine of one camera: its settings, the records of its
/// frames, and the thread that captures them.
///
/// All time stamps are signed microseconds since local midnight at the start of
/// the run. Throughput is in bytes a microsecond, shown as MB/s.
///
/// Threads: the owner (GUI) thread starts, stops and reads; the acquisition
/// thread appends records and updates the statistics. `mutex` guards the record
/// lists, the statistics and the start and stop transitions; settings and
/// `savedParams` belong to the owner's thread. A setting that the owner edits
/// while a measurement runs is written under `mutex`, because the thread reads
/// it as it begins. The object must not be destroyed before stopMeasurement(),
/// nor while its records are exported: discard() sees to both.
class CxCameraLineData
{
public:
    /// One frame's samples in throughput mode.
    class CxFrameData
    {
    public:
        CxFrameData() = default;
        ~CxFrameData();
        CxFrameData(const CxFrameData &) = delete;
        CxFrameData &operator=(const CxFrameData &) = delete;

        /// The computer's time stamp for TimestampOriginComputer, the camera's
        /// for every other value.
        qint64 frameTimestamp(ExTimestampOrigin origin) const;

        /// Gives the record room for `count` samples, in one block of memory with
        /// what the throughput model keeps of them.
        void allocateSamples(quint64 count);
        /// Tells the throughput model of the samples, all of which are there, so
        /// that no pass has to look at all of them under the engine's mutex.
        /// Left out, as for records that were not captured, the first pass does it;
        /// as it does for the level of the buffer where the samples are few.
        /// \param settings with which the graphs will probably be computed
        void describeSamples(const measurement::throughput::LevelKey &settings);

        /// Link throughput, buffer change and end time of each sample interval.
        ///
        /// Equal neighbouring stamps are skipped; a stamp that steps back gives
        /// a huge interval, because differences are unsigned.
        /// \param sampleInterval bytes between two stamps
        /// \param requiredMBps what the sensor produces, bytes a microsecond
        /// \param linkSpeeds MB/s; \param bufferDeltas bytes;
        /// \param sampleTimes microseconds since the first stamp. Each may be
        /// null; each must hold sampleCount - 1 entries otherwise.
        /// \return the number of entries written
        unsigned int calculateFrameSpeeds(unsigned int sampleInterval, int requiredMBps, double *linkSpeeds,
                                          double *bufferDeltas, unsigned long long *sampleTimes) const;

        qint64 computerTimestamp = 0; ///< microseconds, see the class
        quint64 frameNumber = 0;      ///< the camera's frame counter
        qint64 cameraTimestamp = 0;   ///< microseconds, see the class
        /// Stamps of 4 ns; owned, from new[]. They stay as they are once a pass
        /// of the throughput model has seen them.
        quint64 *samples = nullptr;
        quint64 sampleCount = 0;
        qint64 sampleSpan = 0; ///< last stamp minus first, 4-ns ticks; 0 for fewer than two

        measurement::throughput::FrameOutline outline; ///< of the samples

    private:
        measurement::throughput::BlockOutline *blocks = nullptr; ///< behind the samples
    };

    /// One frame's counters in acquisition mode.
    class CxCounterData
    {
    public:
        qint64 frameTimestamp(ExTimestampOrigin origin) const;

        qint64 computerTimestamp = 0;
        quint64 frameNumber = 0;
        qint64 cameraTimestamp = 0;
        qint32 transportSkip = 0;
        qint32 apiSkip = 0;
        qint32 missedTrgOverlap = 0;
        qint32 missedTrgOverflow = 0;
        qint32 bufferOverflow = 0;
    };

    /// One counter of the camera and its last reading.
    class CxCounterInfo
    {
    public:
        CxCounterInfo(ZU_COUNTER_SELECTOR counter, const QString &displayName);

        ZU_COUNTER_SELECTOR selector;
        bool supported = false;       ///< found out when an acquisition-mode measurement is set up
        std::atomic<qint32> value{0}; ///< last reading; written by the acquisition thread
        QString name;
    };

    CxCameraLineData();
    ~CxCameraLineData();
    CxCameraLineData(const CxCameraLineData &) = delete;
    CxCameraLineData &operator=(const CxCameraLineData &) = delete;

    /// Deletes all records and frees the scratch arrays. The caller holds
    /// `mutex` when a thread may run, and has no export running. Statistics and
    /// counters stay.
    void clearData();

    /// Gives each of the three scratch arrays `count` elements of undefined
    /// content; does nothing in acquisition mode or when they have that size.
    bool AllocateBuffers(unsigned int count);

    bool isMeasurementRunning();

    /// Stops the engine's measurement and deletes the engine; if its records are
    /// being exported, cancels that, and does both when the file is closed.
    static void discard(CxCameraLineData *line);

    /// Prepares the camera, starts streaming and the acquisition thread.
    /// \param interval bytes between two samples of a frame
    /// \param capacity samples to keep (records in acquisition mode)
    /// \return false when there is no camera, it measures already or the records
    /// are being exported; false with the camera restored and the reason in the
    /// log when it cannot be prepared or does not stream
    bool startMeasurement(unsigned int interval, long long capacity);

    /// Ends the thread (waits for its current capture, at most about 5 s),
    /// stops streaming and restores the camera.
    /// \return false when nothing runs, a stop is under way or the records are
    /// being exported
    bool stopMeasurement();

    /// Switches the camera into the state that `measureMode` needs, saving what
    /// it changes. Called with `mutex` held.
    bool setupCameraParameters();
    /// Writes back what setupCameraParameters() saved. Called with `mutex` held.
    void restoreCameraParameters();

    /// Reads the link's default speed into `avgTransportSpeedMBps`; the member
    /// stays as it is when the camera has none. Called with `mutex` held when a
    /// measurement may be running.
    void readDefaultAvgTransportSpeed();
    /// Size of the camera's internal frame buffer in bytes, 32768 when unknown.
    quint64 readInternalCameraBufferSize();

    /// The capture loops; run on the acquisition thread until `stopRequested`.
    void runMeasureLoopThrougput();
    void runMeasureLoopAcquisition();

    /// Reads every supported counter from the camera into its `value`.
    void ReadCounterValues();
    bool IsCounterSupported(ZU_COUNTER_SELECTOR selector) const;
    /// Last reading of a counter, 0 when there is none. Takes `mutex`.
    int GetCounterValue(ZU_COUNTER_SELECTOR selector);

    /// Computes the four statistics below over the frames around [from, to] and,
    /// given a time axis, adds one point per pixel column to the graphs. Holds
    /// `mutex` for the whole pass; what has to be found out about many records
    /// first is done in several holds, see ThroughputEngine.h.
    /// \param minThroughputGraph, bufferLevelGraph may each be null
    /// \param timeAxisRange seconds; its upper bound is added to every x value.
    /// Null: statistics only
    /// \param from, to visible window, microseconds on the chosen time stamp
    /// \param msPerPixel width of a pixel column in milliseconds; 0 draws all
    /// \param resetBufferLevel start every frame with an empty buffer
    /// \return true when at least one frame was processed
    bool calculateGraphsThrougput(QCPGraph *minThroughputGraph, QCPGraph *bufferLevelGraph,
                                  const QCPRange *timeAxisRange, long long from, long long to,
                                  ExTimestampOrigin origin, double msPerPixel, bool resetBufferLevel);

    /// The same pass without graphs; needs no plotting library.
    bool calculateStatisticsThroughput(long long from, long long to, ExTimestampOrigin origin,
                                       bool resetBufferLevel);

    /// Adds the camera's counters, one point per pixel column, and the frame rate
    /// of all records, one point a second, to the graphs. Holds `mutex` for the
    /// whole pass. Graphs may each be null; the rest as above, except that
    /// `timeAxisRange` must not be null.
    /// \return false when there is no record, or while the records are exported
    bool calculateGraphsAcquisition(QCPGraph *transportSkipGraph, QCPGraph *apiSkipGraph,
                                    QCPGraph *missedTrgOverlapGraph, QCPGraph *missedTrgOverflowGraph,
                                    QCPGraph *bufferOverflowGraph, QCPGraph *fpsGraph,
                                    const QCPRange *timeAxisRange, long long from, long long to,
                                    ExTimestampOrigin origin, double msPerPixel);

    /// Writes the records of [from, to] to a file of comma-separated values and
    /// shows the progress in a modal dialog; closing that ends the export, and
    /// the rows written so far stay.
    ///
    /// Runs on the GUI thread with `mutex` held, and lets events in about twenty
    /// times a second: see CxExportGate for what their handlers have to mind.
    /// Until it returns, this engine neither starts nor stops nor computes.
    /// `parent` may be deleted meanwhile, which ends the export.
    /// \param from, to microseconds on the chosen time stamp, both included
    /// \param resetBufferLevel start every frame with an empty buffer
    /// \return whether the file could be opened. The reason why it could not, or
    /// why it could not be written to its end, is in the log.
    bool exportDataToFile(const QString &fileName, QWidget *parent, long long from, long long to,
                          ExTimestampOrigin origin, bool resetBufferLevel);

    /// Indices into `savedParams`.
    enum ExSavedParam : int {
        SavedImageDataFormat,
        SavedOutputBitDepth,
        SavedOutputBitPacking,
        SavedBufferPolicy,
        SavedColumnFpnCorrection,
        SavedRowFpnCorrection,
        SavedLutEnable,
        SavedTestPatternGeneratorSelector,
        SavedTestPattern,
        SavedRecentFrame,
        SavedBuffersQueueSize,
        SavedParamCount,
    };

    ZUCORE_HANDLE cameraHandle = nullptr; ///< null: no camera, starts do nothing
    QString cameraName;                   ///< for the user
    QElapsedTimer elapsedTimer;           ///< started with each measurement loop

    measurement::RecordList<CxFrameData> frames;        ///< owned, oldest first
    measurement::RecordList<CxCounterData> counterData; ///< owned, oldest first
    QList<CxCounterInfo *> counterInfos;                ///< owned, fixed

    MeasureMode measureMode = MeasureModeThroughput;
    unsigned int sampleInterval = 4096; ///< bytes between two samples of a frame
    long long maxSamples = 3000000;     ///< capacity in samples, or in records
    quint64 internalBuffSize = 0;       ///< bytes
    bool autoInternalBuffSize = true;   ///< read the size from the camera at every setup
    bool plotEnabled = true;            ///< the camera's curves are drawn

    double *linkSpeedBuf = nullptr;   ///< scratch, MB/s; owned, from new[]
    double *bufferDeltaBuf = nullptr; ///< scratch, bytes; owned, from new[]
    quint64 *sampleTimeBuf = nullptr; ///< scratch, microseconds; owned, from new[]

    unsigned int avgTransportSpeedMBps = 0; ///< required throughput, MB/s
    bool autoTransportSpeed = true;         ///< read it from the camera at every start

    /// Running statistics of the run: the frame's span in microseconds
    /// (throughput) or the time between two frames (acquisition).
    double statAvg = 0.0;
    double statMax = std::numeric_limits<double>::min();
    double statMin = std::numeric_limits<double>::max();
    quint64 statCount = 0;

    quint64 calcBufSize = 0; ///< elements in each scratch array

    std::array<int, SavedParamCount> savedParams{};
    bool frameBufModeChanged = false; ///< setup bypassed the camera's frame buffer
    bool deviceRegChanged = false;    ///< setup wrote the transport register; never cleared

    /// Results of the last pass of the throughput model.
    double avgThroughput = 0.0;      ///< MB/s, mean of the frames' mean rates
    double minThroughput = 0.0;      ///< MB/s; the largest double when no interval was seen
    double maxBufferLevel = 0.0;     ///< percent of internalBuffSize
    quint64 bufferOverflowCount = 0; ///< frames in which the modelled buffer ran over

    QMutex mutex;
    std::atomic<bool> running{false};
    std::atomic<bool> stopRequested{false};
    CxAcquisitionThread *acquisitionThread = nullptr; ///< owned while a measurement runs

    /// Whether the calling thread is exporting the records: it has `mutex` for
    /// all that time, and nothing that it calls may lock it again. Any thread.
    bool isExporting() const;

private:
    /// What the modelled level of the buffer depends on. Under `mutex`.
    measurement::throughput::LevelKey levelKey() const;

    std::atomic<Qt::HANDLE> exportingThread{nullptr};
    bool discarded = false; ///< to be deleted when the export ends
    /// Mode of the running measurement: what its stop has to put back.
    std::optional<MeasureMode> startedMode;
};
