#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <utility>

#include "testing/files.h"

/// What files are beside their content.
namespace test_support {

/// Which file a path leads to, whose it is, with which permissions, and since when.
std::string FileStatusText(const std::string& path);

/// When a file was written last, as the system counts.
std::int64_t WriteTimeOf(const std::string& path);
void SetWriteTime(const std::string& path, std::int64_t time);

/// Whether this process has the file open. Nobody else may have it.
bool IsOpen(const std::string& path);

/// When a file was written last, to be given back to another.
class FileTimes {
 public:
  explicit FileTimes(std::string path) : path_(std::move(path)), written_(WriteTimeOf(path_)) {}

  void Restore() const { SetWriteTime(path_, written_); }

 private:
  std::string path_;
  std::int64_t written_;
};

/// A file as it is: the same one, with the same content and the same permissions, since the same
/// time.
struct FileState {
  explicit FileState(const std::string& path)
      : status(FileStatusText(path)), bytes(ReadFile(path)) {}
  bool operator==(const FileState& other) const {
    return status == other.status && bytes == other.bytes;
  }

  std::string status;
  std::string bytes;
};

inline void PrintTo(const FileState& state, std::ostream* out) {
  *out << state.status << ", " << state.bytes.size() << " bytes";
}

}  // namespace test_support
