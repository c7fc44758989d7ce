#include "ResidentMemory.h"

#include <QtCore/QFile>
#include <QtCore/QString>

#include <algorithm>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace ResidentMemory {

long currentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    // Read whole: /proc files report a size of 0, so line reads are the safe way.
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmRSS:")) {
            const QByteArray value = line.mid(6).trimmed(); // "123456 kB"
            bool ok = false;
            const long kib = value.left(value.indexOf(' ')).toLong(&ok);
            return ok ? kib : -1;
        }
    }
    return -1;
}

long heapInUseKiB()
{
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 33))
    // Small blocks from the arenas plus the blocks mapped on their own.
    const struct mallinfo2 info = mallinfo2();
    return long((info.uordblks + info.hblkhd) / 1024);
#else
    return -1;
#endif
}

long heapHeldKiB()
{
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 33))
    const struct mallinfo2 info = mallinfo2();
    return long((info.arena + info.hblkhd) / 1024);
#else
    return -1;
#endif
}

long allowanceKiB(long warmUpPeakKiB)
{
    // Peak and final resident memory after the warm-up may exceed the warm-up's
    // peak by 3 MiB plus 2 % of it, and no more: 3.8 MiB over a peak of 42 MiB
    // (Qt 5), 4.1 MiB over 54 MiB (Qt 6).
    //
    // Why that much: the model hovers around its target size but swings by a
    // few hundred rows, and a list load or a replacement holds up to a
    // thousand new items at once; the heap the allocator holds follows the
    // highest of those moments, and the ListViews make and drop delegates as
    // they scroll. Over 100,000 operations (one malloc arena, see main.cpp)
    // resident memory stayed within 0.4-1.1 MiB (Qt 5) and 0.1-0.9 MiB (Qt 6)
    // of the warm-up peak; runs of 4,000 operations within 1.6 MiB.
    //
    // Why not more: a leak of 100 bytes per worker operation adds about
    // 7.6 MiB over the 80,000 operations after the long run's warm-up, twice
    // the allowance, so such a leak fails the run (xola_soak --inject-leak 100
    // shows it); so does one of 60 bytes per operation. (A leaked item, with
    // its QObject data, value map and strings, is several hundred bytes.) The
    // heap in use is judged as well, by the slope of its samples (see
    // heapSlopeLimit()).
    return 3 * 1024 + warmUpPeakKiB / 50;
}

double heapSlopeLimit()
{
    // The heap in use moves with the model's size: a few hundred rows more or
    // fewer, at roughly 2 KiB each across the model, its views, the proxy and
    // the lists, is +-0.6 MiB, which can tilt the line over 80,000 operations
    // by about 8 bytes per operation. Measured: -0.5 to 3.5. A leak of 100
    // bytes per operation (or of 30) shows as a slope of 100 (or 30).
    return 25.0;
}

long heapSlopeMinOperations()
{
    // Over a few thousand operations the swings of the model's size outweigh
    // any leak worth finding: the slope of a short run is only reported.
    return 50000;
}

Judgement judge(long startKiB, const std::vector<Sample>& samples, long warmUpOperations, long finalKiB, bool judged)
{
    Judgement j;
    j.startKiB = startKiB;
    j.finalKiB = finalKiB;
    j.samples = int(samples.size());
    j.judged = judged;
    double n = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
    double hn = 0, hsx = 0, hsy = 0, hsxx = 0, hsxy = 0;
    for (const Sample& s : samples) {
        if (s.operations < warmUpOperations) {
            j.warmUpPeakKiB = std::max(j.warmUpPeakKiB, s.kib);
            continue;
        }
        if (j.afterWarmUpKiB < 0) {
            j.afterWarmUpKiB = s.kib;
            // The sample that ends the warm-up belongs to it as well.
            j.warmUpPeakKiB = std::max(j.warmUpPeakKiB, s.kib);
        }
        j.peakAfterWarmUpKiB = std::max(j.peakAfterWarmUpKiB, s.kib);
        const double x = double(s.operations);
        const double y = double(s.kib) * 1024.0;
        n += 1;
        sx += x;
        sy += y;
        sxx += x * x;
        sxy += x * y;
        if (s.heapKiB >= 0) {
            if (j.heapAfterWarmUpKiB < 0)
                j.heapAfterWarmUpKiB = s.heapKiB;
            j.heapFinalKiB = s.heapKiB;
            const double h = double(s.heapKiB) * 1024.0;
            hn += 1;
            hsx += x;
            hsy += h;
            hsxx += x * x;
            hsxy += x * h;
        }
    }
    if (finalKiB >= 0)
        j.peakAfterWarmUpKiB = std::max(j.peakAfterWarmUpKiB, finalKiB);
    const double denominator = n * sxx - sx * sx;
    if (n >= 2 && denominator > 0)
        j.slopeBytesPerOperation = (n * sxy - sx * sy) / denominator;
    const double heapDenominator = hn * hsxx - hsx * hsx;
    if (hn >= 2 && heapDenominator > 0)
        j.heapSlopeBytesPerOperation = (hn * hsxy - hsx * hsy) / heapDenominator;
    const long judgedOperations = samples.empty() ? 0 : samples.back().operations - warmUpOperations;
    j.heapJudged = judged && hn >= 2 && judgedOperations >= heapSlopeMinOperations();
    j.heapWithinLimit = !j.heapJudged || j.heapSlopeBytesPerOperation <= heapSlopeLimit();
    if (j.warmUpPeakKiB >= 0) {
        j.boundKiB = j.warmUpPeakKiB + allowanceKiB(j.warmUpPeakKiB);
        j.withinBound = j.peakAfterWarmUpKiB <= j.boundKiB && j.finalKiB <= j.boundKiB;
    }
    return j;
}

} // namespace ResidentMemory
