#ifndef RADIXSORT_H
#define RADIXSORT_H

// A stable sort of (key, value) pairs by a numeric key, in linear time: the
// sorts by one role use it for rows whose values are all integers or all
// doubles, where it gives exactly the order of std::stable_sort with
// operator< on the original values, several times faster.

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace RadixSort {

// Order-preserving maps onto unsigned integers: a < b exactly when
// key(a) < key(b), and values that compare equal map to the same integer.
inline quint32 key(int value)
{
    return quint32(value) ^ 0x80000000u;
}

inline quint32 key(uint value)
{
    return value;
}

inline quint64 key(qlonglong value)
{
    return quint64(value) ^ (quint64(1) << 63);
}

inline quint64 key(qulonglong value)
{
    return value;
}

//! Not for NaN, which has no place in the order.
inline quint64 key(double value)
{
    // -0.0 == 0.0: both must land on one integer.
    if (value == 0.0)
        value = 0.0;
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    const quint64 sign = quint64(1) << 63;
    return (bits & sign) ? ~bits : (bits | sign);
}

//! Below this many entries a comparison sort is as fast.
constexpr std::size_t kMinimumEntries = 128;

//! Sorts entries by keyOf(entry.first), an unsigned integer, ascending;
//! entries with equal keys keep their order.
template <typename T, typename V, typename KeyOf>
void sortStable(std::vector<std::pair<T, V>>& entries, KeyOf keyOf)
{
    using U = decltype(keyOf(std::declval<const T&>()));
    const std::size_t n = entries.size();
    if (n < kMinimumEntries) {
        std::stable_sort(entries.begin(), entries.end(), [&keyOf](const std::pair<T, V>& a, const std::pair<T, V>& b) {
            return keyOf(a.first) < keyOf(b.first);
        });
        return;
    }
    constexpr int kPasses = int(sizeof(U));
    std::array<std::array<quint32, 256>, kPasses> counts;
    for (auto& count : counts)
        count.fill(0);
    for (const auto& entry : entries) {
        const U key = keyOf(entry.first);
        for (int pass = 0; pass < kPasses; ++pass)
            ++counts[pass][(key >> (8 * pass)) & 0xff];
    }
    std::vector<std::pair<T, V>> buffer(n);
    std::vector<std::pair<T, V>>* from = &entries;
    std::vector<std::pair<T, V>>* to = &buffer;
    for (int pass = 0; pass < kPasses; ++pass) {
        std::array<quint32, 256>& count = counts[pass];
        const int shift = 8 * pass;
        // Every key has the same byte here: this pass would move nothing.
        if (count[(keyOf(from->front().first) >> shift) & 0xff] == n)
            continue;
        quint32 start = 0;
        for (quint32& slot : count) {
            const quint32 size = slot;
            slot = start;
            start += size;
        }
        std::pair<T, V>* out = to->data();
        for (const auto& entry : *from)
            out[count[(keyOf(entry.first) >> shift) & 0xff]++] = entry;
        std::swap(from, to);
    }
    if (from != &entries)
        entries.swap(buffer);
}

} // namespace RadixSort

#endif // RADIXSORT_H
