#include "base/file_status.h"

#include <cerrno>

#include "base/file_descriptor.h"
#include "base/system_calls.h"

namespace projectdb::files {

std::optional<struct stat> FindStatus(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) return std::nullopt;
  struct stat status {};
  if (CallSystem("stat", ::stat, path.c_str(), &status) == 0) return status;
  if (errno != ENOENT && errno != ENOTDIR) ThrowSystemFailure();
  return std::nullopt;
}

bool IsRegularFile(const std::string& path) {
  const std::optional<struct stat> status = FindStatus(path);
  return status && S_ISREG(status->st_mode);
}

}  // namespace projectdb::files
