#pragma once

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/files.h"

/// Durable saves and what they leave.
namespace test_support {

/// The text of the std::runtime_error that a durable save ends in; "" if it ends well.
inline std::string SaveError(const projectdb::KelProjectDatabase& database,
                             const std::string& path) {
  try {
    projectdb::ExportProjectDataDurably(database, path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

inline std::string WritingError(const std::string& path, const std::string& reason) {
  return "Failed writing XML file " + path + ": " + reason + "\n";
}

inline std::string WritingError(const std::string& path, int error) {
  return WritingError(path, TextOfErrno(error));
}

/// The names of all that a directory holds, in alphabetical order.
inline std::vector<std::string> NamesIn(const std::filesystem::path& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(PathText(entry.path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace test_support
