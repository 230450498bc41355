#include "git_attributes.h"

#include <algorithm>
#include <fstream>
#include <numeric>
#include <random>
#include <string_view>
#include <system_error>

#include "console.h"
#include "platform/file_names.h"
#include "standard_input.h"

namespace kelproj {
namespace {

namespace fs = std::filesystem;

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

/// A new directory, which goes with all that is in it.
class TemporaryDirectory {
 public:
  /// @exception std::filesystem::filesystem_error if there can be none in the parent
  explicit TemporaryDirectory(const fs::path& parent) {
    std::random_device random;
    // A directory that somebody else made is none of this program's, whatever its name.
    do {
      path_ = parent / (".kelproj_" + std::to_string(random()));
    } while (!fs::create_directory(path_));
  }
  ~TemporaryDirectory() {
    std::error_code error;
    fs::remove_all(path_, error);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

void Replace(const fs::path& path, const std::string& text) {
  const TemporaryDirectory directory(path.parent_path());
  const fs::path temporary = directory.path() / "attributes";
  std::ofstream stream;
  stream.exceptions(std::ios::failbit | std::ios::badbit);
  stream.open(temporary, std::ios::binary);
  stream << text;
  stream.close();
  if (fs::exists(path)) fs::permissions(temporary, fs::status(path).permissions());
  fs::rename(temporary, path);
}

// The file to which links lead, whether it is there or not.
fs::path TargetOf(fs::path path) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(path, error); ++links) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

}  // namespace

GitAttributes::GitAttributes(const fs::path& top) : path_(top / ".gitattributes") {
  std::error_code error;
  if (!fs::exists(path_, error)) return;
  const std::string text = ReadFile(NameFrom(path_), NameFrom(path_));
  for (std::size_t begin = 0; begin < text.size(); begin += lines_.back().size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size() - 1);
    lines_.push_back(text.substr(begin, end + 1 - begin));
  }
}

bool GitAttributes::is_link() const {
  std::error_code error;
  return fs::is_symlink(path_, error);
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
  try {
    if (text.empty() && !is_link()) {
      fs::remove(path_);
    } else {
      Replace(TargetOf(path_), text);
    }
  } catch (const std::system_error&) {
    throw Trouble(NameFrom(path_) + " cannot be written");
  }
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
