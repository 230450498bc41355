#include "platform/windows/texts.h"

#include <windows.h>

namespace kelproj {
namespace {

// Backslashes count before quotes alone.
std::wstring Quoted(std::wstring_view word) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : word) {
    if (c == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, L'\\') + L"\"";
}

}  // namespace

std::wstring Utf16From(std::string_view utf8) {
  const int size = static_cast<int>(utf8.size());
  std::wstring utf16(utf8.size(), L'\0');  // No text is longer in UTF-16.
  utf16.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, utf16.data(), size)));
  return utf16;
}

std::string Utf8From(std::wstring_view utf16) {
  constexpr std::size_t kMostOfEach = 3;  // A pair of surrogates takes four.
  const int size = static_cast<int>(utf16.size());
  std::string utf8(kMostOfEach * utf16.size(), '\0');
  utf8.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, utf16.data(), size, utf8.data(),
                          static_cast<int>(utf8.size()), nullptr, nullptr)));
  return utf8;
}

std::wstring CommandLineOf(const std::vector<std::string>& words) {
  std::wstring line;
  for (const std::string& word : words) line += Quoted(Utf16From(word)) + L" ";
  return line;
}

}  // namespace kelproj
