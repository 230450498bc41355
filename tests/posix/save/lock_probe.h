#pragma once

#include <string>

#include <sys/file.h>

#include "platform/open_file.h"

namespace test_support {

/// Asks the system: a ProjectFileLock that got the lock would wait for the save to end.
inline bool IsLockedByAnybody(const std::string& path) {
  const projectdb::files::OpenFile file = projectdb::files::OpenForReading(path);
  return ::flock(static_cast<int>(file.handle()), LOCK_EX | LOCK_NB) != 0;
}

}  // namespace test_support
