#include "compare/sequence_alignment.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace projectdb {
namespace {

using Alignment = std::vector<AlignedEntries>;

/// Entries of a sequence as numbers, equal if the entries are.
struct Numbers {
  std::vector<std::size_t> numbers;
  std::vector<std::size_t> positions;  ///< Of the entries in the sequence that they come from.
};

/// Of both sequences, the entries between two positions.
struct TextStretch {
  const std::vector<std::string_view>& before;
  const std::vector<std::string_view>& after;
  std::size_t start;  ///< The same in both.
  std::size_t before_end;
  std::size_t after_end;
};

/// Without the entries at the start and at the end that are equal in both.
TextStretch DifferentStretch(const std::vector<std::string_view>& before,
                             const std::vector<std::string_view>& after) {
  const auto start = static_cast<std::size_t>(
      std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first -
      before.begin());
  TextStretch stretch{before, after, start, before.size(), after.size()};
  while (stretch.before_end > start && stretch.after_end > start &&
         before[stretch.before_end - 1] == after[stretch.after_end - 1]) {
    --stretch.before_end;
    --stretch.after_end;
  }
  return stretch;
}

struct Occurrence {
  bool is_in_before = false;
  bool is_in_after = false;
  std::size_t number = 0;
};

/// The entries of the stretch that both sequences have. Their numbers have the order of the texts,
/// so that they are the same whichever sequence comes first.
std::pair<Numbers, Numbers> NumberSharedEntries(const TextStretch& stretch) {
  std::map<std::string_view, Occurrence> occurrences;
  for (std::size_t i = stretch.start; i < stretch.before_end; ++i) {
    occurrences[stretch.before[i]].is_in_before = true;
  }
  for (std::size_t i = stretch.start; i < stretch.after_end; ++i) {
    occurrences[stretch.after[i]].is_in_after = true;
  }
  std::size_t next = 0;
  for (auto& [text, occurrence] : occurrences) occurrence.number = next++;
  const auto number = [&](const std::vector<std::string_view>& sequence, std::size_t end) {
    Numbers numbers;
    for (std::size_t i = stretch.start; i < end; ++i) {
      const Occurrence& occurrence = occurrences.at(sequence[i]);
      if (!occurrence.is_in_before || !occurrence.is_in_after) continue;
      numbers.numbers.push_back(occurrence.number);
      numbers.positions.push_back(i);
    }
    return numbers;
  };
  return {number(stretch.before, stretch.before_end), number(stretch.after, stretch.after_end)};
}

/// The shortest way to edit one sequence into another: the greedy algorithm of E. Myers, which goes
/// as far as it can with no edit, with one, with two and so on. Diagonal i of a round is the one
/// on which i of its edits are removals.
class ShortestEdit {
 public:
  ShortestEdit(const std::vector<std::size_t>& before, const std::vector<std::size_t>& after)
      : before_(before), after_(after) {}

  /// None if it takes more than kMostEdits.
  std::optional<Alignment> Find() {
    for (std::size_t edits = 0; edits <= kMostEdits; ++edits) {
      rounds_.emplace_back();
      for (std::size_t removals = 0; removals <= edits; ++removals) {
        const std::size_t x = Follow(edits, removals);
        rounds_.back().push_back(x);
        if (x == before_.size() && RowOf(x, edits, removals) == after_.size()) {
          return WayBack(removals);
        }
      }
    }
    return std::nullopt;
  }

 private:
  /// Whether the furthest way to a diagonal ends with a removal.
  bool ComesByRemoval(std::size_t edits, std::size_t removals) const {
    if (removals == 0 || removals == edits) return removals != 0;
    const std::vector<std::size_t>& former = rounds_[edits - 1];
    return former[removals - 1] + 1 > former[removals];
  }

  /// Where a diagonal is entered.
  std::size_t StartOf(std::size_t edits, std::size_t removals) const {
    if (edits == 0) return 0;
    const std::vector<std::size_t>& former = rounds_[edits - 1];
    return ComesByRemoval(edits, removals) ? former[removals - 1] + 1 : former[removals];
  }

  /// How far a diagonal leads.
  std::size_t Follow(std::size_t edits, std::size_t removals) const {
    std::size_t x = StartOf(edits, removals);
    std::size_t y = RowOf(x, edits, removals);
    while (x < before_.size() && y < after_.size() && before_[x] == after_[y]) ++x, ++y;
    return x;
  }

  /// x less the removals is the number of equal entries, y is that number and the insertions.
  static std::size_t RowOf(std::size_t x, std::size_t edits, std::size_t removals) {
    return x + edits - 2 * removals;
  }

  Alignment WayBack(std::size_t removals) const {
    Alignment alignment;
    for (std::size_t edits = rounds_.size(); edits-- > 0;) {
      const std::size_t start = StartOf(edits, removals);
      for (std::size_t x = rounds_[edits][removals]; x > start; --x) {
        alignment.push_back({x - 1, RowOf(x, edits, removals) - 1});
      }
      if (ComesByRemoval(edits, removals)) --removals;
    }
    std::reverse(alignment.begin(), alignment.end());
    return alignment;
  }

  const std::vector<std::size_t>& before_;
  const std::vector<std::size_t>& after_;
  std::vector<std::vector<std::size_t>>
      rounds_;  ///< By edits and by removals, how far a diagonal leads.
};

// A sequence that is turned around needs many edits, but repeats nothing.
Alignment AlignNumbers(const std::vector<std::size_t>& before,
                       const std::vector<std::size_t>& after) {
  const std::optional<Alignment> shortest = ShortestEdit(before, after).Find();
  return shortest ? *shortest : LongestAscent(PairEqualEntries(before, after));
}

// Whichever comes first, the same one is taken as the first.
Alignment AlignEitherWay(const std::vector<std::size_t>& before,
                         const std::vector<std::size_t>& after) {
  if (!(after < before)) return AlignNumbers(before, after);
  Alignment alignment = AlignNumbers(after, before);
  for (AlignedEntries& pair : alignment) std::swap(pair.before, pair.after);
  return alignment;
}

}  // namespace

std::vector<AlignedEntries> AlignEqualEntries(const std::vector<std::string_view>& before,
                                              const std::vector<std::string_view>& after) {
  const TextStretch stretch = DifferentStretch(before, after);
  Alignment alignment;
  for (std::size_t i = 0; i < stretch.start; ++i) alignment.push_back({i, i});
  const auto [before_numbers, after_numbers] = NumberSharedEntries(stretch);
  for (const auto& [b, a] : AlignEitherWay(before_numbers.numbers, after_numbers.numbers)) {
    alignment.push_back({before_numbers.positions[b], after_numbers.positions[a]});
  }
  for (std::size_t i = 0; stretch.before_end + i < before.size(); ++i) {
    alignment.push_back({stretch.before_end + i, stretch.after_end + i});
  }
  return alignment;
}

}  // namespace projectdb
