#ifndef SOAK_RESIDENTMEMORY_H
#define SOAK_RESIDENTMEMORY_H

#include <vector>

namespace ResidentMemory {

//! VmRSS of this process in KiB (from /proc/self/status), or -1 when unknown.
long currentKiB();
//! Bytes the C allocator has handed out and not had back, in KiB (glibc's
//! mallinfo2), or -1 where that is not known (other C libraries, sanitizers).
long heapInUseKiB();
//! Bytes the C allocator holds from the system (in use or free in its arenas), in
//! KiB, or -1 where that is not known.
long heapHeldKiB();

struct Sample
{
    long operations; //!< worker operations done when the sample was taken
    long kib;
    long heapKiB; //!< heap in use, or -1
    long heldKiB; //!< heap held from the system, or -1
};

/*!
 * The memory verdict of a run. Samples taken before warmUpOperations worker
 * operations form the warm-up; the rest is judged against the warm-up's peak.
 */
struct Judgement
{
    long startKiB = -1;
    long warmUpPeakKiB = -1;   //!< highest sample of the warm-up
    long afterWarmUpKiB = -1;  //!< first sample at or past the warm-up's end
    long peakAfterWarmUpKiB = -1;
    long finalKiB = -1;
    long boundKiB = -1;        //!< what peak and final must stay within
    double slopeBytesPerOperation = 0; //!< least-squares growth after the warm-up
    int samples = 0;
    long heapAfterWarmUpKiB = -1;
    long heapFinalKiB = -1;
    double heapSlopeBytesPerOperation = 0;
    bool heapJudged = false;   //!< enough operations after the warm-up to judge the slope
    bool heapWithinLimit = true;
    bool judged = false;       //!< false under a sanitizer's allocator
    bool withinBound = false;
};

//! The allowance over the warm-up peak, in KiB (see the comment at its definition).
long allowanceKiB(long warmUpPeakKiB);
//! The most the heap in use may grow per operation after the warm-up (least
//! squares), judged on runs with at least heapSlopeMinOperations() operations
//! after it.
double heapSlopeLimit();
long heapSlopeMinOperations();

Judgement judge(long startKiB, const std::vector<Sample>& samples, long warmUpOperations, long finalKiB, bool judged);

} // namespace ResidentMemory

#endif // SOAK_RESIDENTMEMORY_H
