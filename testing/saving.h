#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/system_calls.h"
#include "testing/child_process.h"
#include "testing/file_state.h"
#include "testing/saves.h"
#include "testing/xml_platform.h"

/// What files are beside their content where there are modes, and limits on them.
namespace test_support {

/// @param path of a file, or of a link to one
inline struct stat StatusOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) throw std::runtime_error("no status of " + path);
  return status;
}

inline mode_t ModeOf(const std::string& path) { return StatusOf(path).st_mode & 07777U; }

inline void SetMode(const std::string& path, mode_t mode) {
  if (::chmod(path.c_str(), mode) != 0) throw std::runtime_error("cannot change " + path);
}

/// The file that a call works on; empty if it has no descriptor of one.
inline std::filesystem::path FileOf(const projectdb::files::SystemCall& call) {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(call.descriptor), error);
}

/// Runs work while the process may have so many files open.
template <typename Work>
std::string WithOpenFileLimit(rlim_t files, Work work) {
  rlimit former{};
  ::getrlimit(RLIMIT_NOFILE, &former);
  rlimit limit = former;
  limit.rlim_cur = files;
  ::setrlimit(RLIMIT_NOFILE, &limit);
  std::string result = work();
  ::setrlimit(RLIMIT_NOFILE, &former);
  return result;
}

/// Does work in processes that may have more and more files open, until it gives no error.
/// @param work gives the text of its error, or ""
/// @param judge is told of each error
/// @return the number of errors
template <typename Work, typename Judge>
int FailuresWithTooFewFiles(Work work, Judge judge) {
  constexpr rlim_t kEnough = 1000;
  int failures = 0;
  for (rlim_t files = 0; files < kEnough; ++files) {
    const std::string error = InChildProcess([&] {
      TerminateXmlPlatformForAll();
      return WithOpenFileLimit(files, work);
    });
    if (error.empty()) break;
    ++failures;
    judge(error);
  }
  return failures;
}

}  // namespace test_support
