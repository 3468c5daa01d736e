#pragma once

#include "tests/scriptedhost/ScriptedHost.h"

#include <condition_variable>
#include <map>
#include <mutex>

namespace scripted {

struct Camera
{
    CxCameraInfo info;
    bool open = true;
    bool lost = false;
    bool hostAcquires = false;
    std::map<std::string, long long> values;
    std::map<std::string, QList<CxCameraParam::CxEnumItem>> enumItems;
    bool hasParameterSet = true;
    /// Made on demand; used on the GUI thread only.
    std::unique_ptr<CxCameraParameters> parameters;

    bool streaming = false;
    bool released = false;
    int budget = 0;
    int waiting = 0;
    std::shared_ptr<ImageSource> source;
    std::function<bool()> endCondition;

    /// The name with the values of the selectors before it.
    std::string key(const std::string &name) const;
};

struct Host::Private
{
    mutable std::mutex mutex; ///< guards everything below, unless it says otherwise
    std::condition_variable changed;

    /// Cameras are never taken out before reset(), so that late calls find them.
    std::map<ZUCORE_HANDLE, std::unique_ptr<Camera>> cameras;
    std::vector<ZUCORE_HANDLE> opened; ///< in the order of their opening
    /// Given out so far. Of each two cameras the later one has the lower handle:
    /// sorted by handles, cameras are not in the order of their opening.
    std::uintptr_t handles = 0;

    struct ArmedFailure
    {
        Failure failure;
        int seen = 0;
    };
    std::vector<ArmedFailure> failures;
    std::vector<Call> calls;
    std::shared_ptr<std::function<void(const Call &)>> observer;
    int version[3] = {9, 8, 7};

    /// Null when the handle is unknown, closed or lost.
    Camera *usable(ZUCORE_HANDLE handle);
    Camera *find(ZUCORE_HANDLE handle) const;
    bool isToFail(const Call &call);
    /// Tells the observer of a camera function that is entered.
    void announce(const Call &call);

    /// The camera functions; they take the mutex and record themselves.
    bool read(Function function, void *handle, const char *name, bool wantsError, long long &value);
    bool write(void *handle, const char *name, int value, bool wantsError);
    bool setStreaming(Function function, void *handle, bool on);
    bool capture(void *handle, unsigned int timeoutMs, ZU_IMG &image, bool wantsError, bool flag);

private:
    bool waitForBudget(std::unique_lock<std::mutex> &lock, Camera &camera, std::chrono::milliseconds timeout);
};

} // namespace scripted
