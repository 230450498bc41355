#include "compare/sequence_merge.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "compare/entry_pairs.h"

namespace projectdb {
namespace {

using Entries = std::vector<MergedEntry>;

/// Entries, one behind the other, by their numbers: the positions at which they are given.
using EntryNumbers = std::vector<std::size_t>;

/// The place of an entry in one of the changed sequences.
using PlaceInSide = std::optional<std::size_t> MergedEntry::*;

/// The entries of a side in its order.
EntryNumbers SequenceOf(const Entries& entries, PlaceInSide place, std::size_t size) {
  EntryNumbers sequence(size);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::optional<std::size_t> position = entries[i].*place;
    if (position) sequence[*position] = i;
  }
  return sequence;
}

/// By number, whether a side has left an entry where the base has it.
std::vector<bool> FindLeft(const Entries& entries, PlaceInSide place) {
  std::vector<AlignedEntries> pairs;
  for (const MergedEntry& entry : entries) {
    if (entry.base && entry.*place) pairs.push_back({*entry.base, *(entry.*place)});
  }
  std::vector<bool> is_left(entries.size());
  for (const AlignedEntries& pair : LongestAscent(pairs)) is_left[pair.before] = true;
  return is_left;
}

/// What a side has put somewhere: what it has moved or added.
struct PutEntries {
  /// At 0 those at the start, at n + 1 those behind entry n of the base.
  std::vector<EntryNumbers> runs;
  std::vector<bool> is_put;  ///< By number.
};

PutEntries FindPut(const Entries& entries, PlaceInSide place, std::size_t base_size,
                   std::size_t size) {
  const std::vector<bool> is_left = FindLeft(entries, place);
  PutEntries put{std::vector<EntryNumbers>(base_size + 1), std::vector<bool>(entries.size())};
  std::size_t run = 0;
  for (const std::size_t number : SequenceOf(entries, place, size)) {
    if (is_left[number]) {
      run = number + 1;
    } else {
      put.runs[run].push_back(number);
      put.is_put[number] = true;
    }
  }
  return put;
}

/// Brings entries into the order of a merge.
class EntryOrder {
 public:
  EntryOrder(const Entries& entries, PutEntries ours, PutEntries theirs)
      : entries_(entries), ours_(std::move(ours)), theirs_(std::move(theirs)) {
    AppendRuns(ours_.runs.front(), theirs_.runs.front());
    for (std::size_t base = 0; base + 1 < ours_.runs.size(); ++base) {
      if (!ours_.is_put[base] && !theirs_.is_put[base]) Append(base);
      AppendRuns(ours_.runs[base + 1], theirs_.runs[base + 1]);
    }
  }

  Entries TakeOrdered() { return std::move(ordered_); }

 private:
  // Entries that are in both runs keep what stands before them in either.
  void AppendRuns(const EntryNumbers& ours, const EntryNumbers& theirs) {
    AlignedEntries next{0, 0};
    const auto append_until = [&](const AlignedEntries& end) {
      for (; next.before < end.before; ++next.before) Append(ours[next.before]);
      for (; next.after < end.after; ++next.after) {
        if (!ours_.is_put[theirs[next.after]]) Append(theirs[next.after]);
      }
    };
    for (const AlignedEntries& pair : LongestAscent(PairEqualEntries(ours, theirs))) {
      append_until(pair);
    }
    append_until({ours.size(), theirs.size()});
  }

  void Append(std::size_t number) { ordered_.push_back(entries_[number]); }

  const Entries& entries_;
  PutEntries ours_;
  PutEntries theirs_;
  Entries ordered_;
};

}  // namespace

std::vector<MergedEntry> MergeSequences(const MergeSequence& base, const MergeSequence& ours,
                                        const MergeSequence& theirs) {
  const Entries entries = MatchEntries(base, ours, theirs);
  const auto find_put = [&](PlaceInSide place, const MergeSequence& side) {
    return FindPut(entries, place, base.entries.size(), side.entries.size());
  };
  return EntryOrder(entries, find_put(&MergedEntry::ours, ours),
                    find_put(&MergedEntry::theirs, theirs))
      .TakeOrdered();
}

}  // namespace projectdb
