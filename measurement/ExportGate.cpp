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

void catchUpLater();

/// Ends well also where the work throws, which a host may survive.
class CatchingUp
{
public:
    CatchingUp() { gate().catchingUp = true; }
    ~CatchingUp()
    {
        gate().catchingUp = false;
        catchUpLater();
    }
    CatchingUp(const CatchingUp &) = delete;
    CatchingUp &operator=(const CatchingUp &) = delete;
};

void catchUp()
{
    // A next export does the rest when it ends.
    if (gate().catchingUp || gate().exporting)
        return;
    const CatchingUp catchingUp;
    while (!gate().exporting && !gate().postponed.empty()) {
        const Postponed next = std::move(gate().postponed.front());
        gate().postponed.pop_front();
        if (next.context)
            next.work();
    }
}

void catchUpLater()
{
    if (!gate().exporting && !gate().postponed.empty())
        QTimer::singleShot(0, QCoreApplication::instance(), &catchUp);
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

CxExportGate::Closer::Closer()
    : m_first(!gate().exporting)
{
    gate().exporting = true;
}

CxExportGate::Closer::~Closer()
{
    if (!m_first)
        return;
    gate().exporting = false;
    // Later: the caller of the export still uses what the work may delete.
    catchUpLater();
}
