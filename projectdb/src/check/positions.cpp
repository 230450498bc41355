#include "check/positions.h"

#include "base/utf8.h"

namespace projectdb::xml {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// How many bytes a character takes that begins with this one.
std::size_t CharacterSize(char first) {
  const auto byte = static_cast<unsigned char>(first);
  return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

std::optional<Position> FirstInvalidUtf8(std::string_view bytes) {
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  Position position{1, 1};
  while (!bytes.empty()) {
    const std::string_view character = bytes.substr(0, CharacterSize(bytes.front()));
    if (!utf8::IsValid(character)) return position;
    bytes.remove_prefix(character.size());
    const bool is_first_of_two = character == "\r" && bytes.substr(0, 1) == "\n";
    if (character == "\n" || (character == "\r" && !is_first_of_two)) {
      position = {position.line + 1, 1};
    } else {
      position.column += character.size() == 4 ? 2U : 1U;
    }
  }
  return std::nullopt;
}

}  // namespace projectdb::xml
