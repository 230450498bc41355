#include "xml/file_uri.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "platform/paths.h"
#include "platform/uri_paths.h"

namespace projectdb::xml {
namespace {

constexpr std::string_view kAlphanumerics =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::string_view kFileScheme = "file";

bool IsOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// A "%" that no two hexadecimal digits follow stands for itself.
std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    const char* const digits = text.data() + i + 1;
    if (text[i] == '%' && text.size() - i > 2 &&
        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      plain += static_cast<char>(byte);
      i += 2;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

// Takes "scheme:" off the text; gives "" if it has none.
std::string TakeScheme(std::string_view& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0) return {};
  std::string scheme(text.substr(0, colon));
  const bool is_scheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
    return IsOneOf(c, kAlphanumerics) || IsOneOf(c, "+-.");
  });
  if (!is_scheme) return {};
  text.remove_prefix(colon + 1);
  std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return scheme;
}

// Takes "//host" off the text; gives whether the host, if there is one, is this machine.
bool TakeLocalHost(std::string_view& text) {
  if (!StartsWith(text, "//")) return true;
  const std::string_view host = text.substr(2, text.find('/', 2) - 2);
  text.remove_prefix(2 + host.size());
  return host.empty() || host == "localhost";
}

// As it is if the system does not tell. Links on a share are its server's.
std::filesystem::path WithoutLinks(const std::filesystem::path& directory) {
  if (paths::IsOnShare(directory)) return directory;
  std::error_code error;
  std::filesystem::path real = std::filesystem::canonical(directory, error);
  return error ? directory : real;
}

}  // namespace

std::string EscapeForUri(std::string_view text) {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : text) {
    if (IsOneOf(c, kAlphanumerics) || IsOneOf(c, "/-._~")) {
      escaped += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      escaped += {'%', kHexDigits[byte >> 4U], kHexDigits[byte & 0xFU]};
    }
  }
  return escaped;
}

std::string FileUri(const std::filesystem::path& path) {
  const std::filesystem::path absolute = paths::Absolute(path);
  return "file://" +
         EscapeForUri(paths::ToUriPath(WithoutLinks(absolute.parent_path()) / absolute.filename()));
}

std::optional<std::filesystem::path> LocalPath(std::string_view reference,
                                               std::string_view base_uri) {
  std::string_view rest = reference;
  const std::string scheme = TakeScheme(rest);
  if (!paths::IsDrive(scheme)) {
    if (!scheme.empty() && scheme != kFileScheme) return std::nullopt;
    reference = rest;
  }
  if (!TakeLocalHost(reference)) return std::nullopt;
  const std::string name = Unescape(reference);
  if (name.empty() || name.find('\0') != std::string::npos) return std::nullopt;
  TakeScheme(base_uri);
  TakeLocalHost(base_uri);
  const std::filesystem::path path = paths::FromUriPath(name);
  if (paths::IsBeyondFiles(path)) return std::nullopt;
  return paths::Below(paths::FromUriPath(Unescape(base_uri)).parent_path(), path);
}

}  // namespace projectdb::xml
