#include "platform/file_names.h"

namespace kelproj {

std::filesystem::path PathFrom(const std::string& name) { return name; }

bool IsAbsolute(const std::string& name) { return PathFrom(name).is_absolute(); }

bool IsNoFile(const std::string& name) { return name == kNoFile; }

std::string NameFrom(const std::filesystem::path& path) { return path.string(); }

}  // namespace kelproj
