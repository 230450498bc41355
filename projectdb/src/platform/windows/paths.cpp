#include "platform/paths.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "base/utf8.h"

namespace projectdb::paths {
namespace {

// A byte that is not UTF-8 stands in a path as a code unit that no text has.
constexpr std::uint32_t kFirstEscape = 0xDC80;
constexpr std::uint32_t kLastEscape = 0xDCFF;
constexpr std::uint32_t kEscapes = 0xDC00;

constexpr std::uint32_t kFirstHighSurrogate = 0xD800;
constexpr std::uint32_t kFirstLowSurrogate = 0xDC00;
constexpr std::uint32_t kLastLowSurrogate = 0xDFFF;
constexpr std::uint32_t kFirstBeyondPlane = 0x10000;

std::uint32_t CodePointOf(std::string_view character) {
  const auto byte = [&](std::size_t i) {
    return std::uint32_t{static_cast<unsigned char>(character[i])};
  };
  if (character.size() == 1) return byte(0);
  std::uint32_t code_point = byte(0) & (0xFFU >> (character.size() + 1));
  for (std::size_t i = 1; i < character.size(); ++i)
    code_point = code_point << 6U | (byte(i) & 0x3FU);
  return code_point;
}

void AppendUtf16(std::wstring& text, std::uint32_t code_point) {
  if (code_point < kFirstBeyondPlane) {
    text += static_cast<wchar_t>(code_point);
  } else {
    const std::uint32_t beyond = code_point - kFirstBeyondPlane;
    text += static_cast<wchar_t>(kFirstHighSurrogate + (beyond >> 10U));
    text += static_cast<wchar_t>(kFirstLowSurrogate + (beyond & 0x3FFU));
  }
}

void AppendUtf8(std::string& text, std::uint32_t code_point) {
  if (code_point < 0x80) {
    text += static_cast<char>(code_point);
    return;
  }
  const unsigned rest = code_point < 0x800 ? 1 : code_point < kFirstBeyondPlane ? 2 : 3;
  constexpr std::uint32_t kFirstBytes[] = {0, 0xC0, 0xE0, 0xF0};
  text += static_cast<char>(kFirstBytes[rest] | code_point >> (6 * rest));
  for (unsigned i = rest; i-- > 0;) {
    text += static_cast<char>(0x80U | (code_point >> (6 * i) & 0x3FU));
  }
}

bool IsBetween(std::uint32_t unit, std::uint32_t first, std::uint32_t last) {
  return unit >= first && unit <= last;
}

constexpr wchar_t kSeparators[] = L"/\\";

bool IsSeparator(wchar_t unit) { return unit == L'/' || unit == L'\\'; }

// Of a path on a share: "//server/share".
std::wstring ShareOf(const std::wstring& native) {
  constexpr std::size_t kServer = 2;
  const std::size_t server_end = native.find_first_of(kSeparators, kServer);
  if (server_end == std::wstring::npos) return native;
  return native.substr(0, native.find_first_of(kSeparators, server_end + 1));
}

}  // namespace

std::filesystem::path FromBytes(const std::string& name) {
  std::wstring native;
  native.reserve(name.size());
  for (std::string_view rest = name; !rest.empty();) {
    const std::size_t size = utf8::LeadingCharacterSize(rest);
    if (size > 0) {
      AppendUtf16(native, CodePointOf(rest.substr(0, size)));
    } else {
      AppendUtf16(native, kEscapes + static_cast<unsigned char>(rest.front()));
    }
    rest.remove_prefix(size > 0 ? size : 1);
  }
  return std::filesystem::path(std::move(native));
}

std::string ToBytes(const std::filesystem::path& path) {
  const std::wstring& native = path.native();
  std::string bytes;
  bytes.reserve(native.size());
  for (std::size_t i = 0; i < native.size(); ++i) {
    const std::uint32_t unit = native[i];
    const std::uint32_t next = i + 1 < native.size() ? native[i + 1] : 0;
    if (IsBetween(unit, kFirstHighSurrogate, kFirstLowSurrogate - 1) &&
        IsBetween(next, kFirstLowSurrogate, kLastLowSurrogate)) {
      const std::uint32_t high = unit - kFirstHighSurrogate;
      AppendUtf8(bytes, kFirstBeyondPlane + (high << 10U) + (next - kFirstLowSurrogate));
      ++i;
    } else if (IsBetween(unit, kFirstEscape, kLastEscape)) {
      bytes += static_cast<char>(unit - kEscapes);
    } else {
      AppendUtf8(bytes, unit);
    }
  }
  return bytes;
}

bool IsOnShare(const std::filesystem::path& path) {
  const std::wstring& native = path.native();
  return native.size() > 1 && IsSeparator(native[0]) && IsSeparator(native[1]);
}

bool IsAbsolute(const std::filesystem::path& path) { return IsOnShare(path) || path.is_absolute(); }

std::filesystem::path Below(const std::filesystem::path& base, const std::filesystem::path& path) {
  const bool has_root_alone = path.has_root_directory() && !path.has_root_name();
  if (!has_root_alone || !IsOnShare(base)) return base / path;
  return ShareOf(base.native()) + path.native();
}

}  // namespace projectdb::paths
