#include "platform/windows/shares.h"

#include <algorithm>
#include <string>

namespace kelproj {
namespace {

bool IsSeparator(wchar_t unit) { return unit == L'/' || unit == L'\\'; }

}  // namespace

bool IsOnShare(const std::filesystem::path& path) {
  const std::wstring& native = path.native();
  return native.size() > 1 && IsSeparator(native[0]) && IsSeparator(native[1]);
}

PathOnShare TakeApart(const std::filesystem::path& path) {
  std::wstring text = path.native();
  std::replace(text.begin(), text.end(), L'\\', L'/');
  const auto server_end = std::find(text.begin() + 2, text.end(), L'/');
  const auto share_end =
      server_end == text.end() ? server_end : std::find(server_end + 1, text.end(), L'/');
  return {std::wstring(text.begin(), share_end), std::wstring(share_end, text.end())};
}

}  // namespace kelproj
