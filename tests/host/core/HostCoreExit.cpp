// A program that ends with an open, acquiring camera and never shuts the core
// down: the end of the application must do it.

#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const auto camera = std::make_shared<FakeCamera>("A");
    {
        const QCoreApplication application(argc, argv);
        plugIn({camera});
        plugIn({});
        auto &core = host::HostCore::instance();
        const ZUCORE_HANDLE handle = core.open("A");
        if (!handle || !core.startAcquisition(handle) || !camera->isStreaming())
            return 1;
    }
    return camera->isOpen() || camera->isStreaming() ? 2 : 0;
}
