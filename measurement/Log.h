#pragma once

#include <QString>

/// A place in the source. As a default argument, current() is the caller's.
struct CxLogPlace
{
    const char *file;
    int line;
    const char *function;

    static constexpr CxLogPlace current(const char *file = __builtin_FILE(), int line = __builtin_LINE(),
                                        const char *function = __builtin_FUNCTION())
    {
        return {file, line, function};
    }
};

/// Writes one line at critical level, category "default", with the caller's
/// file, line and function: the host's error log shows nothing below critical.
/// The text is "THREAD FILE L LINE :  MESSAGE". Any thread.
void cxLog(const QString &message, CxLogPlace caller = CxLogPlace::current());

/// The same with the message "METHOD(): DETAIL".
/// \param method class and method, "CxCameraLineData::stopMeasurement"
void cxLogFailure(const char *method, const char *detail, CxLogPlace caller = CxLogPlace::current());
