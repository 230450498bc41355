#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace projectdb::files {

/// What a system tells of a file.
struct FileStatus {
  enum class Kind { kRegular, kDirectory, kOther };

  Kind kind = Kind::kOther;
  std::uint64_t device = 0;
  std::uint64_t number = 0;     ///< Tells the files of a device apart.
  std::uint64_t names = 0;      ///< How many it has; 0 for one that was removed.
  std::uint64_t size = 0;       ///< In bytes.
  std::int64_t changed_at = 0;  ///< In nanoseconds since 1970.
  // Where files have one owner and one group with nine permissions.
  std::uint32_t permissions = 0;
  std::uint32_t owner = 0;
  std::uint32_t group = 0;

  bool IsRegular() const { return kind == Kind::kRegular; }

  bool IsSameFile(const FileStatus& other) const {
    return device == other.device && number == other.number;
  }
};

/// The status of the file at a path, or at the end of its symbolic links.
/// @return nothing if there is none
/// @exception Failure if the system does not tell
std::optional<FileStatus> FindStatus(const std::string& path);

/// Whether a regular file is at a path, or at the end of its symbolic links. Anything else, such as
/// a pipe, may keep who opens it waiting.
/// @exception Failure if the system does not tell
bool IsRegularFile(const std::string& path);

}  // namespace projectdb::files
