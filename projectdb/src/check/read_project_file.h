#pragma once

#include <optional>
#include <string>

#include <projectdb/project_file.h>

namespace projectdb {

/// What a reading gives, and what only who writes over the file asks of it.
struct FileReading {
  ProjectFile file;
  /// Why the file, which is there, could not be read to its end.
  std::optional<std::string> failure = std::nullopt;
};

/// ReadProjectFile, with all that it finds out.
/// @param schema_file nothing for no schema, even if the file names one that is there
FileReading ReadWholeFile(const std::string& path, const std::optional<std::string>& schema_file);

}  // namespace projectdb
