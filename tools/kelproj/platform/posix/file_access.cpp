#include "platform/file_access.h"

#include <fcntl.h>
#include <unistd.h>

namespace kelproj {

bool MayRead(const std::filesystem::path& path) { return ::access(path.c_str(), R_OK) == 0; }

bool MayWrite(const std::filesystem::path& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

}  // namespace kelproj
