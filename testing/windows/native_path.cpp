#include "testing/native_path.h"

#include <windows.h>

namespace test_support {

std::filesystem::path NativePath(const std::string& name) {
  const int size = static_cast<int>(name.size());
  std::wstring native(name.size(), L'\0');  // No text is longer in UTF-16.
  native.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, name.data(), size, native.data(), size)));
  return native;
}

}  // namespace test_support
