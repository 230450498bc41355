#include "compare/entry_matching.h"

#include <algorithm>
#include <utility>

#include "compare/entry_pairs.h"
#include "compare/sequence_alignment.h"
#include "compare/three_way_choice.h"

namespace projectdb {
namespace {

using Positions = std::vector<std::size_t>;
using TextViews = std::vector<std::string_view>;

/// The positions below a size of which something is so.
template <typename Predicate>
Positions PositionsOf(std::size_t size, const Predicate& predicate) {
  Positions positions;
  for (std::size_t i = 0; i < size; ++i) {
    if (predicate(i)) positions.push_back(i);
  }
  return positions;
}

TextViews TextsAt(const TextViews& texts, const Positions& positions) {
  TextViews selected;
  selected.reserve(positions.size());
  for (const std::size_t position : positions) selected.push_back(texts[position]);
  return selected;
}

/// Pairs of equal texts among some of the texts.
std::vector<AlignedEntries> PairAt(const TextViews& before, const Positions& before_positions,
                                   const TextViews& after, const Positions& after_positions) {
  std::vector<AlignedEntries> pairs =
      PairEqualEntries(TextsAt(before, before_positions), TextsAt(after, after_positions));
  for (AlignedEntries& pair : pairs) {
    pair = {before_positions[pair.before], after_positions[pair.after]};
  }
  return pairs;
}

/// Which entries of two sequences are the same.
struct Pairing {
  using Partners = std::vector<std::optional<std::size_t>>;

  Pairing(const MergeSequence& before, const MergeSequence& after)
      : after_of(before.entries.size()), before_of(after.entries.size()) {}

  void Add(const std::vector<AlignedEntries>& pairs) {
    for (const AlignedEntries& pair : pairs) Add(pair);
  }

  void Add(const AlignedEntries& pair) {
    after_of[pair.before] = pair.after;
    before_of[pair.after] = pair.before;
  }

  /// Gives the partner of one entry to another, that may be the same.
  void HandOver(std::size_t former_before, std::size_t before) {
    const auto after = std::exchange(after_of[former_before], std::nullopt);
    Add(AlignedEntries{before, after.value()});
  }

  Partners after_of;   ///< By position in the first sequence.
  Partners before_of;  ///< By position in the second sequence.
};

class EntryMatching {
 public:
  explicit EntryMatching(const Three<const MergeSequence&>& sequences)
      : sequences_(sequences),
        ours_(sequences.base, sequences.ours),
        theirs_(sequences.base, sequences.theirs),
        added_(sequences.ours, sequences.theirs) {
    PairEqual(sequences_.ours, ours_);
    PairEqual(sequences_.theirs, theirs_);
    LeaveOutTheSame();
    PairAdded(&MergeSequence::entries);
    PairChangedAlike();
    PairChanged(sequences_.ours, AddedByOurs(), ours_);
    PairChanged(sequences_.theirs, AddedByTheirs(), theirs_);
    PairAdded(&MergeSequence::names);
  }

  std::vector<MergedEntry> Entries() const {
    std::vector<MergedEntry> entries;
    for (std::size_t i = 0; i < ours_.after_of.size(); ++i) {
      entries.push_back({i, ours_.after_of[i], theirs_.after_of[i]});
    }
    for (std::size_t i = 0; i < ours_.before_of.size(); ++i) {
      if (!ours_.before_of[i]) entries.push_back({std::nullopt, i, added_.after_of[i]});
    }
    for (const std::size_t i : AddedByTheirs()) entries.push_back({std::nullopt, std::nullopt, i});
    return entries;
  }

 private:
  void PairEqual(const MergeSequence& side, Pairing& pairing) const {
    const TextViews& base = sequences_.base.entries;
    pairing.Add(AlignEqualEntries(base, side.entries));
    pairing.Add(
        PairAt(base, Unpaired(pairing.after_of), side.entries, Unpaired(pairing.before_of)));
  }

  // Otherwise all of an entry's repetitions would be gone if each side removed some of them.
  void LeaveOutTheSame() {
    const TextViews& base = sequences_.base.entries;
    const Positions only_ours = PositionsOf(
        base.size(), [&](std::size_t i) { return ours_.after_of[i] && !theirs_.after_of[i]; });
    const Positions only_theirs = PositionsOf(
        base.size(), [&](std::size_t i) { return theirs_.after_of[i] && !ours_.after_of[i]; });
    for (const auto& [ours, theirs] : PairAt(base, only_ours, base, only_theirs)) {
      const std::size_t first = std::min(ours, theirs);
      ours_.HandOver(ours, first);
      theirs_.HandOver(theirs, first);
    }
  }

  // What both sides have instead of an entry is what they have made of it.
  void PairChangedAlike() {
    const Positions gone = PositionsOf(ours_.after_of.size(), [&](std::size_t i) {
      return !ours_.after_of[i] && !theirs_.after_of[i];
    });
    const Positions alike = PositionsOf(
        added_.after_of.size(), [&](std::size_t i) { return added_.after_of[i].has_value(); });
    for (const AlignedEntries& pair :
         PairAt(sequences_.base.names, gone, sequences_.ours.names, alike)) {
      ours_.Add(pair);
      theirs_.Add(AlignedEntries{pair.before, added_.after_of[pair.after].value()});
    }
  }

  void PairChanged(const MergeSequence& side, const Positions& added, Pairing& pairing) const {
    pairing.Add(PairAt(sequences_.base.names, Unpaired(pairing.after_of), side.names, added));
  }

  void PairAdded(TextViews MergeSequence::*texts) {
    added_.Add(
        PairAt(sequences_.ours.*texts, AddedByOurs(), sequences_.theirs.*texts, AddedByTheirs()));
  }

  static Positions Unpaired(const Pairing::Partners& partners) {
    return PositionsOf(partners.size(), [&](std::size_t i) { return !partners[i]; });
  }

  /// What only ours has.
  Positions AddedByOurs() const {
    return PositionsOf(ours_.before_of.size(),
                       [&](std::size_t i) { return !ours_.before_of[i] && !added_.after_of[i]; });
  }

  /// What only theirs has.
  Positions AddedByTheirs() const {
    return PositionsOf(theirs_.before_of.size(), [&](std::size_t i) {
      return !theirs_.before_of[i] && !added_.before_of[i];
    });
  }

  Three<const MergeSequence&> sequences_;
  Pairing ours_;    ///< Entries of the base with those of ours.
  Pairing theirs_;  ///< Entries of the base with those of theirs.
  Pairing added_;   ///< Entries of ours that the base does not have, with those of theirs.
};

}  // namespace

std::vector<MergedEntry> MatchEntries(const MergeSequence& base, const MergeSequence& ours,
                                      const MergeSequence& theirs) {
  return EntryMatching({base, ours, theirs}).Entries();
}

}  // namespace projectdb
