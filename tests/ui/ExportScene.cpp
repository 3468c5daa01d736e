#include "tests/ui/ExportScene.h"

#include "tests/ui/SetupDialog.h"

#include <QTest>

namespace rig {

ExportScene::ExportScene(Moment moment)
    : m_moment(moment)
{
    // Ticks come from the tests alone.
    m_isReady = withSetup(cameras.rig, [](const SetupDialog &setup) {
        setup.refreshPeriod()->setValue(setup.refreshPeriod()->maximum());
        setup.clickOk();
    });
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 1024}}); // less than the dialog allows
    m_isReady =
        m_isReady && (moment == Moment::Start ? cameras.measureAndStop(Alpha, 2) : report.recordLong(Alpha));
    m_isReady = m_isReady && cameras.measure(Beta, 2);
    cameras.showTime(-60.0, 60.0);
    cameras.host.clearCalls();
    cameras.log.clear();
}

void ExportScene::addMoments()
{
    QTest::addColumn<int>("moment");
    QTest::newRow("before the rows") << int(Moment::Start);
    QTest::newRow("among rows") << int(Moment::AmongRows);
}

bool ExportScene::exportWhile(const std::function<void()> &event)
{
    bool goesOn = true;
    report.during(m_moment, [&] {
        event();
        if (cameras.rig.form() && cameras.isMeasuring(Beta))
            goesOn = cameras.deliver(Beta, 2);
    });
    report.closeAt(2);
    report.click(Alpha, "/dev/null");
    return m_isReady && goesOn && report.hasRun();
}

bool ExportScene::exportsAgain()
{
    report.closeAt(0);
    report.click(Alpha);
    return report.contents() == RowExport::framesHeader;
}

} // namespace rig
