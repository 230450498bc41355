#include "compare/entry_pairs.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "testing/test.h"

namespace {

using namespace test_support;
using projectdb::AlignedEntries;
using projectdb::LongestAscent;
using projectdb::PairEqualEntries;

using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

Pairs Show(const std::vector<AlignedEntries>& entries) {
  Pairs pairs;
  for (const AlignedEntries& entry : entries) pairs.emplace_back(entry.before, entry.after);
  return pairs;
}

Pairs PairEqual(const std::string& before, const std::string& after) {
  return Show(PairEqualEntries(std::vector<char>(before.begin(), before.end()),
                               std::vector<char>(after.begin(), after.end())));
}

TEST(EntryPairs, PairEqualEntries_NothingEqual_GivesNothing) {
  EXPECT_THAT(PairEqual("", ""), IsEmpty());
  EXPECT_THAT(PairEqual("ab", ""), IsEmpty());
  EXPECT_THAT(PairEqual("ab", "xy"), IsEmpty());
}

TEST(EntryPairs, PairEqualEntries_EqualEntries_GivesThemInTheOrderOfTheFirstSequence) {
  EXPECT_THAT(PairEqual("abc", "cxa"), ElementsAre(Pair(0, 2), Pair(2, 0)));
}

TEST(EntryPairs, PairEqualEntries_Repetitions_GivesTheFirstWithTheFirst) {
  EXPECT_THAT(PairEqual("aab", "baaa"), ElementsAre(Pair(0, 1), Pair(1, 2), Pair(2, 0)));
  EXPECT_THAT(PairEqual("aaa", "ba"), ElementsAre(Pair(0, 1)));
}

/// Pairs of the numbers from 0 on with these.
std::vector<AlignedEntries> Numbered(const std::vector<std::size_t>& numbers) {
  std::vector<AlignedEntries> pairs;
  for (const std::size_t number : numbers) pairs.push_back({pairs.size(), number});
  return pairs;
}

TEST(EntryPairs, LongestAscent_Pairs_GivesThoseThatAscend) {
  EXPECT_THAT(Show(LongestAscent({})), IsEmpty());
  EXPECT_THAT(Show(LongestAscent(Numbered({3, 0, 1, 2}))),
              ElementsAre(Pair(1, 0), Pair(2, 1), Pair(3, 2)));
}

/// The length of a longest ascent, by the book.
std::size_t LengthOfAscent(const std::vector<std::size_t>& numbers) {
  std::vector<std::size_t> lengths;
  for (const std::size_t number : numbers) {
    std::size_t length = 1;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      if (numbers[i] < number) length = std::max(length, lengths[i] + 1);
    }
    lengths.push_back(length);
  }
  return lengths.empty() ? 0 : *std::max_element(lengths.begin(), lengths.end());
}

RC_GTEST_PROP(EntryPairs, LongestAscent_AnyOrder_GivesAsManyAsCanBe, ()) {
  const auto numbers =
      *rc::gen::unique<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, 1000));
  const Pairs ascent = Show(LongestAscent(Numbered(numbers)));
  RC_ASSERT(ascent.size() == LengthOfAscent(numbers));
  for (const auto& [place, number] : ascent) RC_ASSERT(numbers.at(place) == number);
  for (std::size_t i = 1; i < ascent.size(); ++i) {
    RC_ASSERT(ascent[i - 1].first < ascent[i].first);
    RC_ASSERT(ascent[i - 1].second < ascent[i].second);
  }
}

}  // namespace
