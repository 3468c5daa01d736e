#pragma once

#include <QtGlobal>

/// Marks what libzuCore.so offers to host programs and plug-ins.
#if defined(ZUCORE_LIBRARY)
#define ZUCORE_EXPORT Q_DECL_EXPORT
#else
#define ZUCORE_EXPORT Q_DECL_IMPORT
#endif

/// Opaque handle of an opened camera. Only the host gives it a meaning; it is
/// never dereferenced by its users and never reused for another camera while
/// the host runs. Null is no camera.
typedef void *ZUCORE_HANDLE;
