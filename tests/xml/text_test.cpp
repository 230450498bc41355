#include <cstddef>
#include <cstdint>
#include <ostream>

#include "base/failure.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "xml/text.h"

namespace {

using namespace projectdb;
using namespace projectdb::xml;
using namespace std::string_literals;
using namespace test_support;

class TranscodedText : public testing::Test {
 protected:
  /// What the Failure says that a text ends in; "" if it is accepted.
  std::string ErrorOf(const std::string& text) {
    return test_support::ErrorOf<Failure>([&] { transcoder_.ToXml(text); });
  }

  const XmlPlatform platform_;
  Transcoder transcoder_;
};

struct TextInBothForms {
  std::string utf8;
  std::u16string xml;
};

TEST_F(TranscodedText, EmptyOrNullText_IsEmptyInTheOtherForm) {
  EXPECT_EQ(transcoder_.ToXml(""), u"");
  EXPECT_EQ(transcoder_.ToUtf8(u""), "");
  EXPECT_EQ(transcoder_.ToUtf8(nullptr), "");
}

TEST_F(TranscodedText, TranscodeXMLString_GivesUtf8) {
  EXPECT_EQ(TranscodeXMLString(u"a\u00FC\u20AC\U0001F600z"),
            "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80z");
}

TEST_F(TranscodedText, ToXml_PartOfALongerText_ConvertsThePart) {
  const std::string text = "abcdef";
  EXPECT_EQ(transcoder_.ToXml(std::string_view(text).substr(1, 2)), u"bc");
}

/// All characters of a plane of 65536 that XML can carry, in both forms.
TextInBothForms Plane(std::uint32_t plane) {
  TextInBothForms pair;
  for (std::uint32_t i = 0; i < 0x10000; ++i) {
    const std::uint32_t c = plane << 16 | i;
    if (plane == 0 && ((c < 0x20 && c != '\t' && c != '\n' && c != '\r') ||
                       (c >= 0xD800 && c < 0xE000) || c >= 0xFFFE)) {
      continue;
    }
    const auto add = [&](std::uint32_t first, int more_bytes) {
      pair.utf8 += static_cast<char>(first | c >> (6 * more_bytes));
      for (int left = more_bytes - 1; left >= 0; --left) {
        pair.utf8 += static_cast<char>(0x80 | (c >> (6 * left) & 0x3F));
      }
    };
    if (c < 0x80) {
      add(0, 0);
    } else if (c < 0x800) {
      add(0xC0, 1);
    } else if (c < 0x10000) {
      add(0xE0, 2);
    } else {
      add(0xF0, 3);
    }
    if (c < 0x10000) {
      pair.xml += static_cast<char16_t>(c);
    } else {
      pair.xml += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      pair.xml += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return pair;
}

TEST_F(TranscodedText, Conversions_EveryCharacter_GiveTheOtherForm) {
  for (std::uint32_t number = 0; number < 17; ++number) {
    const TextInBothForms plane = Plane(number);
    EXPECT_TRUE(transcoder_.ToXml(plane.utf8) == plane.xml) << "plane " << number;
    EXPECT_TRUE(transcoder_.ToUtf8(plane.xml.c_str()) == plane.utf8) << "plane " << number;
  }
}

TEST_F(TranscodedText, Conversions_SizesAroundThoseOfAnyBlock_GiveTheOtherFormAndRefuseABadEnd) {
  for (const std::size_t size : {1U, 1023U, 1024U, 1025U, 4096U, 16384U, 100000U}) {
    for (const char* character : {"a", "\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
      const std::string text = Repeated(character, size);
      EXPECT_TRUE(transcoder_.ToUtf8(std::u16string(transcoder_.ToXml(text)).c_str()) == text)
          << size << " of " << character;
      EXPECT_NE(ErrorOf(text + "\xE2\x82"), "");
    }
  }
}

TEST_F(TranscodedText, Reuse_TextsOfAnyLengthInTurn_HaveNothingOfTheOnesBefore) {
  transcoder_.ToXml(std::string(5000, 'x'));
  EXPECT_EQ(transcoder_.ToXml("ab"), u"ab");
  const std::u16string name = transcoder_.ToElementName("first");
  transcoder_.ToElementName("long text that is not UTF-8\xFF");
  EXPECT_EQ(transcoder_.ToElementName("next"), u"next");
  EXPECT_EQ(name, u"first");
}

TEST_F(TranscodedText, Reuse_GoodTextAfterABadOne_IsConverted) {
  for (const char* bad : {"\xFF", "\xE2\x82", "a\x01", "\xF0\x9F"}) {
    ASSERT_NE(ErrorOf(bad), "");
    EXPECT_EQ(transcoder_.ToXml("a\xC3\xBC"), u"a\u00FC");
  }
}

TEST_F(TranscodedText, Reuse_BothDirectionsInTurn_DoNotDisturbEachOther) {
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(transcoder_.ToXml("\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_EQ(transcoder_.ToUtf8(u"\u00FC"), "\xC3\xBC");
  }
}

TEST_F(TranscodedText, ToXml_NotUtf8_IsRefused) {
  for (const std::string text : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xE2\x82", "a\xC3z",
                                 "\xF4\x90\x80\x80", "gr\xFCn", "\xFF"}) {
    for (const std::string before : {"", "long enough to be a text of its own "}) {
      EXPECT_NE(ErrorOf(before + text), "") << testing::PrintToString(text);
    }
  }
}

TEST_F(TranscodedText, ToXml_NotUtf8_ErrorShowsTheText) {
  EXPECT_EQ(ErrorOf("a\xFF"), "the text \"a\\xff\" is not UTF-8");
}

TEST_F(TranscodedText, ToXml_EveryControlThatXmlCannotCarry_IsRefused) {
  for (char c = 0; c < 0x20; ++c) {
    const bool is_allowed = c == '\t' || c == '\n' || c == '\r';
    EXPECT_EQ(ErrorOf("a" + std::string(1, c)).empty(), is_allowed) << static_cast<int>(c);
  }
}

TEST_F(TranscodedText, ToXml_NonCharacters_AreRefusedInTheFirstPlaneOnly) {
  EXPECT_NE(ErrorOf("\xEF\xBF\xBE"), "");
  EXPECT_NE(ErrorOf("\xEF\xBF\xBF"), "");
  EXPECT_EQ(ErrorOf("\xEF\xB7\x90\xF0\x9F\xBF\xBE\xF4\x8F\xBF\xBF"), "");
}

TEST_F(TranscodedText, ToXml_ForbiddenCharacter_ErrorTellsTextAndCharacter) {
  EXPECT_EQ(ErrorOf("a\x01"),
            "the text \"a\\x01\" has the character U+0001, which XML cannot carry");
}

TEST_F(TranscodedText, ToXml_ForbiddenCharacters_ErrorTellsTheFirst) {
  EXPECT_NE(ErrorOf("a\xEF\xBF\xBE\x01").find("U+FFFE"), std::string::npos);
}

TEST_F(TranscodedText, ToElementName_Name_IsConverted) {
  for (const char* name :
       {"a", "_", "param", "a-b.c_1", "A1", "xml", "xsi", "é", "名前", "e\u0301"}) {
    EXPECT_EQ(TranscodeXMLString(transcoder_.ToElementName(name).c_str()), name);
  }
}

TEST_F(TranscodedText, ToElementName_NoName_IsEmpty) {
  for (const std::string& name : {""s,
                                  ":"s,
                                  "a:b"s,
                                  ":a"s,
                                  "a:"s,
                                  "1"s,
                                  "-a"s,
                                  ".a"s,
                                  "a b"s,
                                  "a\tb"s,
                                  "a/b"s,
                                  "<"s,
                                  "&"s,
                                  "\u0301"s,
                                  "\U0001F600"s,
                                  "a\0"s,
                                  "\0"s,
                                  "a\x01"s,
                                  "a\xFF"s,
                                  "\xFF"s,
                                  "a\xED\xA0\x80"s,
                                  "a\xF5\x80\x80\x80"s}) {
    EXPECT_EQ(transcoder_.ToElementName(name), u"") << testing::PrintToString(name);
  }
}

TEST_F(TranscodedText, IsNCName_TellsNamesFromOtherText) {
  EXPECT_TRUE(IsNCName(u"name"));
  EXPECT_FALSE(IsNCName(u"pre:name"));
  EXPECT_FALSE(IsNCName(u""));
  EXPECT_TRUE(IsNCName(std::u16string_view(u"name with blanks").substr(0, 4)));
}

}  // namespace
