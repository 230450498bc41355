#include "compare/sequence_alignment.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "testing/test.h"

namespace {

using namespace test_support;
using projectdb::AlignedEntries;
using projectdb::AlignEqualEntries;
using projectdb::kMostEdits;

using Positions = std::vector<std::pair<std::size_t, std::size_t>>;
using Sequence = std::vector<std::string>;

Positions Align(const Sequence& before, const Sequence& after) {
  Positions positions;
  for (const AlignedEntries& pair :
       AlignEqualEntries({before.begin(), before.end()}, {after.begin(), after.end()})) {
    positions.emplace_back(pair.before, pair.after);
  }
  return positions;
}

/// One entry for each character.
Sequence Letters(std::string_view letters) {
  Sequence sequence;
  for (const char letter : letters) sequence.emplace_back(1, letter);
  return sequence;
}

TEST(SequenceAlignment, AlignEqualEntries_NothingInCommon_GivesNothing) {
  EXPECT_THAT(Align({}, {}), IsEmpty());
  EXPECT_THAT(Align(Letters("abc"), {}), IsEmpty());
  EXPECT_THAT(Align(Letters("abc"), Letters("xyz")), IsEmpty());
}

TEST(SequenceAlignment, AlignEqualEntries_SomethingInCommon_AlignsIt) {
  EXPECT_THAT(Align(Letters("aba"), Letters("aba")),
              ElementsAre(Pair(0, 0), Pair(1, 1), Pair(2, 2)));
  EXPECT_THAT(Align(Letters("abc"), Letters("axbc")),
              ElementsAre(Pair(0, 0), Pair(1, 2), Pair(2, 3)));
  EXPECT_THAT(Align(Letters("aa"), Letters("aaa")), ElementsAre(Pair(0, 0), Pair(1, 1)));
  EXPECT_THAT(Align(Letters("abcd"), Letters("bcda")),
              ElementsAre(Pair(1, 0), Pair(2, 1), Pair(3, 2)));
}

/// The length of a longest common subsequence, by the book.
std::size_t LongestCommonSubsequence(const Sequence& before, const Sequence& after) {
  std::vector<std::size_t> row(after.size() + 1, 0);
  for (const std::string& entry : before) {
    std::size_t diagonal = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
      const std::size_t above = row[i + 1];
      row[i + 1] = entry == after[i] ? diagonal + 1 : std::max(above, row[i]);
      diagonal = above;
    }
  }
  return row.back();
}

bool IsAlignmentOfEqualEntries(const Positions& pairs, const Sequence& before,
                               const Sequence& after) {
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const auto& [b, a] = pairs[i];
    if (b >= before.size() || a >= after.size() || before[b] != after[a]) return false;
    if (i > 0 && (pairs[i - 1].first >= b || pairs[i - 1].second >= a)) return false;
  }
  return true;
}

Positions Exchanged(Positions pairs) {
  for (auto& [before, after] : pairs) std::swap(before, after);
  return pairs;
}

rc::Gen<Sequence> AnySequence() {
  return rc::gen::container<Sequence>(rc::gen::element<std::string>("a", "b", "c", "d"));
}

RC_GTEST_PROP(SequenceAlignment, AlignEqualEntries_AnySequences_AlignsAsManyAsCanBe, ()) {
  const auto before = *AnySequence();
  const auto after = *AnySequence();
  const Positions pairs = Align(before, after);
  RC_ASSERT(IsAlignmentOfEqualEntries(pairs, before, after));
  RC_ASSERT(pairs.size() == LongestCommonSubsequence(before, after));
}

RC_GTEST_PROP(SequenceAlignment, AlignEqualEntries_SequencesExchanged_ExchangesThePositions, ()) {
  const auto before = *AnySequence();
  const auto after = *AnySequence();
  RC_ASSERT(Align(after, before) == Exchanged(Align(before, after)));
}

