#include "base/paths.h"

#include <stdexcept>
#include <type_traits>

#include "base/utf8.h"

namespace projectdb::paths {

static_assert(std::is_same_v<std::filesystem::path::value_type, char>,
              "Where a path holds other than bytes, its text has to be converted.");

std::filesystem::path FromBytes(const std::string& name) { return std::filesystem::path(name); }

std::string ToBytes(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path FromUtf8(const std::string& name) {
  if (!utf8::IsValid(name)) throw std::range_error("a path is not UTF-8 text");
  return FromBytes(name);
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
