#include "compare/sequence_merge.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "compare/three_way_choice.h"
#include "testing/list_edits.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using projectdb::Choice;
using projectdb::Choose;
using projectdb::MergedEntry;
using projectdb::MergeSequence;
using projectdb::MergeSequences;

/// Entries whose name is their first character and whose value is the rest, such as "a1".
using Sequence = std::vector<std::string>;

MergeSequence ViewOf(const Sequence& sequence) {
  MergeSequence view{{sequence.begin(), sequence.end()}, {}};
  for (const std::string_view entry : view.entries) view.names.push_back(entry.substr(0, 1));
  return view;
}

std::optional<std::string> EntryAt(const Sequence& sequence, std::optional<std::size_t> position) {
  return position ? std::optional(sequence.at(*position)) : std::nullopt;
}

/// An entry as each of the three has it.
using EntryConflict = projectdb::Three<std::optional<std::string>>;

/// "a a1 -"
Sequence Show(const std::vector<EntryConflict>& conflicts) {
  Sequence lines;
  for (const EntryConflict& conflict : conflicts) {
    lines.push_back(conflict.base.value_or("-") + " " + conflict.ours.value_or("-") + " " +
                    conflict.theirs.value_or("-"));
  }
  return lines;
}

/// The entries that the changes of both sides leave, ours where they conflict.
struct MergedSequence {
  Sequence entries;
  std::vector<EntryConflict> conflicts;
};

MergedSequence Merge(const Sequence& base, const Sequence& ours, const Sequence& theirs) {
  MergedSequence merged;
  for (const MergedEntry& entry : MergeSequences(ViewOf(base), ViewOf(ours), ViewOf(theirs))) {
    const EntryConflict texts{EntryAt(base, entry.base), EntryAt(ours, entry.ours),
                              EntryAt(theirs, entry.theirs)};
    const Choice choice = Choose(texts);
    const auto& chosen = Chosen(choice, texts);
    if (chosen) merged.entries.push_back(*chosen);
    if (choice == Choice::kConflict) merged.conflicts.push_back(texts);
  }
  return merged;
}

Sequence Words(const std::string& words) {
  std::istringstream stream(words);
  return {std::istream_iterator<std::string>(stream), {}};
}

struct SequenceMergeCase {
  const char* name;
  const char* base;
  const char* ours;
  const char* theirs;
  const char* merged;
  Sequence conflicts = {};
};

void PrintTo(const SequenceMergeCase& c, std::ostream* out) { *out << c.name; }

