#include "tests/measurement/PreparationSteps.h"

namespace {

const QList<Step> throughputSteps = {
    {"get imgdataformat 2", Step::Ignored, 0, nullptr},
    {"get output_bit_depth 8", Step::Ignored, 0, nullptr},
    {"get output_bit_packing 3", Step::Ignored, 0, nullptr},
    {"get buffer_policy 1", Step::Ignored, 0, nullptr},
    {"get column_fpn_correction 1", Step::Ignored, 0, nullptr},
    {"get row_fpn_correction 4", Step::Ignored, 0, nullptr},
    {"get LUTEnable 5", Step::Ignored, 0, nullptr},
    {"set buffer_policy 0", Step::Fatal, 0, "zuApi_SetParamInt(ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE) failed"},
    {"set imgdataformat 7", Step::Fatal, 0,
     "zuApi_SetParamInt(ZU_PRM_IMAGE_DATA_FORMAT, ZU_FRM_TRANSPORT_DATA) failed"},
    {"set output_bit_depth 16", Step::Fatal, 0,
     "zuApi_SetParamInt(ZU_PRM_OUTPUT_DATA_BIT_DEPTH, ZU_BPP_16) failed"},
    {"set output_bit_packing 0", Step::Fatal, 0, "zuApi_SetParamInt(ZU_PRM_OUTPUT_DATA_PACKING, 0) failed"},
    {"set column_fpn_correction 0", Step::Ignored, 0, nullptr},
    {"set row_fpn_correction 0", Step::Ignored, 0, nullptr},
    {"set LUTEnable 0", Step::Ignored, 0, nullptr},
    {"get test_pattern_generator_selector 6", Step::Fatal, 0,
     "zuApi_GetParamInt(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR) failed"},
    {"set test_pattern_generator_selector 1", Step::Fatal, 0,
     "zuApi_SetParamInt(ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, ZU_TESTPAT_GEN_FPGA) failed"},
    {"get test_pattern 9", Step::Fatal, 0, "zuApi_GetParamInt(ZU_PRM_TEST_PATTERN) failed"},
    {"set test_pattern 11", Step::Fatal, 0,
     "zuApi_SetParamInt(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER) failed"},
    {"set dp_unit_selector 1", Step::Skips, 22, nullptr},
    {"set dp_proc_selector 5", Step::Skips, 22, nullptr},
    {"set dp_param_selector 6", Step::Skips, 22, nullptr},
    {"set dp_param_value 9", Step::Ignored, 0,
     "zuApi_SetParamInt(ZU_PRM_DP_PARAM_VALUE, ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED) failed"},
    {"set device_unit_selector 1", Step::Skips, 25, nullptr}, // number 22
    {"set device_unit_register_selector 55", Step::Skips, 25, nullptr},
    {"set device_unit_register_value 25000", Step::Skips, 25, nullptr},
    {"set dp_unit_selector 1", Step::Skips, 29, nullptr}, // number 25
    {"set dp_proc_selector 5", Step::Skips, 29, nullptr},
    {"set dp_param_selector 7", Step::Skips, 29, nullptr},
    {"get64 dp_param_value 67108864", Step::Ignored, 0, nullptr},
};

const QList<Step> acquisitionSteps = {
    {"set counter_selector:settable 0", Step::Ignored, 0, nullptr},
    {"set counter_selector:settable 1", Step::Ignored, 0, nullptr},
    {"set counter_selector:settable 2", Step::Ignored, 0, nullptr},
    {"set counter_selector:settable 3", Step::Ignored, 0, nullptr},
    {"set counter_selector:settable 4", Step::Ignored, 0, nullptr},
    {"set counter_selector:settable 5", Step::Ignored, 0, nullptr},
    {"get buffer_policy 1", Step::Ignored, 0, nullptr},
    {"set buffer_policy 0", Step::Fatal, 0, "zuApi_SetParamInt(ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE) failed"},
    {"get recent_frame 1", Step::Ignored, 0, nullptr},
    {"set recent_frame 0", Step::Ignored, 0, nullptr},
    {"get buffers_queue_size 14", Step::Ignored, 0, nullptr},
    {"get buffers_queue_size:max 64", Step::Skips, 13, nullptr},
    {"set buffers_queue_size 64", Step::Ignored, 0, nullptr},
};

/// "set NAME VALUE" with the value that the setup read, 0 when it read none.
QString writeBack(const QStringList &setup, const char *name)
{
    const QString read = QStringLiteral("get %1 ").arg(QLatin1String(name));
    QString value = QStringLiteral("0");
    for (const QString &call : setup) {
        if (call.startsWith(read) && !call.endsWith(QLatin1String("failed")))
            value = call.mid(read.size());
    }
    return QStringLiteral("set %1 %2").arg(QLatin1String(name), value);
}

} // namespace

const QList<Step> &stepsOf(MeasureMode mode)
{
    return mode == MeasureModeThroughput ? throughputSteps : acquisitionSteps;
}

QString failed(const char *call)
{
    QString text = QLatin1String(call);
    if (text.startsWith(QLatin1String("get")))
        text.truncate(text.lastIndexOf(QLatin1Char(' ')));
    return text + QStringLiteral(" failed");
}

QStringList expectedSetup(MeasureMode mode, int failing)
{
    const QList<Step> &steps = stepsOf(mode);
    QStringList calls;
    for (int i = 0; i < steps.size(); ++i) {
        const Step &step = steps[i];
        if (i != failing - 1) {
            calls.append(QLatin1String(step.call));
            continue;
        }
        calls.append(failed(step.call));
        if (step.effect == Step::Fatal)
            break;
        if (step.effect == Step::Skips)
            i = step.next - 1;
    }
    return calls;
}

QStringList expectedRestore(MeasureMode mode, const QStringList &setup)
{
    QStringList calls;
    if (mode == MeasureModeAcquisition) {
        const QString queueSize = writeBack(setup, "buffers_queue_size");
        if (!queueSize.endsWith(QLatin1String(" 0")))
            calls.append(queueSize);
        return calls << writeBack(setup, "buffer_policy") << writeBack(setup, "recent_frame");
    }
    if (setup.contains(QStringLiteral("set device_unit_register_value 25000")))
        calls << QStringLiteral("set device_unit_selector 1")
              << QStringLiteral("set device_unit_register_selector 55")
              << QStringLiteral("set device_unit_register_value 1");
    for (const char *name :
         {"test_pattern", "test_pattern_generator_selector", "output_bit_packing", "output_bit_depth",
          "imgdataformat", "buffer_policy", "column_fpn_correction", "row_fpn_correction", "LUTEnable"})
        calls.append(writeBack(setup, name));
    if (setup.contains(QStringLiteral("set dp_param_value 9")))
        calls << QStringLiteral("set dp_unit_selector 1") << QStringLiteral("set dp_proc_selector 5")
              << QStringLiteral("set dp_param_selector 6") << QStringLiteral("set dp_param_value 10");
    return calls;
}
