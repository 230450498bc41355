#pragma once

#include <string>

#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

namespace projectdb {

/// What the operations of the companion headers may do with an object that nobody else may. It is a
/// class because some compilers cannot declare a friend function that comes from another library.
class ProjectAccess {
 public:
  using ProjectTest = KelProjectDatabase::ProjectTest;

  static ProjectContents Copy(const KelProjectDatabase& database);
  static void Set(KelProjectDatabase& database, const ProjectContents& contents);
  static void Export(const KelProjectDatabase& database, const std::string& path,
                     ProjectTest test) {
    database.ExportTestedProject(path, test);
  }
};

}  // namespace projectdb
