#include "project_db/input_files.h"

#include <projectdb/vocabulary.h>

#include "base/failure.h"
#include "platform/file_status.h"

namespace projectdb {

bool FileExists(const std::string& name) {
  try {
    return files::FindStatus(name).has_value();
  } catch (const Failure&) {
    return false;
  }
}

bool HasProjectFileExtension(const std::string& name) {
  return HasEnding(name, kProjectFileEnding);
}

}  // namespace projectdb
