#include "platform/path_operations.h"

#include <system_error>

#include "platform/file_names.h"
#include "platform/windows/shares.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

// By their texts: some standard libraries add a slash at the end of a path twice.
fs::path OnShare(const fs::path& share, const fs::path& place) {
  return share.native() + place.native();
}

}  // namespace

fs::path CurrentDirectory() { return PathFrom(NameFrom(fs::current_path())); }

fs::path PathIn(const fs::path& directory, const std::string& name) {
  const fs::path path = PathFrom(name);
  if (IsOnShare(path)) return path;
  if (IsOnShare(directory) && path.has_root_directory() && !path.has_root_name()) {
    return OnShare(TakeApart(directory).share, path);
  }
  fs::path joined = directory / path;
  // "D:x" is in the directory that the program has on that drive.
  return joined.has_root_name() && !joined.has_root_directory() ? fs::absolute(joined) : joined;
}

fs::path LexicallyNormal(const fs::path& path) {
  if (!IsOnShare(path)) return path.lexically_normal();
  const auto [share, place] = TakeApart(path);
  return OnShare(share, place.lexically_normal());
}

// Links on a share are its server's.
fs::path WithoutLinks(const fs::path& path) {
  if (IsOnShare(path)) {
    const fs::path normal = LexicallyNormal(path);
    return normal.has_filename() ? normal : normal.parent_path();
  }
  std::error_code error;
  fs::path real = fs::weakly_canonical(path, error);
  return error ? path.lexically_normal() : real;
}

fs::path LexicallyRelative(const fs::path& path, const fs::path& directory) {
  if (!IsOnShare(path) && !IsOnShare(directory)) return path.lexically_relative(directory);
  if (!IsOnShare(path) || !IsOnShare(directory)) return {};
  const PathOnShare to = TakeApart(path);
  const PathOnShare from = TakeApart(directory);
  if (to.share != from.share) return {};
  const fs::path root = L"/";
  return (root / to.place).lexically_relative(root / from.place);
}

}  // namespace kelproj
