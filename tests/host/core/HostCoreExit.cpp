// A program that ends with an open, acquiring camera and never shuts the core
// down: the end of the application must do it. With an argument, a thread is in
// a capture all the while and leaves it only when the core's statics are gone.

#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"

#include <QCoreApplication>

#include <cstdlib>
#include <thread>

namespace {

struct LateCapture
{
    std::shared_ptr<FakeCamera> camera = std::make_shared<FakeCamera>("A");
    std::thread thread;
    bool captured = true;

    void begin(ZUCORE_HANDLE handle)
    {
        camera->hold("capture");
        thread = std::thread([this, handle] {
            ZU_IMG image{};
            image.size = sizeof image;
            captured = zuApi_GetImage(handle, 1, &image, nullptr, true);
        });
        camera->awaitHeld();
    }

    ~LateCapture()
    {
        if (!thread.joinable())
            return;
        camera->release();
        thread.join();
        if (captured)
            std::_Exit(3);
    }
};

} // namespace

int main(int argc, char **argv)
{
    static LateCapture late; // before the core's statics, so that it ends after them
    {
        const QCoreApplication application(argc, argv);
        plugIn({late.camera});
        plugIn({});
        auto &core = host::HostCore::instance();
        const ZUCORE_HANDLE handle = core.open("A");
        if (!handle || !core.startAcquisition(handle) || !late.camera->isStreaming())
            return 1;
        if (argc > 1)
            late.begin(handle);
    }
    return late.camera->isOpen() || late.camera->isStreaming() ? 2 : 0;
}
