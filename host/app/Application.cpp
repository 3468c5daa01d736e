#include "host/app/Application.h"

#include <QDebug>

#include <exception>

namespace host {

namespace {

/// \param className known before the event: the receiver may be gone
void report(const char *className, const char *what)
{
    qCritical().noquote() << QStringLiteral("%1 threw an exception while it handled an event: %2")
                                 .arg(QLatin1String(className), QString::fromLocal8Bit(what));
}

} // namespace

bool Application::notify(QObject *receiver, QEvent *event)
{
    const char *className = receiver->metaObject()->className();
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &problem) {
        report(className, problem.what());
    } catch (...) {
        report(className, "of unknown type");
    }
    return false;
}

} // namespace host
