#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/complete_project.h"
#include "testing/project_loading.h"

namespace test_support {

/// A complete project in a file, to be changed.
class Update : public testing::Test, public Loading {
 protected:
  void SetUp() override { Write("p.xml", CompleteProjectXml()); }

  /// The text of the error that an update ends in; "" if it ends well.
  std::string UpdateError(const std::function<void(projectdb::ProjectContents&)>& change,
                          const projectdb::UpdateOptions& options = {}) const {
    try {
      projectdb::UpdateProjectFile(path(), change, options);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }
};

}  // namespace test_support
