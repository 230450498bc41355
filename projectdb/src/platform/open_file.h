#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/file_status.h"

namespace projectdb::files {

/// An open file or directory, closed at the end.
class OpenFile {
 public:
  /// What the system knows it by.
  using Handle = std::intptr_t;

  /// @param handle of a file that was opened
  explicit OpenFile(Handle handle) : handle_(handle) {}
  ~OpenFile();
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  Handle handle() const { return handle_; }

  /// Closes it before the end.
  /// @return whether all is well; if not, the system has the error of the last call
  bool Close();

  /// @exception Failure with the system's reason
  FileStatus Status() const;

  /// Reads the next bytes, fewer than are asked for only at the end.
  /// @return their number
  /// @exception Failure with the system's reason
  std::size_t Read(unsigned char* target, std::size_t most) const;

 private:
  static constexpr Handle kNone = -1;

  Handle handle_;
};

/// @exception Failure with the system's reason if it cannot be opened
OpenFile OpenForReading(const std::string& path);

/// Opens a file that is there and leaves it as it is.
/// @exception Failure with the system's reason if it cannot be opened
OpenFile OpenForWriting(const std::string& path);

}  // namespace projectdb::files
