#include "tests/ui/StartReport.h"

#include "tests/measurement/LogCapture.h"

#include <QRegularExpression>

namespace rig {

namespace {

StartReport reportIn(const LogCapture &log)
{
    static const QRegularExpression form(
        "\\AStart Measure Throiughput with sampleInterval (\\d+), internlaBuffSize (\\d+), "
        "avgTransportSpeedMBps (\\d+)\\z");
    for (const QString &message : log.messages()) {
        const QRegularExpressionMatch match = form.match(message);
        if (match.hasMatch())
            return {match.captured(1), match.captured(2), match.captured(3)};
    }
    return {};
}

} // namespace

StartReport measure(PluginRig &rig, ZUCORE_HANDLE camera, int frames)
{
    const LogCapture log;
    const BoxWatcher boxes;
    scripted::Host &host = scripted::Host::instance();
    host.deliver(camera, frames);
    QPushButton *button = rig.measureButton(rig.row(camera));
    PluginRig::click(button);
    if (!host.isStreaming(camera) || !host.waitUntilStarved(camera))
        return {};
    rig.call("timerSignal");
    PluginRig::click(button);
    return reportIn(log);
}

} // namespace rig
