#pragma once

#include "tests/ui/Interruption.h"
#include "tests/ui/RowExport.h"

namespace rig {

/// Alpha's records are exported, Beta measures meanwhile, Gamma does nothing.
class ExportScene
{
public:
    /// \param moment at which something is going to happen: it decides how long
    /// the report has to take
    explicit ExportScene(Moment moment = Moment::Start);

    /// A column "moment" with a row for each.
    static void addMoments();

    /// Rows of Alpha's report when that is a short one.
    static constexpr int shortRows = 2 * PacedFrames::intervalsPerFrame;

    /// Exports Alpha's records to nowhere, lets something happen and ends that
    /// with another look at the events.
    /// \return false when it did not happen, or Beta's capture does not go on
    bool exportWhile(const std::function<void()> &event);

    /// Does what was put off.
    static void catchUp() { QCoreApplication::processEvents(); }

    /// Whether Alpha's button still works.
    bool exportsAgain();

    MeasuringCameras cameras;
    RowExport report{cameras};

private:
    Moment m_moment;
    bool m_isReady = false;
};

} // namespace rig
