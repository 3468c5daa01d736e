#pragma once

#include <QtGlobal>

/// Marks what libzuCoreGui.so offers to host programs and plug-ins.
#if defined(ZUCOREGUI_LIBRARY)
#define ZUCOREGUI_EXPORT Q_DECL_EXPORT
#else
#define ZUCOREGUI_EXPORT Q_DECL_IMPORT
#endif
