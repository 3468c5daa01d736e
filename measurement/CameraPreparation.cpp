#include "measurement/CameraLineData.h"

#include "measurement/Log.h"

#include <QByteArray>

#include <initializer_list>

namespace {

using Line = CxCameraLineData;

/// Reported for a camera whose internal frame buffer has no readable size.
constexpr quint64 fallbackBufferSize = 32768;

struct ParamValue
{
    const char *name;
    int value;
};

struct RequiredValue
{
    ParamValue param;
    const char *failure;
};

bool readParam(void *camera, const char *name, int &value)
{
    return zuApi_GetParamInt(camera, name, value, nullptr);
}

bool writeParam(void *camera, const ParamValue &param)
{
    return zuApi_SetParamInt(camera, param.name, param.value, nullptr);
}

/// Writes one value after the other and stops at the first that fails: a value
/// written behind a selector that was not set would land elsewhere.
bool writeInOrder(void *camera, std::initializer_list<ParamValue> params)
{
    for (const ParamValue &param : params) {
        if (!writeParam(camera, param))
            return false;
    }
    return true;
}

/// Writes them all, whatever becomes of each: putting a camera back goes as far
/// as the camera allows.
void writeAll(void *camera, std::initializer_list<ParamValue> params)
{
    for (const ParamValue &param : params)
        writeParam(camera, param);
}

bool selectFrameBufferParam(void *camera, int param)
{
    return writeInOrder(camera, {{ZU_PRM_DP_UNIT_SELECTOR, ZU_DP_UNIT_FRAMEBUF},
                                 {ZU_PRM_DP_PROC_SELECTOR, ZU_DP_PROC_FRAMEBUF},
                                 {ZU_PRM_DP_PARAM_SELECTOR, param}});
}

constexpr char setupMethod[] = "CxCameraLineData::setupCameraParameters";

bool setupFailed(const char *failure, CxLogPlace caller = CxLogPlace::current())
{
    cxLogFailure(setupMethod, failure, caller);
    return false;
}

bool setRequired(void *camera, std::initializer_list<RequiredValue> values,
                 CxLogPlace caller = CxLogPlace::current())
{
    for (const RequiredValue &value : values) {
        if (!writeParam(camera, value.param))
            return setupFailed(value.failure, caller);
    }
    return true;
}

constexpr RequiredValue unsafeBufferPolicy = {{ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE},
                                              "zuApi_SetParamInt(ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE) failed"};

/// Words of the link instead of pixels, and nothing that would change them.
bool setTransportDataFormat(Line &line)
{
    void *camera = line.cameraHandle;
    // A parameter that a camera lacks keeps its slot's last value; writing that
    // back later fails as silently.
    readParam(camera, ZU_PRM_IMAGE_DATA_FORMAT, line.savedParams[Line::SavedImageDataFormat]);
    readParam(camera, ZU_PRM_OUTPUT_DATA_BIT_DEPTH, line.savedParams[Line::SavedOutputBitDepth]);
    readParam(camera, ZU_PRM_OUTPUT_DATA_PACKING, line.savedParams[Line::SavedOutputBitPacking]);
    readParam(camera, ZU_PRM_BUFFER_POLICY, line.savedParams[Line::SavedBufferPolicy]);
    readParam(camera, ZU_PRM_COLUMN_FPN_CORRECTION, line.savedParams[Line::SavedColumnFpnCorrection]);
    readParam(camera, ZU_PRM_ROW_FPN_CORRECTION, line.savedParams[Line::SavedRowFpnCorrection]);
    readParam(camera, ZU_PRM_LUT_ENABLE, line.savedParams[Line::SavedLutEnable]);

    const bool formatSet = setRequired(
        camera,
        {unsafeBufferPolicy,
         {{ZU_PRM_IMAGE_DATA_FORMAT, ZU_FRM_TRANSPORT_DATA},
          "zuApi_SetParamInt(ZU_PRM_IMAGE_DATA_FORMAT, ZU_FRM_TRANSPORT_DATA) failed"},
         {{ZU_PRM_OUTPUT_DATA_BIT_DEPTH, ZU_BPP_16},
          "zuApi_SetParamInt(ZU_PRM_OUTPUT_DATA_BIT_DEPTH, ZU_BPP_16) failed"},
         {{ZU_PRM_OUTPUT_DATA_PACKING, 0}, "zuApi_SetParamInt(ZU_PRM_OUTPUT_DATA_PACKING, 0) failed"}});
    if (!formatSet)
        return false;

    writeParam(camera, {ZU_PRM_COLUMN_FPN_CORRECTION, 0});
    writeParam(camera, {ZU_PRM_ROW_FPN_CORRECTION, 0});
    writeParam(camera, {ZU_PRM_LUT_ENABLE, 0});
    return true;
}

bool setCounterPattern(Line &line)
{
    void *camera = line.cameraHandle;
    if (!readParam(camera, ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR,
                   line.savedParams[Line::SavedTestPatternGeneratorSelector]))
        return setupFailed("zuApi_GetParamInt(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR) failed");
    if (!setRequired(camera, {{{ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, ZU_TESTPAT_GEN_FPGA},
                               "zuApi_SetParamInt(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, "
                               "ZU_TESTPAT_GEN_FPGA) failed"}}))
        return false;
    if (!readParam(camera, ZU_PRM_TEST_PATTERN, line.savedParams[Line::SavedTestPattern]))
        return setupFailed("zuApi_GetParamInt(ZU_PRM_TEST_PATTERN) failed");
    return setRequired(camera,
                       {{{ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER},
                         "zuApi_SetParamInt(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER) failed"}});
}

bool setupThroughput(Line &line)
{
    void *camera = line.cameraHandle;
    if (!setTransportDataFormat(line) || !setCounterPattern(line))
        return false;

    // Cameras without an internal frame buffer lack the selectors.
    line.frameBufModeChanged = false;
    if (selectFrameBufferParam(camera, ZU_DP_PARAM_FRAMEBUF_MODE)) {
        line.frameBufModeChanged =
            writeParam(camera, {ZU_PRM_DP_PARAM_VALUE, ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED});
        if (!line.frameBufModeChanged)
            cxLogFailure(
                setupMethod,
                "zuApi_SetParamInt(ZU_PRM_DP_PARAM_VALUE, ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED) failed");
    }
    if (writeInOrder(camera, {{ZU_PRM_DEVICE_UNIT_SELECTOR, ZU_DEVICE_UNIT_TRANSPORT},
                              {ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, ZU_DEVICE_REG_TRANSPORT},
                              {ZU_PRM_DEVICE_UNIT_REGISTER_VALUE, ZU_DEVICE_REG_TRANSPORT_MEASURE}}))
        line.deviceRegChanged = true;
    if (line.autoInternalBuffSize)
        line.internalBuffSize = line.readInternalCameraBufferSize();
    return true;
}

/// Every frame is to arrive, in order and without waiting for a full queue.
bool setupAcquisition(Line &line)
{
    void *camera = line.cameraHandle;
    const QByteArray settable = QByteArray(ZU_PRM_COUNTER_SELECTOR) + ZU_PRM_SUFFIX_SETTABLE;
    const QList<Line::CxCounterInfo *> &counters = line.counterInfos;
    for (Line::CxCounterInfo *counter : counters)
        counter->supported = writeParam(camera, {settable.constData(), counter->selector});

    readParam(camera, ZU_PRM_BUFFER_POLICY, line.savedParams[Line::SavedBufferPolicy]);
    if (!setRequired(camera, {unsafeBufferPolicy}))
        return false;
    readParam(camera, ZU_PRM_RECENT_FRAME, line.savedParams[Line::SavedRecentFrame]);
    writeParam(camera, {ZU_PRM_RECENT_FRAME, 0});

    int &savedQueueSize = line.savedParams[Line::SavedBuffersQueueSize];
    savedQueueSize = 0;
    readParam(camera, ZU_PRM_BUFFERS_QUEUE_SIZE, savedQueueSize);
    const QByteArray maximum = QByteArray(ZU_PRM_BUFFERS_QUEUE_SIZE) + ZU_PRM_SUFFIX_MAX;
    int longestQueue = 0;
    if (readParam(camera, maximum.constData(), longestQueue))
        writeParam(camera, {ZU_PRM_BUFFERS_QUEUE_SIZE, longestQueue});
    return true;
}

/// The format goes back in the reverse order of its setting: a camera refuses
/// a data format that does not go with the current depth and packing.
void restoreThroughput(const Line &line)
{
    void *camera = line.cameraHandle;
    const auto &saved = line.savedParams;
    if (line.deviceRegChanged)
        writeAll(camera, {{ZU_PRM_DEVICE_UNIT_SELECTOR, ZU_DEVICE_UNIT_TRANSPORT},
                          {ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, ZU_DEVICE_REG_TRANSPORT},
                          {ZU_PRM_DEVICE_UNIT_REGISTER_VALUE, ZU_DEVICE_REG_TRANSPORT_DEFAULT}});

    writeAll(camera,
             {{ZU_PRM_TEST_PATTERN, saved[Line::SavedTestPattern]},
              {ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, saved[Line::SavedTestPatternGeneratorSelector]},
              {ZU_PRM_OUTPUT_DATA_PACKING, saved[Line::SavedOutputBitPacking]},
              {ZU_PRM_OUTPUT_DATA_BIT_DEPTH, saved[Line::SavedOutputBitDepth]},
              {ZU_PRM_IMAGE_DATA_FORMAT, saved[Line::SavedImageDataFormat]},
              {ZU_PRM_BUFFER_POLICY, saved[Line::SavedBufferPolicy]},
              {ZU_PRM_COLUMN_FPN_CORRECTION, saved[Line::SavedColumnFpnCorrection]},
              {ZU_PRM_ROW_FPN_CORRECTION, saved[Line::SavedRowFpnCorrection]},
              {ZU_PRM_LUT_ENABLE, saved[Line::SavedLutEnable]}});

    if (line.frameBufModeChanged)
        writeAll(camera, {{ZU_PRM_DP_UNIT_SELECTOR, ZU_DP_UNIT_FRAMEBUF},
                          {ZU_PRM_DP_PROC_SELECTOR, ZU_DP_PROC_FRAMEBUF},
                          {ZU_PRM_DP_PARAM_SELECTOR, ZU_DP_PARAM_FRAMEBUF_MODE},
                          {ZU_PRM_DP_PARAM_VALUE, ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED}});
}

void restoreAcquisition(const Line &line)
{
    void *camera = line.cameraHandle;
    const auto &saved = line.savedParams;
    if (saved[Line::SavedBuffersQueueSize] > 0)
        writeParam(camera, {ZU_PRM_BUFFERS_QUEUE_SIZE, saved[Line::SavedBuffersQueueSize]});
    writeParam(camera, {ZU_PRM_BUFFER_POLICY, saved[Line::SavedBufferPolicy]});
    writeParam(camera, {ZU_PRM_RECENT_FRAME, saved[Line::SavedRecentFrame]});
}

} // namespace

