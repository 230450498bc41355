#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "console.h"
#include "file_kinds.h"

namespace kelproj {

/// A file that a project names.
struct NamedFile {
  const FileKind* kind;
  std::string list;   ///< The key of the list that has it, such as "design.files".
  std::string place;  ///< Of its name in the project, such as "design.files[3]".
  std::string name;   ///< As it is stored.
  std::filesystem::path path;
  std::string version;  ///< Of its language; "" if its kind has none.
  std::string library;  ///< "" if its kind has none.

  /// Whether it is what an IP instance was made from, which is no source itself.
  bool is_ip_instance() const { return list == projectdb::kIPInstancesKey; }
};

/// The key of the list of an IP instance's sources.
/// @param list the key of the list of instances
std::string SourceListKey(const std::string& list, const std::string& instance);

/// All files that the project names, in the order of its lists.
std::vector<NamedFile> FilesOf(const projectdb::ProjectContents& project);

/// The path without "." and "..". It keeps its links, but for those through which it goes back, as
/// these lead elsewhere than they are spelled.
std::filesystem::path NormalPath(const std::filesystem::path& path);

/// The name of a file relative to a directory. Links on the way to the directory are not in it.
/// @param path absolute
std::string NameIn(const std::filesystem::path& directory, const std::filesystem::path& path);

/// Requires that a name in the arguments is one.
/// @exception Trouble if it is empty
void RequireName(const std::string& name);

/// The name under which a project stores a file that the user names from where he stands: relative
/// to the directory, which is the project's or, for a source of an IP instance, that of its path.
/// An absolute name stays.
std::string StoredName(const std::string& name, const std::filesystem::path& directory);

/// Requires that a file of this name may be stored for the term.
/// @exception Trouble if it has not the term's ending
void RequireEnding(const projectdb::ProjectTerm& term, const std::string& name);

/// How the user names a file from where he stands.
std::string NameFromHere(const std::filesystem::path& path);

/// The same for a file of a project; a name that is stored as absolute stays.
std::string NameFromHere(const NamedFile& file);

/// Whether a file is there; a directory is none.
bool IsFile(const std::filesystem::path& path);

/// Why the name of a project's file is not that of a file; nothing if it is.
std::optional<std::string> WhyNoFile(const NamedFile& file);

/// The same for a stored name, with the directory where a file of a relative name is not.
/// @param directory against which the name is resolved
std::optional<std::string> WhyNoFile(const std::filesystem::path& directory,
                                     const std::string& name);

}  // namespace kelproj
