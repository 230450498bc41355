#pragma once

#include <optional>
#include <string>
#include <vector>

#include <kel/export.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

namespace projectdb {

/// One difference between two projects.
///
/// The values and lists of a project are called by their keys in vocabulary.h, such as
/// "device.family" and "design.files", in the order there, the flow processes last. Besides:
/// - "info.NAME" is an info attribute,
/// - "ip" is the list of instances; "ip.NAME.path" and the list "ip.NAME.files" are of an instance
///   whose name each project has once and in the same order; any other is an entry of "ip" as a
///   whole,
/// - the key of a flow process stands before those of what it holds, "synthesis.tool", and
///   "synthesis.MAP.NAME" is a parameter, such as "synthesis.param.effort". A MAP that is empty or
///   has a dot or a quote in it is quoted.
///
/// A single value, and an entry of a list of names, is shown as it is. Other records are shown as
/// their fields on one line, "src/top.v version=v2001 library=work" for a design file,
/// "uart path=ip/uart.cfg file=uart.v" for an instance, "high type=e_option" for a parameter under
/// its name: empty fields but the first are left out, and text that is no single word is quoted and
/// escaped as in C. So two texts are equal only if the records are.
struct ProjectDifference {
  /// Which value or list.
  std::string what;
  /// The place in a list, counted from 0 in the project that has the entry, and in the one before
  /// for an entry that is changed; "" for a single value.
  std::string where;
  std::optional<std::string> before;  ///< Text of the value; none if it was added.
  std::optional<std::string> after;   ///< Text of the value; none if it was removed.
};

/// What must be changed to make the one project the other, in the order of the values above, of
/// names by their bytes, and of lists. It depends on nothing but the two projects, and exchanging
/// these exchanges before and after in each difference.
///
/// The stamps of the last writing (software version and time) and the projects' directories are
/// left out, and a parameter map without parameters is as good as none. Other projects differ if
/// and only if there is a difference.
///
/// Lists are compared as sequences: a file put into a list is one difference, whatever follows it,
/// and a file moved is two, removed and added. An entry that was removed and another that was added
/// at the same place are one difference with before and after, those of the same name first. As
/// many entries as can be are left alone, unless a list repeats entries and takes more than 512
/// removals and additions of entries that both lists have: then far more may be removed and added
/// again than would be needed. For n entries it takes O(n) memory and O(n log n) time.
///
/// @exception std::bad_alloc
KEL_EXPORT std::vector<ProjectDifference> CompareProjects(const ProjectContents& before,
                                                          const ProjectContents& after);

/// The same of two objects, each seen at one moment under its lock; they may be the same object.
/// @exception std::system_error if a lock fails
/// @exception std::bad_alloc
KEL_EXPORT std::vector<ProjectDifference> CompareProjects(const KelProjectDatabase& before,
                                                          const KelProjectDatabase& after);

}  // namespace projectdb
