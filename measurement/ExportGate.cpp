#include "measurement/ExportGate.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <utility>

namespace {

struct Postponed
{
    QPointer<QObject> context;
    std::function<void()> work;
};

struct Gate
{
    bool exporting = false;
    bool catchingUp = false; ///< postponed work is being done: it finds the gate open
    std::deque<Postponed> postponed;
};

Gate &gate()
{
    static Gate instance;
    return instance;
}

} // namespace

bool CxExportGate::isClosed()
{
    return gate().exporting || (!gate().catchingUp && !gate().postponed.empty());
}

bool CxExportGate::putOff(QObject *context, std::function<void()> work)
{
    if (!isClosed())
        return false;
    gate().postponed.push_back({context, std::move(work)});
    return true;
}

void CxExportGate::catchUp()
{
    if (gate().catchingUp)
        return;
    gate().catchingUp = true;
    while (!gate().exporting && !gate().postponed.empty()) {
        const Postponed next = std::move(gate().postponed.front());
        gate().postponed.pop_front();
        if (next.context)
            next.work();
    }
    gate().catchingUp = false;
}

CxExportGate::Closer::Closer()
    : m_only(!gate().exporting)
{
    gate().exporting = true;
}

CxExportGate::Closer::~Closer()
{
    if (!m_only)
        return;
    gate().exporting = false;
    // Later: the caller of the export still uses what the work may delete.
    if (!gate().postponed.empty())
        QTimer::singleShot(0, QCoreApplication::instance(), &CxExportGate::catchUp);
}
