#include "platform/paths.h"

namespace projectdb::paths {

std::filesystem::path FromBytes(const std::string& name) { return std::filesystem::path(name); }

std::string ToBytes(const std::filesystem::path& path) { return path.native(); }

bool IsOnShare(const std::filesystem::path& /*path*/) { return false; }

bool IsAbsolute(const std::filesystem::path& path) { return path.is_absolute(); }

std::filesystem::path Below(const std::filesystem::path& base, const std::filesystem::path& path) {
  return base / path;
}

}  // namespace projectdb::paths
