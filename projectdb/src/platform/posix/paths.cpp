#include "platform/paths.h"

namespace projectdb::paths {

std::filesystem::path FromBytes(const std::string& name) { return std::filesystem::path(name); }

std::string ToBytes(const std::filesystem::path& path) { return path.native(); }

bool IsAbsolute(const std::filesystem::path& path) { return path.is_absolute(); }

}  // namespace projectdb::paths
