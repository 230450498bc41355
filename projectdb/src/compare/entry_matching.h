#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace projectdb {

/// A sequence as a merge looks at it: two texts of each entry. The texts belong to the caller.
struct MergeSequence {
  std::vector<std::string_view> entries;  ///< Equal if the entries are.
  std::vector<std::string_view> names;    ///< What an entry keeps when it is changed.
};

/// Where one entry stands in three sequences; nowhere in one that does not have it. What stands
/// there in two of the sequences is equal, or has the same name and was changed.
struct MergedEntry {
  std::optional<std::size_t> base;
  std::optional<std::size_t> ours;
  std::optional<std::size_t> theirs;
};

/// Follows each entry through two changes of a sequence. Each entry of the three sequences is
/// given, once: first those of the base in its order, then those that ours has added in its order,
/// then the others of theirs.
///
/// Entries that are equal are the same one, the remaining ones of the same name are. Of equal
/// entries that a sequence repeats, as many are the same as can be; and if both sides leave some of
/// them out, they leave out the same ones.
///
/// For n entries, takes O(n) memory and O(n log n) time.
std::vector<MergedEntry> MatchEntries(const MergeSequence& base, const MergeSequence& ours,
                                      const MergeSequence& theirs);

}  // namespace projectdb
