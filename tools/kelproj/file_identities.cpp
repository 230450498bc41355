#include "file_identities.h"

#include "platform/file_names.h"
#include "platform/path_operations.h"

namespace kelproj {
namespace {

std::filesystem::path RealDirectory(const std::filesystem::path& directory) {
  std::filesystem::path path = WithoutLinks(directory);
  return path.has_filename() ? path : path.parent_path();
}

}  // namespace

std::optional<std::string> PartBelow(const std::string& directory, const std::string& file) {
  // That of a root ends in one.
  const bool has_slash = !directory.empty() && directory.back() == '/';
  const std::string begin = has_slash ? directory : directory + "/";
  if (file.compare(0, begin.size(), begin) != 0) return std::nullopt;
  return file.substr(begin.size());
}

std::string FileIdentities::Of(const std::filesystem::path& path) {
  const std::filesystem::path name = path.filename();
  if (name.empty() || name == "." || name == "..") return OfDirectory(path);
  return NameFrom(PathFrom(OfDirectory(path.parent_path())) / name);
}

const std::string& FileIdentities::OfDirectory(const std::filesystem::path& path) {
  // The system is asked once for each directory.
  const auto [entry, is_new] = directories_.try_emplace(NameFrom(path));
  if (is_new) entry->second = NameFrom(RealDirectory(path));
  return entry->second;
}

}  // namespace kelproj
