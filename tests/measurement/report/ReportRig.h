#pragma once

#include "measurement/CsvReport.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTemporaryDir>

#include <limits>

class ProgressLog final : public measurement::CsvProgress
{
public:
    void setValue(int value) override { values.append(value); }
    bool wasCancelled() override { return ++looks > allowedLooks; }

    QList<int> values;
    int looks = 0;
    int allowedLooks = std::numeric_limits<int>::max();
};

/// Records, and the rows that a report makes of them.
class ReportRig
{
public:
    /// Between a record's camera time and its computer time, see RecordedLine.
    static constexpr qint64 computerShift = 1000000000000;
    static const QByteArray framesHeader;
    static const QByteArray countersHeader;

    CxCameraLineData::CxCounterData &addCounters(qint64 timestamp);

    /// Rows without the header and without the line feeds.
    QByteArrayList writeFrames(const measurement::CsvWindow &window);
    QByteArrayList writeCounters(const measurement::CsvWindow &window);
    /// The last report.
    QByteArray contents() const;

    measurement::CsvLink link() const;
    static measurement::CsvWindow everything();

    RecordedLine recorded;
    ProgressLog progress;

private:
    QTemporaryDir m_folder;
};
