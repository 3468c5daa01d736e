#pragma once

#include <QMutex>

#include <thread>

/// Whether a thread that is not the caller's could take the mutex now.
inline bool isFree(QMutex &mutex)
{
    bool taken = false;
    std::thread other([&] {
        taken = mutex.tryLock();
        if (taken)
            mutex.unlock();
    });
    other.join();
    return taken;
}
