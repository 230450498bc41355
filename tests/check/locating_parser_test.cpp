#include "check/locating_parser.h"

#include <optional>
#include <string_view>

#include "testing/test.h"

namespace {

using projectdb::check::FirstInvalidUtf8;
using projectdb::check::Position;

/// "line:column"; "none" if all is UTF-8.
std::string PlaceIn(std::string_view bytes) {
  const std::optional<Position> place = FirstInvalidUtf8(bytes);
  return place ? std::to_string(place->line) + ":" + std::to_string(place->column) : "none";
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_Utf8_IsNone) {
  for (const std::string_view bytes :
       {"", "a", "größe 日本 🐟\n", "\xEF\xBB\xBF", "\xEF\xBB\xBF<"}) {
    EXPECT_EQ(PlaceIn(bytes), "none") << bytes;
  }
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_InvalidByte_HasItsPlace) {
  EXPECT_EQ(PlaceIn("\xE9"), "1:1");
  EXPECT_EQ(PlaceIn("ab\xFF"
                    "c"),
            "1:3");
  EXPECT_EQ(PlaceIn("ab\x80\x80"), "1:3");
  EXPECT_EQ(PlaceIn("a\n\xC0\xAF"), "2:1");
  EXPECT_EQ(PlaceIn("\xED\xA0\x80"), "1:1");
  EXPECT_EQ(PlaceIn("\xF4\x90\x80\x80"), "1:1");
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_CutOffCharacter_HasItsPlace) {
  for (const std::string bytes : {"\xC3", "\xE2\x82", "\xF0\x9F\x90"}) {
    EXPECT_EQ(PlaceIn("a" + bytes), "1:2") << testing::PrintToString(bytes);
  }
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_CharactersBefore_CountInUtf16Units) {
  EXPECT_EQ(PlaceIn("ä日\xFF"), "1:3");
  EXPECT_EQ(PlaceIn("🐟\xFF"), "1:3");
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_LineEnds_CountOnceEach) {
  EXPECT_EQ(PlaceIn("a\r\nb\r\n\xFF"), "3:1");
  EXPECT_EQ(PlaceIn("a\rb\r\xFF"), "3:1");
  EXPECT_EQ(PlaceIn("a\n\r\xFF"), "3:1");
  EXPECT_EQ(PlaceIn("\r\r\n\n\xFF"), "4:1");
}

TEST(FirstInvalidUtf8, FirstInvalidUtf8_ByteOrderMark_TakesNoColumn) {
  EXPECT_EQ(PlaceIn("\xEF\xBB\xBF\xFF"), "1:1");
}

}  // namespace
