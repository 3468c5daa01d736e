#pragma once

#include <QApplication>

namespace host {

/// A QApplication that outlives what plug-ins throw in their slots and event
/// handlers: the exception is logged and the event counts as not handled.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;
};

} // namespace host
