#include "host/gui/AppDelegateRegistration.h"

#include <QtGlobal>

namespace {

IxAppDelegate *registered = nullptr;

} // namespace

void host::setAppDelegate(IxAppDelegate *delegate)
{
    registered = delegate;
}

IxAppDelegate *host::appDelegate()
{
    return registered;
}

IxAppDelegate *IxAppDelegate::instance()
{
    // Plug-ins use the answer unchecked; a named reason beats their crash.
    if (!registered)
        qFatal("IxAppDelegate::instance(): no delegate is registered");
    return registered;
}
