#include "tests/durable/intercepted_calls.h"

#include <cerrno>
#include <cstddef>
#include <utility>

#include <sys/random.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

std::function<int(const std::string&)>& Decision() {
  static std::function<int(const std::string&)> decision;
  return decision;
}

template <typename... Arguments>
long Call(const char* name, long number, Arguments... arguments) {
  const int error = Decision() ? Decision()(name) : 0;
  if (error == 0) return ::syscall(number, arguments...);
  errno = error;
  return -1;
}

}  // namespace

namespace test_support {

InterceptedCalls::InterceptedCalls(std::function<int(const std::string&)> decision) {
  Decision() = std::move(decision);
}

InterceptedCalls::~InterceptedCalls() { Decision() = nullptr; }

}  // namespace test_support

// In place of the C library's functions, for the whole program.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int getentropy(void* bytes, std::size_t count) {
  return Call("getentropy", SYS_getrandom, bytes, count, 0) < 0 ? -1 : 0;
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
  return static_cast<int>(Call("fchown", SYS_fchown, file, owner, group));
}

int fchmod(int file, mode_t mode) noexcept {
  return static_cast<int>(Call("fchmod", SYS_fchmod, file, mode));
}

ssize_t getxattr(const char* path, const char* name, void* value, std::size_t size) noexcept {
  return Call("getxattr", SYS_getxattr, path, name, value, size);
}

int fsetxattr(int file, const char* name, const void* value, std::size_t size, int flags) noexcept {
  return static_cast<int>(Call("fsetxattr", SYS_fsetxattr, file, name, value, size, flags));
}

int fremovexattr(int file, const char* name) noexcept {
  return static_cast<int>(Call("fremovexattr", SYS_fremovexattr, file, name));
}

int fsync(int file) { return static_cast<int>(Call("fsync", SYS_fsync, file)); }

int renameat(int from_directory, const char* from, int to_directory, const char* to) noexcept {
  return static_cast<int>(
      Call("renameat", SYS_renameat2, from_directory, from, to_directory, to, 0));
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
