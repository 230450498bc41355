#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace projectdb {

/// The positions in two sequences of two entries that stand side by side.
struct AlignedEntries {
  std::size_t before;
  std::size_t after;
};

/// As many of the pairs as can stand in ascending order of both positions; they are in that of the
/// first. Takes O(n) memory and O(n log n) time.
std::vector<AlignedEntries> LongestAscent(const std::vector<AlignedEntries>& pairs);

/// The positions of a sequence from one on, sorted by what stands there.
template <typename Entry>
std::vector<std::size_t> SortedPositions(const std::vector<Entry>& entries, std::size_t start) {
  std::vector<std::size_t> positions(entries.size() - start);
  std::iota(positions.begin(), positions.end(), start);
  std::sort(positions.begin(), positions.end(), [&](std::size_t a, std::size_t b) {
    return std::pair(entries[a], a) < std::pair(entries[b], b);
  });
  return positions;
}

/// Each entry with its equal, the first with the first, the second with the second and so on; in
/// the order of the first sequence. Takes O(n) memory and O(n log n) time.
template <typename Entry>
std::vector<AlignedEntries> PairEqualEntries(const std::vector<Entry>& before,
                                             const std::vector<Entry>& after) {
  std::vector<AlignedEntries> pairs;
  std::size_t start = 0;  // Most often the sequences begin alike; that need not be sorted.
  for (; start < before.size() && start < after.size() && before[start] == after[start]; ++start) {
    pairs.push_back({start, start});
  }
  const std::vector<std::size_t> before_sorted = SortedPositions(before, start);
  const std::vector<std::size_t> after_sorted = SortedPositions(after, start);
  auto b = before_sorted.begin();
  auto a = after_sorted.begin();
  while (b != before_sorted.end() && a != after_sorted.end()) {
    if (before[*b] == after[*a]) {
      pairs.push_back({*b++, *a++});
    } else if (before[*b] < after[*a]) {
      ++b;
    } else {
      ++a;
    }
  }
  std::sort(pairs.begin(), pairs.end(),
            [](const AlignedEntries& x, const AlignedEntries& y) { return x.before < y.before; });
  return pairs;
}

}  // namespace projectdb