const SequenceMergeCase kSequenceMerges[] = {
    {"nothing at all", "", "", "", ""},
    {"nothing changed", "a b", "a b", "a b", "a b"},

    {"added by ours", "a b", "a x b", "a b", "a x b"},
    {"added by theirs", "a b", "a b", "a x b", "a x b"},
    {"added at different places", "a b", "x a b", "a b y", "x a b y"},
    {"added at one place", "a b", "a x b", "a y b", "a x y b"},
    {"added at the start", "a", "x a", "y a", "x y a"},
    {"added at the end", "a", "a x", "a y", "a x y"},
    {"added to nothing", "", "x", "y", "x y"},
    {"several added at one place", "a", "a x y", "a v w", "a x y v w"},
    {"the same added at one place", "a b", "a x b", "a x b", "a x b"},
    {"the same added at different places", "a b", "x a b", "a b x", "x a b"},
    {"the same added among others", "a", "a p x q", "a r x s", "a p r x q s"},
    {"the same added in other orders", "a", "a x y", "a y x", "a x y"},
    {"added differently", "a", "a x1", "a x2", "a x1", {"- x1 x2"}},
    {"added beside a removed one", "a b c", "a c", "a b x c", "a x c"},
    {"added beside a moved one", "a b c", "a c b", "a b x c", "a x c b"},

    {"removed by ours", "a b c", "a c", "a b c", "a c"},
    {"removed by theirs", "a b c", "a b c", "a c", "a c"},
    {"removed by both", "a b c", "a c", "a c", "a c"},
    {"different ones removed", "a b c", "b c", "a b", "b"},
    {"all removed", "a b", "", "a b", ""},
    {"all removed and one added", "a b", "", "a x b", "x"},

    {"changed by ours", "a b", "a1 b", "a b", "a1 b"},
    {"changed by theirs", "a b", "a b", "a1 b", "a1 b"},
    {"changed alike", "a b", "a1 b", "a1 b", "a1 b"},
    {"different ones changed", "a b", "a1 b", "a b1", "a1 b1"},
    {"changed differently", "a b", "a1 b", "a2 b", "a1 b", {"a a1 a2"}},
    {"changed by ours and removed", "a b", "a1 b", "b", "a1 b", {"a a1 -"}},
    {"changed by theirs and removed", "a b", "b", "a1 b", "b", {"a - a1"}},
    {"changed beside additions", "a b", "x a1 b", "a b y", "x a1 b y"},

    {"moved by ours", "a b c", "b c a", "a b c", "b c a"},
    {"moved by theirs", "a b c", "a b c", "c a b", "c a b"},
    {"moved alike", "a b c", "b c a", "b c a", "b c a"},
    {"moved to different places", "a b c d", "b a c d", "b c d a", "b a c d"},
    {"different ones moved", "a b c d", "b c d a", "a d b c", "d b c a"},
    {"moved and removed", "a b c", "b c a", "b c", "b c"},
    {"moved and changed", "a b c", "b c a", "a1 b c", "b c a1"},
    {"moved and changed by one side", "a b c", "b c a1", "a b c", "b c a1"},
    {"changed alike and moved by theirs", "a b c", "a1 b c", "b c a1", "b c a1"},
    {"moved beside an addition", "a b c", "b c a", "a b c x", "b c a x"},
    {"all turned around and one added", "a b c", "c b a", "a b c x", "c b a x"},

    {"repeated by ours", "a b", "a b a", "a b", "a b a"},
    {"repeated by both", "a b", "a b a", "a b a", "a b a"},
    {"repeated by both at different places", "a b", "a a b", "a b a", "a a b"},
    {"a repetition removed", "a b a", "b a", "a b a", "b a"},
    {"different repetitions removed", "a b a", "b a", "a b", "b a"},
    {"different repetitions removed, the other way", "a b a", "a b", "b a", "b a"},
    {"one repetition changed", "a b a", "a b a1", "a b a", "a b a1"},
    {"one repetition changed, another removed", "a b a", "b a", "a1 b a", "b a", {"a - a1"}},
    {"a repetition removed by both, one entry changed", "a1 a2 a1", "a3 a1", "a1 a2", "a3 a1"},
    {"changed to one that was added", "a1", "a2", "a1 a2", "a2"},
    {"different ones changed to one", "a1 a2", "a3 a2", "a1 a3", "a3"},
};

class MergedSequences : public testing::TestWithParam<SequenceMergeCase> {};

INSTANTIATE_TEST_SUITE_P(Cases, MergedSequences, testing::ValuesIn(kSequenceMerges));

TEST_P(MergedSequences, MergeSequences_TwoChanges_GivesBoth) {
  const SequenceMergeCase& c = GetParam();
  const MergedSequence merged = Merge(Words(c.base), Words(c.ours), Words(c.theirs));
  EXPECT_EQ(merged.entries, Words(c.merged));
  EXPECT_EQ(Show(merged.conflicts), c.conflicts);
}

// Whatever sequences.

std::string PickEntry() {
  return *rc::gen::element<std::string>("a", "b", "c", "d", "e") +
         *rc::gen::element<std::string>("", "1", "2");
}

void EditSequence(Sequence& sequence) {
  for (auto i = *rc::gen::inRange(0, 6); i > 0; --i) {
    EditList(sequence, PickEntry, [](std::string& entry) {
      entry = entry[0] + *rc::gen::element<std::string>("", "1", "2", "3");
    });
  }
}

/// A sequence and two that were made of it.
struct ThreeSequences {
  Sequence base;
  Sequence ours;
  Sequence theirs;
};

ThreeSequences PickThreeSequences() {
  ThreeSequences three;
  for (auto i = *rc::gen::inRange(0, 8); i > 0; --i) three.base.push_back(PickEntry());
  three.ours = three.theirs = three.base;
  EditSequence(three.ours);
  EditSequence(three.theirs);
  return three;
}

MergedSequence Merge(const ThreeSequences& three) {
  return Merge(three.base, three.ours, three.theirs);
}

std::size_t CountOf(const std::string& entry, const Sequence& sequence) {
  return static_cast<std::size_t>(std::count(sequence.begin(), sequence.end(), entry));
}

bool Has(const Sequence& sequence, const std::string& entry) {
  return CountOf(entry, sequence) > 0;
}

