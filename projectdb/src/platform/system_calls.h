#pragma once

#include <functional>

/// The system calls on files that a lock, a read and a save make go through here, so that a test
/// can stand between any two of them. Those that the C library makes on its own, such as to read
/// the time zone, do not.
namespace projectdb::files {

/// A call that is about to be made.
struct SystemCall {
  const char* name;
  int descriptor;  ///< What it works on; negative if that is no file descriptor.
};

/// Stands before each call and gives the system's number of the error with which it fails instead
/// of being made, or 0.
using SystemCallFilter = std::function<int(const SystemCall&)>;

/// The filter of this process: none but in tests, which set it while nobody saves.
inline SystemCallFilter& FilterOfSystemCalls() {
  static SystemCallFilter filter;
  return filter;
}

/// The error with which a call is to fail, or 0.
inline int ErrorOfFilter(const SystemCall& call) {
  const SystemCallFilter& filter = FilterOfSystemCalls();
  return filter ? filter(call) : 0;
}

}  // namespace projectdb::files
