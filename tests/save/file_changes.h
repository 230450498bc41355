#pragma once

#include <chrono>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <string>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "testing/complete_project.h"
#include "testing/native_path.h"

/// The ways of this library to change a project file safely.
namespace test_support::file_changes {

inline projectdb::ProjectContents ProjectOfName(const std::string& name) {
  projectdb::ProjectContents project = CompleteProject();
  project.project_name = name;
  return project;
}

/// One that several calls read and write.
inline projectdb::ProjectContents LargeProject(const std::string& name) {
  projectdb::ProjectContents project = ProjectOfName(name);
  project.info_attributes["notes"] = std::string(70'000, '.');
  return project;
}

/// Gives the project in a file another name, "next".
struct FileChange {
  const char* name;
  bool has_former;   ///< Whether there is a file before, whose project is named "former".
  bool is_expected;  ///< Whether the change wants to know its version.
  void (*run)(const std::string& path, const projectdb::ProjectFileVersion& former);
};

inline void PrintTo(const FileChange& change, std::ostream* out) { *out << change.name; }

inline void UpdateToNext(const std::string& path, const projectdb::ProjectFileVersion&) {
  projectdb::UpdateOptions options;
  options.longest_wait = std::chrono::milliseconds(100);
  UpdateProjectFile(
      path, [](projectdb::ProjectContents& project) { project.project_name = "next"; }, options);
}

inline void WriteNext(const std::string& path, const projectdb::ProjectFileVersion&) {
  WriteProjectFile(path, ProjectOfName("next"));
}

inline void WriteLargeNext(const std::string& path, const projectdb::ProjectFileVersion&) {
  WriteProjectFile(path, LargeProject("next"));
}

inline void WriteNextIfExpected(const std::string& path,
                                const projectdb::ProjectFileVersion& former) {
  projectdb::WriteOptions options;
  options.expected = former;
  WriteProjectFile(path, ProjectOfName("next"), options);
}

inline void WriteNextUnderOwnLock(const std::string& path,
                                  const projectdb::ProjectFileVersion& former) {
  const projectdb::ProjectFileLock lock(path);
  WriteNextIfExpected(path, former);
}

inline void SaveNext(const std::string& path, const projectdb::ProjectFileVersion&) {
  projectdb::KelProjectDatabase database;
  SetProjectContents(database, ProjectOfName("next"));
  ExportProjectDataDurably(database, path);
}

inline constexpr FileChange kFileChanges[] = {
    {"Update", true, false, UpdateToNext},
    {"Write", true, false, WriteLargeNext},
    {"WriteNew", false, false, WriteNext},
    {"WriteExpected", true, true, WriteNextIfExpected},
    {"WriteExpectedMissing", false, true, WriteNextIfExpected},
    {"WriteUnderOwnLock", true, true, WriteNextUnderOwnLock},
    {"Save", true, false, SaveNext},
    {"SaveNew", false, false, SaveNext}};

/// The name of the project in the file, which must be a whole one: "nothing" if there is none,
/// "damaged" if it is something else.
inline std::string NameFoundIn(const std::string& path) {
  if (!std::filesystem::exists(NativePath(path))) return "nothing";
  const projectdb::ProjectFile file = projectdb::ReadProjectFile(path, "");
  return file.contents && file.problems.empty() ? file.contents->project_name : "damaged";
}

inline bool IsFree(const std::string& path) {
  try {
    const projectdb::ProjectFileLock lock(path, std::chrono::milliseconds(0));
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace test_support::file_changes
