#include "project_db/input_files.h"

#include <filesystem>
#include <system_error>

#include <projectdb/vocabulary.h>

#include "base/paths.h"

namespace projectdb {

bool FileExists(const std::string& name) {
  std::error_code error;
  return name.find('\0') == std::string::npos &&
         std::filesystem::exists(paths::FromBytes(name), error);
}

bool HasProjectFileExtension(const std::string& name) {
  return HasEnding(name, kProjectFileEnding);
}

}  // namespace projectdb