/// The names of so many files, each occurring so many times.
Sequence Files(std::size_t count, std::size_t occurrences = 1) {
  Sequence files;
  for (std::size_t i = 0; i < count * occurrences; ++i) {
    files.push_back("f" + std::to_string(i % count) + ".v");
  }
  return files;
}

/// The same entries in a disorder that is always the same.
Sequence Shuffled(Sequence files) {
  std::uint32_t state = 1;
  for (std::size_t i = files.size(); i > 1; --i) {
    state = state * 1664525U + 1013904223U;
    std::swap(files[i - 1], files[(state >> 8U) % i]);
  }
  return files;
}

constexpr std::size_t kTooMany = 4 * kMostEdits;

TEST(SequenceAlignment, AlignEqualEntries_ManyUniqueEntriesInDisorder_AlignsAsManyAsCanBe) {
  const Sequence before = Files(kTooMany);
  const Sequence after = Shuffled(before);
  const Positions pairs = Align(before, after);
  EXPECT_TRUE(IsAlignmentOfEqualEntries(pairs, before, after));
  EXPECT_EQ(pairs.size(), LongestCommonSubsequence(before, after));
}

TEST(SequenceAlignment, AlignEqualEntries_ManyEntriesReplaced_AlignsTheOthers) {
  Sequence before = Files(kTooMany);
  Sequence after = before;
  for (std::size_t i = 0; i < kTooMany; i += 2) after[i] += "h";
  EXPECT_EQ(Align(before, after).size(), kTooMany / 2);
}

TEST(SequenceAlignment, AlignEqualEntries_ManyNewEntriesAmongRepeatedOnes_AlignsTheOthers) {
  const Sequence before = Files(10, kTooMany / 10);
  Sequence after;
  for (const std::string& file : before) {
    after.push_back("new" + std::to_string(after.size()));
    after.push_back(file);
  }
  after.erase(after.begin() + 11);  // One that is repeated.
  EXPECT_EQ(Align(before, after).size(), before.size() - 1);
}

TEST(SequenceAlignment, AlignEqualEntries_ManyRepeatedEntriesInDisorder_AlignsEqualEntries) {
  const Sequence before = Files(kTooMany / 4, 4);
  const Sequence after = Shuffled(before);
  const Positions pairs = Align(before, after);
  EXPECT_FALSE(pairs.empty());
  EXPECT_TRUE(IsAlignmentOfEqualEntries(pairs, before, after));
}

TEST(SequenceAlignment, AlignEqualEntries_ManyInDisorderThatOneSideRepeats_AlignsEqualEntries) {
  Sequence before = Files(kTooMany);
  Sequence after = Shuffled(before);
  before.push_back(before[1]);
  after.push_back(before[2]);
  const Positions pairs = Align(before, after);
  EXPECT_FALSE(pairs.empty());
  EXPECT_TRUE(IsAlignmentOfEqualEntries(pairs, before, after));
}

TEST(SequenceAlignment, AlignEqualEntries_ManyInDisorderExchanged_ExchangesThePositions) {
  const Sequence before = Files(kTooMany / 4, 4);
  const Sequence after = Shuffled(before);
  EXPECT_EQ(Align(after, before), Exchanged(Align(before, after)));
}

TEST(SequenceAlignment,
     AlignEqualEntries_AHundredThousandRepeatedEntriesAndFewEdits_FindsTheEdits) {
  const Sequence before = Files(10, 10'000);
  Sequence after = before;
  after.erase(after.begin() + 20'000);
  after.insert(after.begin() + 70'000, "f3.v");
  EXPECT_EQ(Align(before, after).size(), before.size() - 1);
}

TEST(SequenceAlignment, AlignEqualEntries_AHundredThousandEntriesTurnedAround_AlignsOne) {
  const Sequence before = Files(100'000);
  EXPECT_EQ(Align(before, {before.rbegin(), before.rend()}).size(), 1U);
}

}  // namespace
