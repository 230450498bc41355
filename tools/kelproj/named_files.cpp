#include "named_files.h"

#include <system_error>

namespace kelproj {
bool IsFile(const std::filesystem::path& path) {
  // What cannot be asked for is not there.
  std::error_code error;
  return std::filesystem::exists(path, error) && !std::filesystem::is_directory(path, error);
}

void WarnOfMissingFiles(const Console& console, const std::filesystem::path& directory,
                        const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (IsFile(directory / name)) continue;
    WriteMessage(console.err, Diag::MessageType::kWarning,
                 "\"" + name + "\" does not exist in " + directory.string());
  }
}

}  // namespace kelproj
