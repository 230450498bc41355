#include "project_db/input_files.h"

#include <filesystem>
#include <system_error>

#include <projectdb/project_db.h>

namespace projectdb {

bool FileExists(const std::string& name) {
  std::error_code error;
  return name.find('\0') == std::string::npos &&
         std::filesystem::exists(std::filesystem::u8path(name), error);
}

bool HasProjectFileExtension(const std::string& name) {
  return std::filesystem::u8path(name).extension().u8string() == KelProjectDatabase::XML_FILE_EXT;
}

}  // namespace projectdb
