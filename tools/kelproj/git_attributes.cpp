#include "git_attributes.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>

#include "console.h"
#include "stored_project.h"

namespace kelproj {
namespace {

bool IsWordCharacter(char c) {
  return static_cast<unsigned char>(c) > ' ' && c != '"' && c != '\x7F';
}

std::string Octal(char c) {
  const auto code = static_cast<unsigned char>(c);
  const auto digit = [](int value) { return static_cast<char>('0' + value); };
  return {'\\', digit(code / 64), digit(code / 8 % 8), digit(code % 8)};
}

// As in C, if the pattern is no single word.
std::string Quoted(const std::string& pattern) {
  if (std::all_of(pattern.begin(), pattern.end(), IsWordCharacter)) return pattern;
  std::string quoted = "\"";
  for (const char c : pattern) {
    quoted += c == '\\' || (c != ' ' && !IsWordCharacter(c)) ? Octal(c) : std::string(1, c);
  }
  return quoted + "\"";
}

std::string LineOf(const std::string& pattern) {
  return Quoted(pattern) + " diff=kelproj merge=kelproj filter=kelproj";
}

}  // namespace

GitAttributes::GitAttributes(const std::filesystem::path& top) : path_(top / ".gitattributes") {
  std::error_code error;
  if (!std::filesystem::exists(path_, error)) return;
  RequireReadable(path_.string());
  std::ifstream stream(path_, std::ios::binary);
  for (std::string line; std::getline(stream, line);) lines_.push_back(line);
}

void GitAttributes::Add(const std::string& pattern) {
  const std::string line = LineOf(pattern);
  if (std::find(lines_.begin(), lines_.end(), line) != lines_.end()) return;
  lines_.push_back(line);
  is_changed_ = true;
}

void GitAttributes::Remove(const std::string& pattern) {
  const auto end = std::remove(lines_.begin(), lines_.end(), LineOf(pattern));
  is_changed_ = is_changed_ || end != lines_.end();
  lines_.erase(end, lines_.end());
}

bool GitAttributes::NamesDrivers() const {
  return std::any_of(lines_.begin(), lines_.end(), [](const std::string& line) {
    return line.find("=kelproj") != std::string::npos;
  });
}

void GitAttributes::Save() const {
  if (!is_changed_) return;
  bool is_saved = false;
  if (lines_.empty()) {
    std::error_code error;
    is_saved = std::filesystem::remove(path_, error);
  } else {
    std::ofstream stream(path_, std::ios::binary);
    for (const std::string& line : lines_) stream << line << '\n';
    is_saved = static_cast<bool>(stream.flush());
  }
  if (!is_saved) throw Trouble(path_.string() + " cannot be written");
}

std::string LiteralPattern(const std::string& path) {
  constexpr std::string_view kSpecial = "*?[\\";
  std::string pattern;
  for (const char c : path) {
    if (kSpecial.find(c) != std::string_view::npos) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace kelproj
