#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "testing/files.h"
#include "testing/temporary_directory.h"

/// Locks of a file and the errors that they end in.
namespace test_support {

/// The text of the error that an attempt to lock ends in; "" if it ends well.
inline std::string LockError(const std::string& path) {
  try {
    const projectdb::ProjectFileLock lock(path, std::chrono::milliseconds(0));
    return {};
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

inline std::string LockErrorText(const std::string& path, const std::string& reason) {
  return "Failed locking XML file " + path + ": " + reason + "\n";
}

inline bool IsLocked(const std::string& path) {
  return LockError(path) == LockErrorText(path, "it is locked by others");
}

/// A file to be locked, and a project to be saved to it.
class FileLock : public testing::Test {
 protected:
  void SetUp() override {
    WriteFile(path_, "<project/>");
    database_.CreateNewProjectDatabase("lantern");
  }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  projectdb::KelProjectDatabase database_;
};

}  // namespace test_support
