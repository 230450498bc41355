#include "platform/paths.h"

#include <stdexcept>

#include "base/utf8.h"

namespace projectdb::paths {

std::filesystem::path FromUtf8(const std::string& name) {
  if (!utf8::IsValid(name)) throw std::range_error("a path is not UTF-8 text");
  return FromBytes(name);
}

// As std::filesystem::absolute, which on some systems takes a ".." together with what is before it.
std::filesystem::path Absolute(const std::filesystem::path& path) {
  if (IsAbsolute(path)) return path;
  const std::filesystem::path joined = std::filesystem::current_path() / path;
  // A path on a drive other than the current one may be relative to that drive's own directory.
  return joined.is_absolute() ? joined : std::filesystem::absolute(joined);
}

std::filesystem::path ResolveProjectPath(const std::filesystem::path& base,
                                         const std::string& name) {
  std::filesystem::path stored = FromUtf8(name);
  if (IsAbsolute(stored)) return stored;
  const std::filesystem::path path = base / stored;
  return path.empty() ? std::filesystem::current_path() : Absolute(path);
}

}  // namespace projectdb::paths
