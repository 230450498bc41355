#include "platform/path_operations.h"

#include <system_error>

#include "platform/file_names.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

}  // namespace

fs::path CurrentDirectory() { return fs::current_path(); }

fs::path PathIn(const fs::path& directory, const std::string& name) {
  return directory / PathFrom(name);
}

fs::path LexicallyNormal(const fs::path& path) { return path.lexically_normal(); }

fs::path WithoutLinks(const fs::path& path) {
  std::error_code error;
  fs::path real = fs::weakly_canonical(path, error);
  return error ? path.lexically_normal() : real;
}

fs::path LexicallyRelative(const fs::path& path, const fs::path& directory) {
  return path.lexically_relative(directory);
}

}  // namespace kelproj
