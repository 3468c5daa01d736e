#include "host/core/simulation/ParameterTable.h"

namespace host {

namespace {

using Choice = std::pair<const char *, int>;

constexpr Choice Formats[] = {{"RAW 8", 0},  {"RAW 16", 1}, {"MONO 8", 2}, {"MONO 16", 3},
                              {"RGB 24", 4}, {"RGB 32", 5}, {"RGB 48", 6}, {"Transport data", 7}};
constexpr Choice BitDepths[] = {{"8 bit", 8}, {"10 bit", 10}, {"12 bit", 12}, {"14 bit", 14}, {"16 bit", 16}};
constexpr Choice OffOn[] = {{"Off", 0}, {"On", 1}};
constexpr Choice BufferPolicies[] = {{"Unsafe", 0}, {"Safe", 1}};
constexpr Choice Generators[] = {{"Sensor", 0}, {"FPGA", 1}};
constexpr Choice Patterns[] = {{"Off", 0}, {"Black", 1}, {"White", 2}, {"Counter", 11}};
constexpr Choice ResetModes[] = {{"Once", 0}, {"Every time", 1}};
constexpr Choice ResetSources[] = {{"Off", 0}, {"Acquisition start", 19}};
constexpr Choice ProcessingUnits[] = {{"None", 0}, {"Frame buffer", 1}};
constexpr Choice DeviceUnits[] = {{"Camera", 0}, {"Transport", 1}, {"Link speed", 8}};
constexpr Choice Counters[] = {
    {"Transport skip", 0},          {"API skip", 1},       {"Transferred", 2}, {"Missed trigger overlap", 3},
    {"Missed trigger overflow", 4}, {"Buffer overflow", 5}};

constexpr char Image[] = "Image format";
constexpr char Acquisition[] = "Acquisition";
constexpr char Correction[] = "Image correction";
constexpr char Test[] = "Test pattern";
constexpr char Stamp[] = "Time stamp";
constexpr char Expert[] = "Expert";

// In the order of ParameterId.
constexpr ParameterTableEntry Table[] = {
    {ZU_PRM_IMAGE_DATA_FORMAT, Image, "", 0, 0, 0, Formats, true},
    {"width", Image, "px", 0, 1, 0, {}, true},
    {"height", Image, "px", 0, 1, 0, {}, true},
    {ZU_PRM_OUTPUT_DATA_BIT_DEPTH, Image, "", 8, 0, 0, BitDepths, true},
    {ZU_PRM_OUTPUT_DATA_PACKING, Image, "", 0, 0, 0, OffOn, true},
    {ZU_PRM_BUFFER_POLICY, Acquisition, "", 1, 0, 0, BufferPolicies, true},
    {ZU_PRM_RECENT_FRAME, Acquisition, "", 0, 0, 0, OffOn, false},
    {ZU_PRM_BUFFERS_QUEUE_SIZE, Acquisition, "", 4, 1, 0, {}, true},
    {ZU_PRM_COLUMN_FPN_CORRECTION, Correction, "", 1, 0, 0, OffOn, false},
    {ZU_PRM_ROW_FPN_CORRECTION, Correction, "", 1, 0, 0, OffOn, false},
    {ZU_PRM_LUT_ENABLE, Correction, "", 0, 0, 0, OffOn, false},
    {ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, Test, "", 0, 0, 0, Generators, false},
    {ZU_PRM_TEST_PATTERN, Test, "", 0, 0, 0, Patterns, true},
    {ZU_PRM_TS_RST_MODE, Stamp, "", 0, 0, 0, ResetModes, false},
    {ZU_PRM_TS_RST_SOURCE, Stamp, "", 0, 0, 0, ResetSources, false},
    {ZU_PRM_DP_UNIT_SELECTOR, Expert, "", 0, 0, 0, ProcessingUnits, false},
    {ZU_PRM_DP_PROC_SELECTOR, Expert, "", 0, 0, 15, {}, false},
    {ZU_PRM_DP_PARAM_SELECTOR, Expert, "", 0, 0, 255, {}, false},
    {ZU_PRM_DP_PARAM_VALUE, Expert, "", 0, 0, 0, {}, true},
    {ZU_PRM_DEVICE_UNIT_SELECTOR, Expert, "", 0, 0, 0, DeviceUnits, false},
    {ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, Expert, "", 0, 0, 65535, {}, false},
    {ZU_PRM_DEVICE_UNIT_REGISTER_VALUE, Expert, "", 0, 0, 0, {}, false},
    {ZU_PRM_COUNTER_SELECTOR, Expert, "", 0, 0, 0, Counters, false},
    {ZU_PRM_COUNTER_VALUE, Expert, "", 0, 0, 0x7fffffff, {}, false},
};
static_assert(std::size(Table) == static_cast<std::size_t>(ParameterId::Count));

} // namespace

const ParameterTableEntry &parameterTableEntry(ParameterId id)
{
    return Table[static_cast<std::size_t>(id)];
}

bool isParameterName(std::string_view name)
{
    for (const ParameterTableEntry &entry : Table) {
        if (name == entry.name)
            return true;
    }
    return false;
}

} // namespace host
