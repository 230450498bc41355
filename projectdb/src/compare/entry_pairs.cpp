#include "compare/entry_pairs.h"

#include <limits>

namespace projectdb {

std::vector<AlignedEntries> LongestAscent(const std::vector<AlignedEntries>& pairs) {
  constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
  std::vector<std::size_t> ends;  // By length less one, the lowest end of an ascent.
  std::vector<std::size_t> former(pairs.size(), kNone);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const auto place = std::lower_bound(
        ends.begin(), ends.end(), pairs[i].after,
        [&](std::size_t end, std::size_t after) { return pairs[end].after < after; });
    if (place != ends.begin()) former[i] = *(place - 1);
    if (place == ends.end()) {
      ends.push_back(i);
    } else {
      *place = i;
    }
  }
  std::vector<AlignedEntries> ascent;
  for (std::size_t i = ends.empty() ? kNone : ends.back(); i != kNone; i = former[i]) {
    ascent.push_back(pairs[i]);
  }
  std::reverse(ascent.begin(), ascent.end());
  return ascent;
}

}  // namespace projectdb