bool CxCameraLineData::setupCameraParameters()
{
    switch (measureMode) {
    case MeasureModeThroughput:
        return setupThroughput(*this);
    case MeasureModeAcquisition:
        return setupAcquisition(*this);
    }
    return setupFailed("Unknown measurement mode");
}

void CxCameraLineData::restoreCameraParameters()
{
    switch (measureMode) {
    case MeasureModeThroughput:
        restoreThroughput(*this);
        break;
    case MeasureModeAcquisition:
        restoreAcquisition(*this);
        break;
    }
}

void CxCameraLineData::readDefaultAvgTransportSpeed()
{
    constexpr char method[] = "CxCameraLineData::readDefaultAvgTransportSpeed";

    int savedUnit = 0;
    int savedRegister = 0;
    if (!readParam(cameraHandle, ZU_PRM_DEVICE_UNIT_SELECTOR, savedUnit) ||
        !readParam(cameraHandle, ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, savedRegister))
        cxLogFailure(method, "Failed to read current device unit confiuration");

    int speed = -1;
    const bool read =
        writeInOrder(cameraHandle, {{ZU_PRM_DEVICE_UNIT_SELECTOR, ZU_DEVICE_UNIT_SPEED},
                                    {ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, ZU_DEVICE_REG_AVG_SPEED}}) &&
        readParam(cameraHandle, ZU_PRM_DEVICE_UNIT_REGISTER_VALUE, speed);
    if (read && speed > 0)
        avgTransportSpeedMBps = static_cast<unsigned int>(speed);

    if (!writeInOrder(cameraHandle, {{ZU_PRM_DEVICE_UNIT_SELECTOR, savedUnit},
                                     {ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, savedRegister}}))
        cxLogFailure(method, "Failed to change back current device unit configuration");
}

quint64 CxCameraLineData::readInternalCameraBufferSize()
{
    unsigned long long size = 0;
    if (selectFrameBufferParam(cameraHandle, ZU_DP_PARAM_FRAMEBUF_SIZE) &&
        zuApi_GetParamInt64(cameraHandle, ZU_PRM_DP_PARAM_VALUE, size, nullptr))
        return size;
    return fallbackBufferSize;
}
