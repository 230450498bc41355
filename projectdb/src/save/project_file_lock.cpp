#include <projectdb/project_file.h>

#include "base/failure.h"
#include "platform/file_lock.h"

namespace projectdb {
namespace {

std::unique_ptr<files::FileLock> Lock(const std::string& path,
                                      std::optional<std::chrono::milliseconds> longest_wait) {
  try {
    return std::make_unique<files::FileLock>(path, longest_wait);
  } catch (const Failure& failure) {
    throw std::runtime_error("Failed locking XML file " + path + ": " + failure.what() + "\n");
  }
}

}  // namespace

ProjectFileLock::ProjectFileLock(const std::string& path) : lock_(Lock(path, std::nullopt)) {}

ProjectFileLock::ProjectFileLock(const std::string& path, std::chrono::milliseconds longest_wait)
    : lock_(Lock(path, longest_wait)) {}

ProjectFileLock::~ProjectFileLock() = default;

}  // namespace projectdb
