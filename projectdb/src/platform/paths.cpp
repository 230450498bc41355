#include "platform/paths.h"

#include <stdexcept>
#include <system_error>

#include "base/utf8.h"
#include "platform/system_calls.h"

namespace projectdb::paths {
namespace {

std::filesystem::path CurrentDirectory() {
  const std::error_code error(files::ErrorOfFilter({"getcwd", -1}), std::system_category());
  if (error) throw std::filesystem::filesystem_error("cannot get current path", error);
  return std::filesystem::current_path();
}

}  // namespace

std::filesystem::path FromUtf8(const std::string& name) {
  if (!utf8::IsValid(name)) throw std::range_error("a path is not UTF-8 text");
  return FromBytes(name);
}

// As std::filesystem::absolute, which on some systems takes a ".." together with what is before it.
std::filesystem::path Absolute(const std::filesystem::path& path) {
  if (IsAbsolute(path)) return path;
  std::filesystem::path joined = Below(CurrentDirectory(), path);
  if (IsAbsolute(joined)) return joined;
  // A path on a drive other than the current one may be relative to that drive's own directory.
  return std::filesystem::absolute(joined);
}

std::filesystem::path ResolveProjectPath(const std::filesystem::path& base,
                                         const std::string& name) {
  const std::filesystem::path stored = FromUtf8(name);
  std::filesystem::path path = IsAbsolute(stored) ? stored : Below(base, stored);
  // Hardly ever so: no copy of a path is made for the million names that a list may have.
  if (!IsAbsolute(path)) path = path.empty() ? CurrentDirectory() : Absolute(path);
  return path;
}

}  // namespace projectdb::paths
