#pragma once

#include <functional>
#include <string>

namespace test_support {

/// Decides over the system calls of a save for as long as it lives, in this process. Intercepted
/// are getentropy, fchown, fchmod, getxattr, fsetxattr, fremovexattr, fsync and renameat.
class InterceptedCalls {
 public:
  /// @param decision gets the name of a call that is about to be made and gives the errno with
  ///        which it fails instead, or 0
  explicit InterceptedCalls(std::function<int(const std::string&)> decision);
  ~InterceptedCalls();
  InterceptedCalls(const InterceptedCalls&) = delete;
  InterceptedCalls& operator=(const InterceptedCalls&) = delete;
};

}  // namespace test_support
