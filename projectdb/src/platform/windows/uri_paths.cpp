#include "platform/uri_paths.h"

#include <algorithm>
#include <cctype>

#include "platform/paths.h"

namespace projectdb::paths {
namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The digits that the system takes for the number of a port.
bool IsPortNumber(std::string_view text) {
  if (text.size() == 1) return text[0] >= '1' && text[0] <= '9';
  return text == "\u00B9" || text == "\u00B2" || text == "\u00B3";
}

// To the system the name of a device stands for it in every directory, whatever ending it has.
bool IsDevice(const std::string& name) {
  std::string stem = name.substr(0, name.find_first_of(".:"));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::transform(stem.begin(), stem.end(), stem.begin(), [](char c) {
    return IsLetter(c) ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
  });
  for (const char* device : {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"}) {
    if (stem == device) return true;
  }
  const std::string port = stem.substr(0, 3);
  return (port == "COM" || port == "LPT") && IsPortNumber(std::string_view(stem).substr(3));
}

bool HasDevice(const std::filesystem::path& path) {
  return std::any_of(path.begin(), path.end(), [](const std::filesystem::path& component) {
    return IsDevice(ToBytes(component));
  });
}

// "D:x" is in the directory that a process has on that drive.
bool IsOfTheProcess(const std::filesystem::path& path) {
  return path.has_root_name() && !path.has_root_directory();
}

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

// The system knows what is no file by "." or "?" between separators.
bool IsBeyondFiles(const std::filesystem::path& path) {
  const std::string text = ToBytes(path);
  const bool has_system_prefix = text.size() > 1 && IsSeparator(text[0]) && text[1] == '?';
  return IsOnShare(path) || has_system_prefix || IsOfTheProcess(path) || HasDevice(path);
}

}  // namespace projectdb::paths
