#pragma once

#include <optional>
#include <string>
#include <vector>

#include <kel/export.h>
#include <projectdb/project_contents.h>

namespace projectdb {

/// Something that both sides of a merge changed, and not alike. Its value, and the texts, are
/// called and shown as those of a ProjectDifference are.
struct MergeConflict {
  /// Which value or list.
  std::string what;
  /// The place in a list, counted from 0 in the base, and in ours for an entry that the base does
  /// not have; "" for a single value.
  std::string where;
  std::optional<std::string> base;    ///< Text of the value; none if both sides added it.
  std::optional<std::string> ours;    ///< Text of the value; none if ours removed it.
  std::optional<std::string> theirs;  ///< Text of the value; none if theirs removed it.
};

/// What a merge gives.
struct MergedProjects {
  ProjectContents contents;
  std::vector<MergeConflict> conflicts;
};

/// Brings together what was made of one project in two places: what differs from the base in ours
/// and what differs from it in theirs. It depends on nothing but the three projects.
///
/// A single value, an info attribute or a parameter is that of the side that changed it, added it
/// or removed it; if both did so alike, that; otherwise there is a conflict, and it stays as ours
/// has it.
///
/// A list keeps its order. An entry that has other fields in another project is one that was
/// changed if its name is the same; equal entries are the same ones first.
/// - What only one side added, removed, changed or moved is taken over. An entry may be moved by
///   the one and changed by the other; one that the one moved and the other removed is removed;
///   one that both moved stands where ours has it.
/// - An entry that was added or moved stands behind the nearest entry before it that its side has
///   left in its place, or where the base has that one if the other side has moved or removed it.
///   What both sides put behind the same entry is there from both, ours first; what both added
///   comes once.
/// - There is a conflict if both sides changed an entry, or added one of a name, but not alike, or
///   if one changed it and the other removed it. It stays as ours has it.
/// - If a list repeats an entry, each side has added or removed so many of it; the merge adds the
///   greater and removes the greater of the two numbers.
///
/// IP instances are such entries; but if both sides have changed one or added one of a name, its
/// path is merged as a value and its source files as a list.
///
/// There is never a conflict over the stamps of the last writing (software version and time) and
/// over the project's directory: if both sides have changed one, it is that of ours. A parameter
/// map without parameters is there if a side added it, and gone if a side removed it and there is
/// nothing in it.
///
/// A side that is equal to the base gives the other, and two equal sides give these, as they are.
/// Exchanging the sides exchanges ours and theirs in the conflicts; if there are none, the values
/// and the entries of the lists are the same, though not their order and not the stamps and the
/// directory.
///
/// Conflicts stand in the order of a ProjectDifference, those of a list in the order of the merged
/// one and those within an IP instance where that stands. For n entries it takes O(n) memory and
/// O(n log n) time.
///
/// @exception std::bad_alloc
KEL_EXPORT MergedProjects MergeProjects(const ProjectContents& base, const ProjectContents& ours,
                                        const ProjectContents& theirs);

}  // namespace projectdb