Sequence InOrder(Sequence sequence) {
  std::sort(sequence.begin(), sequence.end());
  return sequence;
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_TheirsUnchanged_GivesOurs, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three.base, three.ours, three.base);
  RC_ASSERT(merged.entries == three.ours);
  RC_ASSERT(merged.conflicts.empty());
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_OursUnchanged_GivesTheirs, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three.base, three.base, three.theirs);
  RC_ASSERT(merged.entries == three.theirs);
  RC_ASSERT(merged.conflicts.empty());
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_BothChangedAlike_GivesThat, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three.base, three.ours, three.ours);
  RC_ASSERT(merged.entries == three.ours);
  RC_ASSERT(merged.conflicts.empty());
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_SidesExchanged_ExchangesThemInTheConflicts, ()) {
  const ThreeSequences three = PickThreeSequences();
  MergedSequence exchanged = Merge(three.base, three.theirs, three.ours);
  for (EntryConflict& conflict : exchanged.conflicts) std::swap(conflict.ours, conflict.theirs);
  RC_ASSERT(InOrder(Show(exchanged.conflicts)) == InOrder(Show(Merge(three).conflicts)));
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_SidesExchangedWithoutConflict_GivesTheSameEntries,
              ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  const MergedSequence exchanged = Merge(three.base, three.theirs, three.ours);
  if (merged.conflicts.empty()) RC_ASSERT(InOrder(merged.entries) == InOrder(exchanged.entries));
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_AddedByOneSide_IsThere, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  for (const std::string& entry : three.ours) {
    if (!Has(three.base, entry)) RC_ASSERT(Has(merged.entries, entry));
  }
  for (const std::string& entry : three.theirs) {
    if (Has(three.base, entry)) continue;
    const auto is_theirs = [&](const EntryConflict& conflict) { return conflict.theirs == entry; };
    RC_ASSERT(Has(merged.entries, entry) ||
              std::any_of(merged.conflicts.begin(), merged.conflicts.end(), is_theirs));
  }
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_RemovedByOneSide_IsGone, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  const auto is_left_alone = [&](const std::string& entry, const Sequence& side) {
    return CountOf(entry, side) == CountOf(entry, three.base);
  };
  for (const std::string& entry : three.base) {
    const bool is_removed = (!Has(three.ours, entry) && is_left_alone(entry, three.theirs)) ||
                            (!Has(three.theirs, entry) && is_left_alone(entry, three.ours));
    if (is_removed) RC_ASSERT(!Has(merged.entries, entry));
  }
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_EntryOfAllThree_IsThere, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  for (const std::string& entry : three.base) {
    if (Has(three.ours, entry) && Has(three.theirs, entry)) {
      RC_ASSERT(Has(merged.entries, entry));
    }
  }
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_AnyEntry_IsRepeatedNoMoreThanInOneOfTheThree, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  for (const std::string& entry : merged.entries) {
    RC_ASSERT(CountOf(entry, merged.entries) <=
              std::max({CountOf(entry, three.base), CountOf(entry, three.ours),
                        CountOf(entry, three.theirs)}));
  }
}

/// How often an entry is there when what each side added or removed is, but once for both.
std::size_t MergedCount(const std::string& entry, const ThreeSequences& three) {
  const std::size_t base = CountOf(entry, three.base);
  const auto [fewer, more] =
      std::minmax({CountOf(entry, three.ours), CountOf(entry, three.theirs), base});
  return more + fewer - base;
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_NoConflict_AddsAndRemovesAsOftenAsASideDid, ()) {
  const ThreeSequences three = PickThreeSequences();
  const MergedSequence merged = Merge(three);
  for (const Sequence& sequence : {three.base, three.ours, three.theirs}) {
    if (!merged.conflicts.empty()) break;
    for (const std::string& entry : sequence) {
      RC_ASSERT(CountOf(entry, merged.entries) == MergedCount(entry, three));
    }
  }
}

/// Whether each of so many positions is given, and only once.
bool IsEachOnce(std::vector<std::size_t> positions, std::size_t count) {
  std::sort(positions.begin(), positions.end());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (positions[i] != i) return false;
  }
  return positions.size() == count;
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_EntriesOfAllThree_AreGivenOnceEach, ()) {
  const ThreeSequences three = PickThreeSequences();
  std::vector<std::size_t> base;
  std::vector<std::size_t> ours;
  std::vector<std::size_t> theirs;
  for (const MergedEntry& entry :
       MergeSequences(ViewOf(three.base), ViewOf(three.ours), ViewOf(three.theirs))) {
    if (entry.base) base.push_back(*entry.base);
    if (entry.ours) ours.push_back(*entry.ours);
    if (entry.theirs) theirs.push_back(*entry.theirs);
  }
  RC_ASSERT(IsEachOnce(base, three.base.size()));
  RC_ASSERT(IsEachOnce(ours, three.ours.size()));
  RC_ASSERT(IsEachOnce(theirs, three.theirs.size()));
}

