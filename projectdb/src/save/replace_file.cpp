#include "save/replace_file.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xercesc/util/IOException.hpp>

#include "base/failure.h"
#include "base/file_descriptor.h"
#include "base/file_status.h"
#include "base/system_calls.h"
#include "save/file_lock.h"
#include "save/file_permissions.h"
#include "save/temporary_file.h"

namespace projectdb::files {
namespace {

constexpr mode_t kAnyNewFile = 0666;
// What it is to replace may be secret.
constexpr mode_t kOnlyForOwner = 0600;

/// The file that a save puts in place.
struct Target {
  std::filesystem::path path;         ///< Absolute, and no symbolic link.
  std::optional<struct stat> former;  ///< Of the file that is there.
};

// The file at the path or at the end of its links, if it is there and may be replaced.
std::optional<struct stat> FormerFile(const std::filesystem::path& path) {
  const std::optional<struct stat> status = FindStatus(path);
  if (!status) return std::nullopt;
  if (S_ISDIR(status->st_mode)) ThrowSystemFailure(EISDIR);
  if (!S_ISREG(status->st_mode)) throw Failure("not a regular file");
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

Target FindTarget(const std::string& path) {
  // Beyond a zero the system would not see the name.
  if (path.find('\0') != std::string::npos) ThrowSystemFailure(EINVAL);
  // Another thread may change the working directory.
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) ThrowSystemFailure(error.value());
  // The system first: it knows loops, and links that it forbids to follow.
  const std::optional<struct stat> former = FormerFile(absolute);
  return {FollowLinks(absolute), former};
}

// Of an error that may name the file that was written in place of the target.
std::string ReasonOf(const std::string& error, const std::string& written_path) {
  const std::string prefix = WritingPrefix(written_path);
  const std::size_t begin = error.rfind(prefix, 0) == 0 ? prefix.size() : 0;
  const std::size_t end = error.find_last_not_of('\n');
  return error.substr(begin, end + 1 - begin);
}

void WriteInto(const TemporaryFile& file, const Replacement& replacement) {
  const std::string path = file.path();
  try {
    replacement.write(path);
  } catch (const xercesc::IOException&) {
    // It does not tell the system's reason; a second try does.
    const FileDescriptor opened(CallSystem("open", ::open, path.c_str(), O_WRONLY | O_CLOEXEC));
    throw Failure("the temporary file could not be opened");
  } catch (const std::runtime_error& error) {
    throw Failure(ReasonOf(error.what(), path));
  }
}

// The lock that this process may have on the former file goes with the new one.
void PutInPlace(TemporaryFile& file, const Target& target, const Replacement& replacement) {
  const std::string name = target.path.filename();
  std::optional<LockHandover> handover;
  if (target.former) handover.emplace(*target.former, file.descriptor());
  replacement.confirm();
  if (replacement.refuse && !target.former) {
    if (!file.LinkTo(name)) replacement.refuse();
  } else {
    file.RenameTo(name);
  }
  const bool is_taken_over = handover && handover->Complete();
  if (!is_taken_over) file.Unlock();
}

}  // namespace

void ReplaceFile(const std::string& path, const Replacement& replacement) {
  const Target target = FindTarget(path);
  const Directory directory(target.path.parent_path());
  RemoveAbandonedFiles(directory);
  TemporaryFile file(directory, target.former ? kOnlyForOwner : kAnyNewFile);
  WriteInto(file, replacement);
  const struct stat written = file.descriptor().Status();
  if (written.st_nlink == 0) throw Failure("the temporary file was removed");
  if (written.st_size == 0) return;
  if (target.former) CopyPermissions(target.path, *target.former, file.descriptor());
  file.Flush();
  PutInPlace(file, target, replacement);
  directory.Flush();
}

}  // namespace projectdb::files
