#include "platform/file_status.h"

namespace projectdb::files {

bool IsRegularFile(const std::string& path) {
  const std::optional<FileStatus> status = FindStatus(path);
  return status && status->IsRegular();
}

}  // namespace projectdb::files
