#include "measurement/Log.h"

#include <QDebug>
#include <QMessageLogger>
#include <QThread>

void cxLog(const QString &message, CxLogPlace caller)
{
    QMessageLogger(caller.file, caller.line, caller.function, "default").critical().noquote()
        << QThread::currentThreadId() << caller.file << "L" << caller.line << ":"
        << "" << message;
}

void cxLogFailure(const char *method, const char *detail, CxLogPlace caller)
{
    cxLog(QLatin1String(method) + QStringLiteral("(): %1").arg(QLatin1String(detail)), caller);
}
