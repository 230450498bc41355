#pragma once

#include <cerrno>
#include <functional>
#include <type_traits>

#include <unistd.h>

/// The system calls on files that a lock, a read and a save make go through here, so that a test
/// can stand between any two of them. Only the names of directories are looked up elsewhere.
namespace projectdb::files {

/// A call that is about to be made.
struct SystemCall {
  const char* name;
  int descriptor;  ///< What it works on; negative if that is no open file.
};

/// Stands before each call and gives the errno with which it fails instead of being made, or 0.
using SystemCallFilter = std::function<int(const SystemCall&)>;

/// The filter of this process: none but in tests, which set it while nobody saves.
inline SystemCallFilter& FilterOfSystemCalls() {
  static SystemCallFilter filter;
  return filter;
}

/// The errno with which a call is to fail, or 0.
inline int ErrorOfFilter(const SystemCall& call) {
  const SystemCallFilter& filter = FilterOfSystemCalls();
  return filter ? filter(call) : 0;
}

/// Makes a call that gives a negative number or null if it fails. For calls that may have done
/// their work although a signal interrupted them.
template <typename Function, typename First, typename... Others>
auto CallSystemOnce(const char* name, Function function, First first, Others... others) {
  using Result = decltype(function(first, others...));
  int descriptor = -1;
  if constexpr (std::is_same_v<First, int>) descriptor = first;
  const int error = ErrorOfFilter({name, descriptor});
  if (error == 0) return function(first, others...);
  errno = error;
  if constexpr (std::is_pointer_v<Result>) {
    return Result{nullptr};
  } else {
    return Result{-1};
  }
}

/// Makes a call that gives a negative number if it fails, again each time a signal interrupts it.
template <typename Function, typename First, typename... Others>
auto CallSystem(const char* name, Function function, First first, Others... others) {
  for (;;) {
    const auto result = CallSystemOnce(name, function, first, others...);
    if (result >= 0 || errno != EINTR) return result;
  }
}

/// Closes an open file. The system does so even if it tells of a failure, such as of a write that
/// it has put off until then.
inline int CloseFile(int descriptor) {
  const int error = ErrorOfFilter({"close", descriptor});
  const int result = ::close(descriptor);
  if (error == 0) return result;
  errno = error;
  return -1;
}

}  // namespace projectdb::files
