#include "git_attributes.h"

#include <algorithm>
#include <fstream>
#include <numeric>
#include <string_view>
#include <system_error>

#include "console.h"
#include "standard_input.h"

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

// The condition whether a line says this, whatever its end.
auto IsLine(const std::string& text) {
  return [text](const std::string& line) {
    return line.substr(0, line.find_last_not_of("\r\n") + 1) == text;
  };
}

bool Replace(const std::filesystem::path& path, const std::string& text) {
  namespace fs = std::filesystem;
  fs::path temporary = path;
  temporary += ".kelproj";
  std::ofstream stream(temporary, std::ios::binary);
  stream << text;
  stream.close();
  std::error_code error;
  if (stream) {
    if (fs::exists(path, error)) fs::permissions(temporary, fs::status(path).permissions(), error);
    fs::rename(temporary, path, error);
    if (!error) return true;
  }
  fs::remove(temporary, error);
  return false;
}

}  // namespace

GitAttributes::GitAttributes(const std::filesystem::path& top) : path_(top / ".gitattributes") {
  std::error_code error;
  if (!std::filesystem::exists(path_, error)) return;
  const std::string text = ReadFile(path_.string(), path_.string());
  for (std::size_t begin = 0; begin < text.size(); begin += lines_.back().size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size() - 1);
    lines_.push_back(text.substr(begin, end + 1 - begin));
  }
}

void GitAttributes::Add(const std::string& pattern) {
  const std::string line = LineOf(pattern);
  if (std::any_of(lines_.begin(), lines_.end(), IsLine(line))) return;
  if (!lines_.empty() && lines_.back().back() != '\n') lines_.back() += '\n';
  lines_.push_back(line + '\n');
  is_changed_ = true;
}

void GitAttributes::Remove(const std::string& pattern) {
  const auto end = std::remove_if(lines_.begin(), lines_.end(), IsLine(LineOf(pattern)));
  is_changed_ = is_changed_ || end != lines_.end();
  lines_.erase(end, lines_.end());
}

void GitAttributes::Save() const {
  if (!is_changed_) return;
  const std::string text = std::accumulate(lines_.begin(), lines_.end(), std::string());
  std::error_code error;
  const bool is_saved = text.empty() ? std::filesystem::remove(path_, error) : Replace(path_, text);
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
