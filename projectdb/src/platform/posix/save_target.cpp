#include "platform/save_target.h"

#include <fcntl.h>
#include <linux/limits.h>
#include <unistd.h>

#include "platform/paths.h"
#include "platform/posix/posix_system.h"

namespace projectdb::files {
namespace {

// The file at the path or at the end of its links, if it is there and may be replaced.
std::optional<FileStatus> FormerFile(const std::filesystem::path& path) {
  const std::optional<FileStatus> status = FindStatus(path);
  if (!status) return std::nullopt;
  if (status->kind == FileStatus::Kind::kDirectory) ThrowSystemFailure(EISDIR);
  if (!status->IsRegular()) throw Failure("not a regular file");
  // The directory alone would let the process replace what it must not write.
  RequireSuccess(CallSystem("faccessat", ::faccessat, AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
  return status;
}

// What a symbolic link has in it; nothing if the path is none. Whatever else keeps a link from
// being read must not make the save replace it.
std::optional<std::filesystem::path> ReadLink(const std::filesystem::path& path) {
  std::string text(PATH_MAX, '\0');
  const ssize_t size = CallSystem("readlink", ::readlink, path.c_str(), text.data(), text.size());
  if (size >= 0) return text.substr(0, static_cast<std::size_t>(size));
  if (errno != EINVAL && errno != ENOENT) ThrowSystemFailure();
  return std::nullopt;
}

std::filesystem::path FollowLinks(std::filesystem::path path) {
  constexpr int kMaxLinks = 40;
  for (int links = 0; links <= kMaxLinks; ++links) {
    const std::optional<std::filesystem::path> next = ReadLink(path);
    if (!next) return path;
    path = path.parent_path() / *next;
  }
  ThrowSystemFailure(ELOOP);
}

std::filesystem::path AbsolutePath(const std::string& path) {
  try {
    return paths::Absolute(path);
  } catch (const std::filesystem::filesystem_error& error) {
    ThrowSystemFailure(error.code().value());
  }
}

}  // namespace

SaveTarget FindSaveTarget(const std::string& path) {
  // Beyond a zero the system would not see the name.
  const bool is_name = !path.empty() && path.find('\0') == std::string::npos;
  if (!is_name) ThrowSystemFailure(EINVAL);
  // Another thread may change the working directory.
  const std::filesystem::path absolute = AbsolutePath(path);
  // The system first: it knows loops, and links that it forbids to follow.
  const std::optional<FileStatus> former = FormerFile(absolute);
  return {FollowLinks(absolute), former};
}

}  // namespace projectdb::files
