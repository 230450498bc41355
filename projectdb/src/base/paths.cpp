#include "base/paths.h"

#include "base/utf8.h"

namespace projectdb::paths {

std::filesystem::path FromUtf8(const std::string& name) {
  utf8::RequireValid(name);
  return std::filesystem::u8path(name);
}

std::filesystem::path ResolveProjectPath(const std::filesystem::path& base,
                                         const std::string& name) {
  // Joining takes an absolute name as it is.
  std::filesystem::path path = base / FromUtf8(name);
  if (path.is_absolute()) return path;
  // std::filesystem::absolute refuses the empty path.
  return path.empty() ? std::filesystem::current_path() : std::filesystem::absolute(path);
}

}  // namespace projectdb::paths
