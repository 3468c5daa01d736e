#pragma once

#include "measurement/CameraLineData.h"

#include <QList>
#include <QStringList>

/// One call of a preparation and what its failure means.
struct Step
{
    const char *call;
    enum Effect {
        Ignored, ///< the next call follows
        Fatal,   ///< no further call, setup fails
        Skips,   ///< goes on with the step numbered `next`
    } effect;
    int next;
    const char *message; ///< logged on failure; null: nothing
};

/// The steps of a setup on a camera that has everything.
const QList<Step> &stepsOf(MeasureMode mode);

/// The text of a call that fails: a read shows no value then.
QString failed(const char *call);

/// The calls of a setup whose n-th call fails; 0: none does.
QStringList expectedSetup(MeasureMode mode, int failing = 0);

/// The calls of a restore after such a setup on a new engine.
QStringList expectedRestore(MeasureMode mode, const QStringList &setup);
