#pragma once

#include "zuCoreGui/IxAppDelegate.h"

namespace host {

/// Makes the program's delegate known to plug-ins; before any is loaded. Not
/// taken over: it must live until it is unregistered with null. GUI thread only.
ZUCOREGUI_EXPORT void setAppDelegate(IxAppDelegate *delegate);

/// The registered delegate or null, for code that can do without.
ZUCOREGUI_EXPORT IxAppDelegate *appDelegate();

} // namespace host
