#pragma once

#include "zuCore/ZuCoreGlobal.h"
#include "zuCore/ZuParameters.h"

#include <cstdint>

/// One captured frame. The caller zeroes the record and sets `size` before
/// every capture; the host fills the rest and never writes beyond `size`.
struct ZU_IMG
{
    std::uint32_t size;                  ///< bytes of the record version the caller knows
    std::uint32_t filledSize;            ///< bytes of `data` that the frame fills
    void *data;                          ///< first byte; valid until the handle's next capture or stop
    std::uint32_t width;                 ///< pixels a line
    std::uint32_t height;                ///< lines
    std::uint32_t frameNumber;           ///< the camera's frame counter
    std::uint32_t timestampSeconds;      ///< camera time stamp, whole seconds
    std::uint32_t timestampMicroseconds; ///< camera time stamp, the rest in microseconds
    std::uint32_t reserved[69];
};
static_assert(sizeof(ZU_IMG) == 312, "the size is part of the interface");

/// The camera functions. Each returns true on success. `err`, where present,
/// may be null; otherwise it receives 0 on success and another number on
/// failure. A call on a closed handle or a lost camera fails and does nothing
/// else; a failed read leaves `value` as it was. All may be called from any
/// thread, and for one handle from several threads at once.

/// Reads a 32-bit parameter, or its maximum with ZU_PRM_SUFFIX_MAX. Fails when
/// the value needs more than 32 bits.
ZUCORE_EXPORT bool zuApi_GetParamInt(void *handle, const char *name, int &value, int *err);

/// Reads a parameter whose value may need 64 bits; also with
/// ZU_PRM_SUFFIX_MAX. Fails when the value is negative.
ZUCORE_EXPORT bool zuApi_GetParamInt64(void *handle, const char *name, unsigned long long &value, int *err);

/// Writes a 32-bit parameter, or asks with ZU_PRM_SUFFIX_SETTABLE.
ZUCORE_EXPORT bool zuApi_SetParamInt(void *handle, const char *name, int value, int *err);

/// Starts streaming; fails when the camera streams already.
ZUCORE_EXPORT bool zuApi_StartAcquisition(void *handle);

/// Stops the streaming that zuApi_StartAcquisition began and ends a capture
/// that waits on another thread. Fails when there is none: the host's own
/// acquisition is not touched.
ZUCORE_EXPORT bool zuApi_StopAcquisition(void *handle);

/// Waits at most `timeoutMs` for the next frame and fills `img`; a failed call
/// leaves the record as it was. A capture that cannot succeed (camera lost,
/// handle closed, not streaming) fails after the time-out, so that a caller
/// that tries again does not spin. It fails earlier when the frame arrived
/// damaged, when streaming is stopped meanwhile, and at once when `img` is null
/// or its `size` does not reach beyond `timestampMicroseconds`. `flag` is true:
/// the frame is handed out in place, not copied.
ZUCORE_EXPORT bool zuApi_GetImage(void *handle, unsigned int timeoutMs, ZU_IMG *img, int *err, bool flag);

/// Version of the host's core library.
ZUCORE_EXPORT void zuCoreVersion(int &major, int &minor, int &build);
