#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>
#include <utility>

/// A sort for predicates that need not be consistent. std::sort requires a strict weak order and may run out of bounds
/// without one; this one stays within the range, terminates and loses no element whatever the predicate returns, even
/// if it throws. The result depends only on the input and the predicate's answers, not on the toolchain. It is not
/// stable.
///
/// `before(a, b)` returns whether a precedes b. If partitions are so uneven that they nest 1.5 * log2(n) levels deep, a
/// heap sort takes over, so that no input takes quadratic time.
namespace nIntrosort {

/// Ranges of at most this length are sorted by insertion.
inline constexpr std::size_t insertionLimit = 32;

/// Compares each element with the first one: if it precedes that, it becomes the first; otherwise it moves towards the
/// front for as long as it precedes its neighbour.
template <class T, class Before>
void insertionSort(std::span<T> range, Before& before) {
    for (std::size_t i = 1; i < range.size(); ++i) {
        std::size_t place = 0;
        if (!before(range[i], range[0])) {
            place = i;
            while (place > 1 && before(range[i], range[place - 1])) --place;
        }
        const std::span<T> passed = range.subspan(place, i + 1 - place);
        std::rotate(passed.begin(), passed.end() - 1, passed.end());
    }
}

/// Moves the element at `root` down until neither child belongs above it.
template <class T, class Before>
void siftDown(std::span<T> heap, std::size_t root, Before& before) {
    for (std::size_t child = 2 * root + 1; child < heap.size(); child = 2 * root + 1) {
        if (child + 1 < heap.size() && before(heap[child], heap[child + 1])) ++child;
        if (!before(heap[root], heap[child])) return;
        std::swap(heap[root], heap[child]);
        root = child;
    }
}

template <class T, class Before>
void heapSort(std::span<T> range, Before& before) {
    for (std::size_t root = range.size() / 2; root > 0; --root) siftDown(range, root - 1, before);
    for (std::size_t size = range.size(); size > 1; --size) {
        std::swap(range[0], range[size - 1]);
        siftDown(range.first(size - 1), 0, before);
    }
}

/// Moves the median of the first, the middle and the last element to the front.
template <class T, class Before>
void moveMedianToFront(std::span<T> range, Before& before) {
    T& first = range.front();
    T& middle = range[range.size() / 2];
    T& last = range.back();
    if (before(middle, first)) std::swap(middle, first);
    if (before(last, middle)) std::swap(last, middle);
    if (before(middle, first)) std::swap(middle, first);
    std::swap(first, middle);
}

/// Partitions around a pivot and returns its index: no later element precedes it, and it precedes no earlier one.
template <class T, class Before>
std::size_t partition(std::span<T> range, Before& before) {
    moveMedianToFront(range, before);
    std::size_t low = 1;
    std::size_t high = range.size() - 1;
    for (;;) {
        // An inconsistent predicate can let either scan pass the pivot's true place, so both check their bounds.
        while (low <= high && before(range[low], range[0])) ++low;
        while (low <= high && before(range[0], range[high])) --high;
        if (low >= high) break;
        std::swap(range[low++], range[high--]);
    }
    std::swap(range[0], range[high]);
    return high;
}

template <class T, class Before>
// NOLINTNEXTLINE(misc-no-recursion): `partitionsLeft` bounds the depth
void sortWithin(std::span<T> range, std::size_t partitionsLeft, Before& before) {
    while (range.size() > insertionLimit) {
        if (partitionsLeft-- == 0) {
            heapSort(range, before);
            return;
        }
        const std::size_t pivot = partition(range, before);
        sortWithin(range.first(pivot), partitionsLeft, before);
        range = range.subspan(pivot + 1);
    }
    insertionSort(range, before);
}

/// Sorts the range.
template <class T, class Before>
void sort(std::span<T> range, Before before) {
    const auto doublings = static_cast<std::size_t>(std::bit_width(range.size()));
    sortWithin(range, doublings + doublings / 2, before);
}

}  // namespace nIntrosort
