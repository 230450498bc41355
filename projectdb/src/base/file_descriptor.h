#pragma once

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "base/failure.h"
#include "base/system_calls.h"

namespace projectdb::files {

/// @exception Failure with the system's reason, that of the last failed call by default
[[noreturn]] inline void ThrowSystemFailure(int error = errno) {
  throw Failure(std::generic_category().message(error));
}

/// Gives the result of a system call.
/// @exception Failure if it is that of a failure
inline int RequireSuccess(int result) {
  if (result < 0) ThrowSystemFailure();
  return result;
}

/// An open file or directory, closed at the end.
class FileDescriptor {
 public:
  /// @param number what the opening call gave
  /// @exception Failure if that call failed
  explicit FileDescriptor(int number) : number_(RequireSuccess(number)) {}
  ~FileDescriptor() {
    if (number_ >= 0) CloseFile(number_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int number() const { return number_; }

  /// Closes it before the end.
  /// @return the result of the system call
  int Close() { return CloseFile(std::exchange(number_, -1)); }

  struct stat Status() const {
    struct stat status {};
    RequireSuccess(CallSystem("fstat", ::fstat, number_, &status));
    return status;
  }

 private:
  int number_;
};

}  // namespace projectdb::files
