#include "compare/entry_matching.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using projectdb::MatchEntries;
using projectdb::MergedEntry;
using projectdb::MergeSequence;

using Lines = std::vector<std::string>;

Lines EntriesOf(const std::string& words) {
  std::istringstream stream(words);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// Entries whose name is their first character, such as "a1".
MergeSequence View(const Lines& entries) {
  MergeSequence view{{entries.begin(), entries.end()}, {}};
  for (const std::string_view entry : view.entries) view.names.push_back(entry.substr(0, 1));
  return view;
}

std::string Show(std::optional<std::size_t> position) {
  return position ? std::to_string(*position) : "-";
}

struct MatchCase {
  const char* name;
  const char* base;
  const char* ours;
  const char* theirs;
  /// The positions of each entry in the three.
  Lines positions;
};

void PrintTo(const MatchCase& c, std::ostream* out) { *out << c.name; }

const MatchCase kMatches[] = {
    {"nothing", "", "", "", {}},
    {"the same", "a b", "a b", "a b", {"0 0 0", "1 1 1"}},
    {"moved", "a b c", "c a b", "b c a", {"0 1 2", "1 2 0", "2 0 1"}},
    {"removed", "a b c", "b c", "a b", {"0 - 0", "1 0 1", "2 1 -"}},
    {"added", "a", "x a", "a y", {"0 1 0", "- 0 -", "- - 1"}},
    {"added by both", "a", "x a", "a x", {"0 1 0", "- 0 1"}},
    {"added by both of one name", "a", "x1 a", "a x2", {"0 1 0", "- 0 1"}},
    {"equal ones before those of one name", "", "x1 x2", "x2 x3", {"- 0 1", "- 1 0"}},
    {"changed", "a1 b1", "b1 a2", "a1 b2", {"0 1 0", "1 0 1"}},
    {"changed alike", "a1 b", "b a2", "a2 b", {"0 1 0", "1 0 1"}},
    {"changed alike, another added by one", "a1", "a2", "a3 a2", {"0 0 1", "- - 0"}},
    {"another name", "a", "b", "c", {"0 - -", "- 0 -", "- - 0"}},
    {"repeated in the base", "a a", "a", "a", {"0 0 0", "1 - -"}},
    {"the same repetition left out", "a b a", "b a", "a b", {"0 1 0", "1 0 1", "2 - -"}},
    {"a repetition added by both", "a b", "a a b", "a b a", {"0 0 0", "1 2 1", "- 1 2"}},
    {"what both added is no change of one's", "a1", "a2", "a1 a2", {"0 - 0", "- 0 1"}},
};

class MatchedEntries : public testing::TestWithParam<MatchCase> {};

INSTANTIATE_TEST_SUITE_P(Cases, MatchedEntries, testing::ValuesIn(kMatches));

TEST_P(MatchedEntries, MatchEntries_ThreeSequences_GivesThePositionsOfEachEntry) {
  const MatchCase& c = GetParam();
  const Lines base = EntriesOf(c.base);
  const Lines ours = EntriesOf(c.ours);
  const Lines theirs = EntriesOf(c.theirs);
  Lines positions;
  for (const MergedEntry& entry : MatchEntries(View(base), View(ours), View(theirs))) {
    positions.push_back(Show(entry.base) + " " + Show(entry.ours) + " " + Show(entry.theirs));
  }
  EXPECT_EQ(positions, c.positions);
}

}  // namespace
