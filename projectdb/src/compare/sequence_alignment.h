#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "compare/entry_pairs.h"

namespace projectdb {

/// Puts equal entries of two sequences side by side, in ascending order of both positions.
///
/// These are as many as can be, unless entries repeat and more than kMostEdits removals and
/// insertions of entries that both sequences have make the one of the other; then they may be
/// far fewer. Exchanging the sequences exchanges the positions and nothing else.
///
/// For n entries, takes O(n) memory and O(n log n) time.
std::vector<AlignedEntries> AlignEqualEntries(const std::vector<std::string_view>& before,
                                              const std::vector<std::string_view>& after);

/// Up to how many removals and insertions the fewest are found, whatever the sequences are.
inline constexpr std::size_t kMostEdits = 512;

}  // namespace projectdb
