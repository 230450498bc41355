#pragma once

#include <vector>

#include "compare/entry_matching.h"

namespace projectdb {

/// Gives each entry of three sequences, once and as MatchEntries follows it, in an order that has
/// the moves and additions of both sides; also those that a side has removed.
///
/// - Of the entries of the base, as few as possible have been moved by a side. An entry that only
///   one side has moved stands where that side has it, one that both have moved where ours has it.
/// - What a side has moved or added stands behind the nearest entry before it that this side has
///   left in its place, or where the base has that one if the other side has moved or removed it;
///   ours before theirs. An entry that both have added comes once, where ours has it.
///
/// So the order is that of the one side if the other has the base's, and that of both if they have
/// the same. For n entries, takes O(n) memory and O(n log n) time.
std::vector<MergedEntry> MergeSequences(const MergeSequence& base, const MergeSequence& ours,
                                        const MergeSequence& theirs);

}  // namespace projectdb
