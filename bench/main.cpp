// The benchmark suite of XOLATreeModel against Qt's own models.
//
// Own options (the others are Google Benchmark's):
//   --max-rows=N       largest row count measured (default 1000000)
//   --budget=S         skip a size projected to need more than S seconds
//   --memory-probe=K:N internal: measure one model in this process and exit

#include "BenchSupport.h"

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

int main(int argc, char** argv)
{
    std::vector<char*> benchmarkArgs;
    QString probe;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strncmp(arg, "--max-rows=", 11) == 0)
            bench::config().maxRows = std::atoi(arg + 11);
        else if (std::strncmp(arg, "--budget=", 9) == 0)
            bench::config().budgetSeconds = std::atof(arg + 9);
        else if (std::strncmp(arg, "--memory-probe=", 15) == 0)
            probe = QString::fromLatin1(arg + 15);
        else
            benchmarkArgs.push_back(argv[i]);
    }

    int appArgc = 1;
    QCoreApplication app(appArgc, argv);
    if (!probe.isEmpty())
        return bench::runMemoryProbe(probe);

    bench::registerLoadBenchmarks();
    bench::registerSortBenchmarks();
    bench::registerFilterBenchmarks();
    bench::registerViewBenchmarks();
    bench::registerMemoryBenchmarks();

    int benchmarkArgc = int(benchmarkArgs.size());
    benchmark::Initialize(&benchmarkArgc, benchmarkArgs.data());
    if (benchmark::ReportUnrecognizedArguments(benchmarkArgc, benchmarkArgs.data()))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