/// The same sequence with new entries put in, all of one name.
Sequence WithNewEntries(Sequence sequence, const std::string& name) {
  for (auto i = *rc::gen::inRange(0, 5); i > 0; --i) {
    sequence.insert(PickPlace(sequence), name + std::to_string(i));
  }
  return sequence;
}

Sequence WithoutEntries(Sequence sequence, char name) {
  sequence.erase(std::remove_if(sequence.begin(), sequence.end(),
                                [&](const std::string& entry) { return entry[0] == name; }),
                 sequence.end());
  return sequence;
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_OneSideOnlyAdds_LeavesTheOrderOfTheOther, ()) {
  const ThreeSequences three = PickThreeSequences();
  const Sequence added = WithNewEntries(three.base, "x");
  RC_ASSERT(WithoutEntries(Merge(three.base, three.ours, added).entries, 'x') == three.ours);
  RC_ASSERT(WithoutEntries(Merge(three.base, added, three.theirs).entries, 'x') == three.theirs);
}

RC_GTEST_PROP(AnyMergedSequences, MergeSequences_BothSidesOnlyAdd_LeavesTheOrderOfBoth, ()) {
  const Sequence base = PickThreeSequences().base;
  const Sequence ours = WithNewEntries(base, "x");
  const Sequence theirs = WithNewEntries(base, "y");
  const Sequence merged = Merge(base, ours, theirs).entries;
  RC_ASSERT(WithoutEntries(merged, 'y') == ours);
  RC_ASSERT(WithoutEntries(merged, 'x') == theirs);
}

// Long sequences. What took time or memory by the square of their length would be conspicuous.

Sequence ManyFiles(std::size_t count, std::size_t occurrences = 1) {
  Sequence files;
  for (std::size_t i = 0; i < count * occurrences; ++i) {
    files.push_back(std::to_string(i % count) + ".v");
  }
  return files;
}

Sequence TurnedAround(const Sequence& sequence) { return {sequence.rbegin(), sequence.rend()}; }

/// Each entry has its own name.
std::vector<MergedEntry> MergeFiles(const Sequence& base, const Sequence& ours,
                                    const Sequence& theirs) {
  const auto view = [](const Sequence& sequence) {
    return MergeSequence{{sequence.begin(), sequence.end()}, {sequence.begin(), sequence.end()}};
  };
  return MergeSequences(view(base), view(ours), view(theirs));
}

constexpr std::size_t kManyFiles = 20'000;

TEST(LongMergedSequences, MergeSequences_OneTurnedAround_GivesItsOrder) {
  const Sequence base = ManyFiles(kManyFiles);
  const Sequence ours = TurnedAround(base);
  Sequence merged;
  for (const MergedEntry& entry : MergeFiles(base, ours, base)) {
    merged.push_back(ours.at(entry.ours.value()));
  }
  EXPECT_EQ(merged, ours);
}

TEST(LongMergedSequences, MergeSequences_BothTurnedAroundAndAddedTo_GivesEachEntryOnce) {
  const Sequence base = ManyFiles(kManyFiles);
  Sequence ours = TurnedAround(base);
  ours.emplace_back("ours.v");
  Sequence theirs = TurnedAround(base);
  theirs.emplace_back("theirs.v");
  EXPECT_EQ(MergeFiles(base, ours, theirs).size(), kManyFiles + 2);
}

TEST(LongMergedSequences, MergeSequences_RepeatedEntriesTurnedAround_GivesEachEntryOnce) {
  const Sequence base = ManyFiles(kManyFiles / 100, 100);
  EXPECT_EQ(MergeFiles(base, TurnedAround(base), base).size(), kManyFiles);
}

TEST(LongMergedSequences, MergeSequences_OneEntryRepeatedOverAndOver_LeavesTheRemovedOnesOut) {
  const Sequence base(kManyFiles, "a.v");
  const auto merged =
      MergeFiles(base, Sequence(kManyFiles / 2, "a.v"), Sequence(kManyFiles / 3, "a.v"));
  EXPECT_EQ(std::count_if(merged.begin(), merged.end(),
                          [](const MergedEntry& entry) { return entry.ours && entry.theirs; }),
            static_cast<std::ptrdiff_t>(kManyFiles / 3));
}

TEST(LongMergedSequences, MergeSequences_NothingInCommon_GivesAllEntries) {
  EXPECT_EQ(MergeFiles(ManyFiles(kManyFiles), Sequence(kManyFiles, "b"), Sequence(kManyFiles, "c"))
                .size(),
            3 * kManyFiles);
}

}  // namespace
