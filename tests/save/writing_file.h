#pragma once

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/complete_project.h"
#include "testing/project_loading.h"

namespace test_support {

/// Contents to be written, and a directory for the file.
class WritingFile : public testing::Test, public Loading {
 protected:
  projectdb::ProjectContents Contents() const {
    return projectdb::ReadProjectFile(path(), "").contents.value();
  }

  /// The text of the error that a write ends in; "" if it ends well.
  std::string WriteError(const projectdb::ProjectContents& contents,
                         const projectdb::WriteOptions& options = {}) const {
    try {
      projectdb::WriteProjectFile(path(), contents, options);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }

  const projectdb::ProjectContents contents_ = CompleteProject(PathText(directory.path()));
};

}  // namespace test_support
