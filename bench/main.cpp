// The benchmark suite of XOLATreeModel against Qt's own models.
//
// Own options (the others are Google Benchmark's):
//   --max-rows=N       largest row count measured (default 1000000)
//   --budget=S         skip a size projected to need more than S seconds
//   --memory-probe=K:N internal: measure one model in this process and exit

#include "BenchSupport.h"

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

/*!
 * Grows the heap once, up front, and keeps it: the pages are faulted in here,
 * so first-touch page faults (which would otherwise land on whichever
 * measurement first needs more memory than anything before it) stay out of
 * the measured times.
 */
void prefaultHeap(size_t bytes)
{
#if defined(__GLIBC__)
    mallopt(M_TRIM_THRESHOLD, -1); // never give the pages back
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    const size_t block = 1024 * 1024;
    std::vector<char*> blocks;
    blocks.reserve(bytes / block);
    for (size_t done = 0; done < bytes; done += block) {
        char* p = static_cast<char*>(std::malloc(block - 64));
        if (!p)
            break;
        std::memset(p, 1, block - 64);
        blocks.push_back(p);
    }
    for (char* p : blocks)
        std::free(p);
#else
    (void)bytes;
#endif
}

} // namespace

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

    // About 2.5 KB per row covers the largest set-ups (a tree of child models).
    prefaultHeap(size_t(bench::config().maxRows) * 2560);

    bench::registerLoadBenchmarks();
    bench::registerSortBenchmarks();
    bench::registerFilterBenchmarks();
    bench::registerViewBenchmarks();
    bench::registerMemoryBenchmarks();
    bench::registerFloorBenchmarks();

    int benchmarkArgc = int(benchmarkArgs.size());
    benchmark::Initialize(&benchmarkArgc, benchmarkArgs.data());
    if (benchmark::ReportUnrecognizedArguments(benchmarkArgc, benchmarkArgs.data()))
        return 1;
    // Results from Qt 5 and Qt 6 builds are compared side by side; the run
    // says which Qt it was built against and which one it actually loaded.
    benchmark::AddCustomContext("qt_version", qVersion());
    benchmark::AddCustomContext("qt_build_version", QT_VERSION_STR);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
