#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <sys/types.h>

namespace test_support {

/// A child process that stops at each entry into a system call and at each exit from one.
class TracedProcess {
 public:
  struct Stop {
    bool is_entry;
    std::uint64_t call = 0;      ///< The number of the system call; at entries only.
    std::uint64_t argument = 0;  ///< The first one; at entries only.
  };

  /// Starts the child, which is stopped before the work.
  /// @param work gives the child's exit status
  explicit TracedProcess(const std::function<int()>& work);
  /// Kills the child if it still runs.
  ~TracedProcess();
  TracedProcess(const TracedProcess&) = delete;
  TracedProcess& operator=(const TracedProcess&) = delete;

  /// Whether children of this process can be traced here.
  static bool IsPossible();

  /// Lets the child go on to its next stop. @return nothing if it has ended
  std::optional<Stop> Continue();

  /// Kills the child, which goes no further than it is.
  void Kill();

  /// As waitpid gives it, once the child has ended.
  int status() const { return status_; }

  /// What a file descriptor of the child stands for.
  std::string PathOf(std::uint64_t descriptor) const;

 private:
  bool WaitForStop();

  pid_t process_;
  int status_ = 0;
  bool ended_ = false;
};

}  // namespace test_support
