#include "base/utf8.h"

#include <cstdint>
#include <string_view>

#include "testing/test.h"

namespace {

using projectdb::utf8::IsValid;
using projectdb::utf8::LeadingCharacterSize;

/// The bits of a number, most significant first, in the bytes of a character of this size.
std::string Encoded(std::uint32_t number, std::size_t size) {
  if (size == 1) return {static_cast<char>(number)};
  std::string bytes(size, '\0');
  for (std::size_t i = size - 1; i > 0; --i, number >>= 6U) {
    bytes[i] = static_cast<char>(0x80U | (number & 0x3FU));
  }
  bytes[0] = static_cast<char>((0xF00U >> size) | number);
  return bytes;
}

std::size_t SizeOf(std::uint32_t code_point) {
  return code_point < 0x80 ? 1 : code_point < 0x800 ? 2 : code_point < 0x10000 ? 3 : 4;
}

bool IsSurrogate(std::uint32_t code_point) { return code_point >= 0xD800 && code_point < 0xE000; }

TEST(Utf8, LeadingCharacterSize_EveryCodePoint_IsThatOfACharacterUnlessASurrogate) {
  for (std::uint32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
    const std::size_t size = SizeOf(code_point);
    ASSERT_EQ(LeadingCharacterSize(Encoded(code_point, size) + "x"),
              IsSurrogate(code_point) ? 0 : size)
        << std::hex << code_point;
  }
}

TEST(Utf8, LeadingCharacterSize_CutOff_IsNone) {
  for (const std::uint32_t code_point : {0x80U, 0x7FFU, 0x800U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    const std::string character = Encoded(code_point, SizeOf(code_point));
    for (std::size_t size = 0; size < character.size(); ++size) {
      EXPECT_EQ(LeadingCharacterSize(character.substr(0, size)), 0) << std::hex << code_point;
      EXPECT_EQ(LeadingCharacterSize(character.substr(0, size) + "x"), size == 0 ? 1 : 0)
          << std::hex << code_point;
    }
  }
}

TEST(Utf8, LeadingCharacterSize_MoreBytesThanNeeded_IsNone) {
  for (std::size_t size = 2; size <= 4; ++size) {
    for (std::uint32_t code_point = 0; SizeOf(code_point) < size; ++code_point) {
      ASSERT_EQ(LeadingCharacterSize(Encoded(code_point, size)), 0) << std::hex << code_point;
    }
  }
}

TEST(Utf8, LeadingCharacterSize_BeyondTheLastCodePoint_IsNone) {
  for (std::uint32_t number = 0x110000; number < 0x200000; ++number) {
    ASSERT_EQ(LeadingCharacterSize(Encoded(number, 4)), 0) << std::hex << number;
  }
}

TEST(Utf8, LeadingCharacterSize_ByteThatBeginsNoCharacter_IsNone) {
  for (const std::string_view rest : {"", "x", "\x80", "\x80\x80\x80\x80\x80"}) {
    for (int first = 0x80; first <= 0xFF; first = first == 0xC1 ? 0xF5 : first + 1) {
      EXPECT_EQ(LeadingCharacterSize(static_cast<char>(first) + std::string(rest)), 0) << first;
    }
  }
}

TEST(Utf8, LeadingCharacterSize_SecondByteThatContinuesNoCharacter_IsNone) {
  for (int first = 0xC2; first <= 0xF4; ++first) {
    for (const char* rest : {"\x7F\x80\x80", "\xC0\x80\x80"}) {
      EXPECT_EQ(LeadingCharacterSize(static_cast<char>(first) + std::string(rest)), 0) << first;
    }
  }
}

TEST(Utf8, IsValid_Text_IsSoIfAllOfItIsCharacters) {
  EXPECT_TRUE(IsValid(""));
  EXPECT_TRUE(
      IsValid("gr\xC3\xB6\xC3\x9F"
              "e \xF0\x9F\x90\x9F\n"));
  EXPECT_FALSE(
      IsValid("gr\xF6\xDF"
              "e"));
  EXPECT_FALSE(IsValid("gr\xC3"));
}

}  // namespace
