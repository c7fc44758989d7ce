#ifndef BENCH_BENCHTIMING_H
#define BENCH_BENCHTIMING_H

// Manual timing (set-up and tear-down stay outside the measured region) and the
// time budget that keeps a full run within minutes: a size whose projected time
// is over budget is reported as skipped instead of being run.

#include <benchmark/benchmark.h>

#include <string>

#include <time.h>

namespace bench {

/*!
 * CPU time of the calling thread (user and system). Every measured operation
 * runs on this one thread, and on a machine shared with other jobs this time
 * does not grow while the thread waits for a core, as wall time does.
 */
class Stopwatch
{
public:
    Stopwatch() : m_start(now()) {}
    double seconds() const { return now() - m_start; }

private:
    static double now()
    {
        timespec ts;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
        return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
    }

    double m_start;
};

//! True (and the benchmark marked skipped) when this size of the family is
//! projected, from its smaller sizes, to take longer than the budget.
bool skipOverBudget(benchmark::State& state, const std::string& family, int n);

//! Records the measured seconds per iteration of a family at one size.
void recordTime(const std::string& family, int n, double secondsPerIteration);

//! Registers one measurement per size: "<family>/<rows>", manual time.
template <typename Fn>
void registerSizes(const std::string& family, Fn fn, int workPerIteration = 300000, int maxRows = 0);

} // namespace bench

#include "BenchSupport.h"

namespace bench {

template <typename Fn>
void registerSizes(const std::string& family, Fn fn, int workPerIteration, int maxRows)
{
    for (int n : sizes()) {
        if (maxRows > 0 && n > maxRows)
            continue;
        benchmark::RegisterBenchmark(family.c_str(),
                                     [family, fn](benchmark::State& state) {
                                         const int rows = int(state.range(0));
                                         if (skipOverBudget(state, family, rows))
                                             return;
                                         double total = 0;
                                         int iterations = 0;
                                         fn(state, rows, total, iterations);
                                         if (iterations > 0)
                                             recordTime(family, rows, total / iterations);
                                         state.counters["rows"] = rows;
                                     })
            ->Arg(n)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(iterationsFor(n, workPerIteration));
    }
}

} // namespace bench

#endif // BENCH_BENCHTIMING_H
