#include "bench/scale/GuiClock.h"
#include "bench/scale/Options.h"
#include "bench/scale/Runs.h"

#include <cstdio>
#include <exception>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    scale::GuiClock application(argc, argv);
    application.setApplicationName(QStringLiteral("velmora-scale"));
    const scale::Options options = scale::parseOptions(QCoreApplication::arguments());
    try {
        scale::Rig rig(application, options);
        const nlohmann::ordered_json result = options.run == scale::Options::Run::Edit
                                                  ? scale::runEdit(rig, application, options)
                                                  : scale::runSteadily(rig, application, options);
        std::puts(result.dump(2).c_str());
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velmora-scale: %s\n", error.what());
        return 1;
    }
}
