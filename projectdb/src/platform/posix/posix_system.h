#pragma once

#include <cerrno>
#include <system_error>
#include <type_traits>

#include <sys/stat.h>

#include "base/failure.h"
#include "platform/open_file.h"
#include "platform/system_calls.h"

/// What the sources for POSIX have in common.
namespace projectdb::files {

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

inline int DescriptorOf(const OpenFile& file) { return static_cast<int>(file.handle()); }

FileStatus StatusFrom(const struct stat& status);

}  // namespace projectdb::files
