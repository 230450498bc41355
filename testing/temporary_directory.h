#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "testing/native_path.h"

namespace test_support {

/// A new directory that goes away with all it holds.
class TemporaryDirectory {
 public:
  TemporaryDirectory() : TemporaryDirectory(std::filesystem::temp_directory_path()) {}

  /// @param parent in which it is made
  explicit TemporaryDirectory(const std::filesystem::path& parent) {
    std::random_device random;
    do {
      path_ = parent / ("projectdb_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string operator/(const std::string& name) const {
    return PathText(path_ / NativePath(name));
  }

 private:
  std::filesystem::path path_;
};

/// Makes a directory the current one for as long as it lives.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::filesystem::path& path)
      : former_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingDirectory() { std::filesystem::current_path(former_); }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::filesystem::path former_;
};

}  // namespace test_support
