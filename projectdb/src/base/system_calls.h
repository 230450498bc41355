#pragma once

#include <cerrno>
#include <functional>
#include <type_traits>

/// The system calls on which it depends what a save leaves are made through here, so that a test
/// can stand between any two of them.
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

/// Makes a call that gives a negative result if it fails.
template <typename Function, typename First, typename... Others>
auto CallSystem(const char* name, Function function, First first, Others... others) {
  using Result = decltype(function(first, others...));
  int descriptor = -1;
  if constexpr (std::is_same_v<First, int>) descriptor = first;
  const SystemCallFilter& filter = FilterOfSystemCalls();
  const int error = filter ? filter({name, descriptor}) : 0;
  if (error == 0) return function(first, others...);
  errno = error;
  return Result{-1};
}

}  // namespace projectdb::files
