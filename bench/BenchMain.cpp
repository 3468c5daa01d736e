#include <QApplication>

#include <benchmark/benchmark.h>

/// Plots need an application, but no screen.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    // Which floors apply; the benchmarks read the variable for themselves.
    const bool isShort = qgetenv("VELMORA_BENCH_FORM") == "short";
    benchmark::AddCustomContext("velmora_form", isShort ? "short" : "full");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
