#include "platform/uri_paths.h"

#include <algorithm>

#include "platform/paths.h"

namespace projectdb::paths {
namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

std::string ToUriPath(const std::filesystem::path& path) {
  std::string text = ToBytes(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return IsSeparator(text.front()) ? text : "/" + text;
}

// "/C:/work" is on a drive.
std::filesystem::path FromUriPath(const std::string& text) {
  const bool has_drive =
      text.size() > 2 && text.front() == '/' && IsLetter(text[1]) && text[2] == ':';
  return FromBytes(has_drive ? text.substr(1) : text).make_preferred();
}

bool IsDrive(std::string_view scheme) { return scheme.size() == 1 && IsLetter(scheme.front()); }

// The system knows a share by two separators, and what is no file by "." or "?" between more.
bool IsBeyondFiles(const std::filesystem::path& path) {
  const std::string text = ToBytes(path);
  return text.size() > 1 && IsSeparator(text[0]) && (IsSeparator(text[1]) || text[1] == '?');
}

}  // namespace projectdb::paths
