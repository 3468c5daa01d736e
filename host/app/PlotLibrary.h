#pragma once

// The plotting library's header is written with Qt's keywords, which this tree
// switches off. They exist for the length of the include; include this file
// instead of the library's own.

#include <QObject>

#define signals Q_SIGNALS
#define slots Q_SLOTS
#define emit Q_EMIT
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef emit
#undef foreach
