#pragma once

#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/checking.h"
#include "testing/complete_project.h"
#include "testing/project_loading.h"

namespace test_support {

/// The messages of the problems that are errors.
inline Lines ErrorsOf(const projectdb::ProjectFile& file) {
  Lines errors;
  for (const projectdb::FileProblem& problem : file.problems) {
    if (IsError(problem)) errors.push_back(problem.message);
  }
  return errors;
}

/// A file to be read.
class ReadingFile : public testing::Test, public Loading {
 protected:
  projectdb::ProjectFile Read(const std::string& schema = "") const {
    return projectdb::ReadProjectFile(path(), schema);
  }

  projectdb::ProjectFile ReadBytes(const std::string& bytes) const {
    Write("p.xml", bytes);
    return Read();
  }

  projectdb::ProjectContents CompleteContents() const {
    return CompleteProject(PathText(directory.path()));
  }
};

}  // namespace test_support
