#pragma once

#include "tests/ui/SetupDialog.h"

/// What the user changes in the setup dialog.
namespace rig::change {

enum Change { Nothing, Period, Mode, Both, Capacity, Origin, Reset, Refresh, ChangeCount };
constexpr const char *changeNames[ChangeCount] = {"nothing",   "sample period", "mode",
                                                  "both",      "capacity",      "timestamp origin",
                                                  "reset box", "refresh period"};

inline void enter(const SetupDialog &setup, int change)
{
    if (change == Period || change == Both)
        setup.samplePeriod()->setValue(5120);
    if (change == Mode || change == Both)
        setup.mode()->setCurrentIndex(1 - setup.mode()->currentIndex());
    if (change == Capacity)
        setup.capacity()->setValue(1);
    if (change == Origin)
        setup.origin()->setCurrentIndex(1 - setup.origin()->currentIndex());
    if (change == Reset)
        setup.reset()->toggle();
    if (change == Refresh)
        setup.refreshPeriod()->setValue(30);
}

} // namespace rig::change
