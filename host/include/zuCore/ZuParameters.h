#pragma once

/// Camera parameter names and the values that are written to them by number.
///
/// A name may carry one of two suffixes: ZU_PRM_SUFFIX_MAX reads the
/// parameter's maximum, ZU_PRM_SUFFIX_SETTABLE turns a write into the question
/// whether the value would be accepted.

inline constexpr char ZU_PRM_SUFFIX_MAX[] = ":max";
inline constexpr char ZU_PRM_SUFFIX_SETTABLE[] = ":settable";

inline constexpr char ZU_PRM_BUFFER_POLICY[] = "buffer_policy";
inline constexpr char ZU_PRM_IMAGE_DATA_FORMAT[] = "imgdataformat";
inline constexpr char ZU_PRM_OUTPUT_DATA_BIT_DEPTH[] = "output_bit_depth";
inline constexpr char ZU_PRM_OUTPUT_DATA_PACKING[] = "output_bit_packing";
inline constexpr char ZU_PRM_COLUMN_FPN_CORRECTION[] = "column_fpn_correction";
inline constexpr char ZU_PRM_ROW_FPN_CORRECTION[] = "row_fpn_correction";
inline constexpr char ZU_PRM_LUT_ENABLE[] = "LUTEnable";
inline constexpr char ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR[] = "test_pattern_generator_selector";
inline constexpr char ZU_PRM_TEST_PATTERN[] = "test_pattern";

/// Data-processing unit: unit, processing block and parameter are selected
/// first, then the value is read or written.
inline constexpr char ZU_PRM_DP_UNIT_SELECTOR[] = "dp_unit_selector";
inline constexpr char ZU_PRM_DP_PROC_SELECTOR[] = "dp_proc_selector";
inline constexpr char ZU_PRM_DP_PARAM_SELECTOR[] = "dp_param_selector";
inline constexpr char ZU_PRM_DP_PARAM_VALUE[] = "dp_param_value";

/// Device registers: unit and register are selected first.
inline constexpr char ZU_PRM_DEVICE_UNIT_SELECTOR[] = "device_unit_selector";
inline constexpr char ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR[] = "device_unit_register_selector";
inline constexpr char ZU_PRM_DEVICE_UNIT_REGISTER_VALUE[] = "device_unit_register_value";

inline constexpr char ZU_PRM_RECENT_FRAME[] = "recent_frame";
inline constexpr char ZU_PRM_BUFFERS_QUEUE_SIZE[] = "buffers_queue_size";
inline constexpr char ZU_PRM_COUNTER_SELECTOR[] = "counter_selector";
inline constexpr char ZU_PRM_COUNTER_VALUE[] = "counter_value";
inline constexpr char ZU_PRM_TS_RST_MODE[] = "ts_rst_mode";
inline constexpr char ZU_PRM_TS_RST_SOURCE[] = "ts_rst_source";

/// "buffer_policy": frames are handed out in the acquisition's own buffers.
inline constexpr int ZU_BP_UNSAFE = 0;
/// "imgdataformat": the words of the link as they came, two bytes a pixel.
inline constexpr int ZU_FRM_TRANSPORT_DATA = 7;
/// "output_bit_depth": 16 bits a pixel.
inline constexpr int ZU_BPP_16 = 16;
/// "test_pattern_generator_selector": the generator behind the sensor.
inline constexpr int ZU_TESTPAT_GEN_FPGA = 1;
/// "test_pattern": 64-bit stamps counting 4-ns ticks.
inline constexpr int ZU_TESTPAT_DEVICE_SPEC_COUNTER = 11;
/// "dp_param_value" of the frame-buffer mode.
inline constexpr int ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED = 9;
inline constexpr int ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED = 10;

/// Processing unit, block and parameters of the internal frame buffer.
inline constexpr int ZU_DP_UNIT_FRAMEBUF = 1;
inline constexpr int ZU_DP_PROC_FRAMEBUF = 5;
inline constexpr int ZU_DP_PARAM_FRAMEBUF_MODE = 6;
/// Size of the internal frame buffer in bytes (64-bit, read only).
inline constexpr int ZU_DP_PARAM_FRAMEBUF_SIZE = 7;

/// Register written while transport data is measured, and its two values.
inline constexpr int ZU_DEVICE_UNIT_TRANSPORT = 1;
inline constexpr int ZU_DEVICE_REG_TRANSPORT = 55;
inline constexpr int ZU_DEVICE_REG_TRANSPORT_MEASURE = 25000;
inline constexpr int ZU_DEVICE_REG_TRANSPORT_DEFAULT = 1;

/// Register that holds the default average transport speed in MB/s.
inline constexpr int ZU_DEVICE_UNIT_SPEED = 8;
inline constexpr int ZU_DEVICE_REG_AVG_SPEED = 4096;

/// "ts_rst_mode" and "ts_rst_source" written before every measurement: the
/// camera's time stamp restarts at 0 when the acquisition starts.
inline constexpr int ZU_TS_RST_MODE_ONCE = 0;
inline constexpr int ZU_TS_RST_SOURCE_ACQUISITION = 19;

/// Values of "counter_selector".
enum ZU_COUNTER_SELECTOR : int {
    ZU_CNT_SEL_TRANSPORT_SKIP = 0,      ///< frames lost on the transport layer
    ZU_CNT_SEL_API_SKIP = 1,            ///< frames the host did not fetch in time
    ZU_CNT_SEL_TRANSFERRED = 2,         ///< frames handed to the host
    ZU_CNT_SEL_MISSED_TRG_OVERLAP = 3,  ///< triggers during the readout of the frame before
    ZU_CNT_SEL_MISSED_TRG_OVERFLOW = 4, ///< triggers while the frame buffer was full
    ZU_CNT_SEL_BUFFER_OVERFLOW = 5,     ///< frames that overran the frame buffer
};
