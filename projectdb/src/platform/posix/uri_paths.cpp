#include "platform/uri_paths.h"

#include "platform/paths.h"

namespace projectdb::paths {

std::string ToUriPath(const std::filesystem::path& path) { return ToBytes(path); }

std::filesystem::path FromUriPath(const std::string& text) { return FromBytes(text); }

bool IsDrive(std::string_view /*scheme*/) { return false; }

bool IsBeyondFiles(const std::filesystem::path& /*path*/) { return false; }

}  // namespace projectdb::paths
