#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "base/failure.h"
#include "testing/xml_platform.h"
#include "xml/text.h"

namespace {

using projectdb::Failure;
using projectdb::xml::IsNCName;
using projectdb::xml::Transcoder;
using projectdb::xml::TranscodeXMLString;

using namespace std::string_literals;

class Text : public testing::Test {
 protected:
  /// What the Failure says that a text ends in; "" if it is accepted.
  std::string ErrorOf(const std::string& text) {
    try {
      transcoder_.ToXml(text);
    } catch (const Failure& failure) {
      return failure.what();
    }
    return {};
  }

  const test_support::XmlPlatform platform_;
  Transcoder transcoder_;
};

// Texts in both forms.

struct Pair {
  const char* name;
  std::string utf8;
  std::u16string xml;
};

void PrintTo(const Pair& pair, std::ostream* out) { *out << pair.name; }

const Pair kPairs[] = {
    {"nothing", "", u""},
    {"ASCII", "top.v", u"top.v"},
    {"white space", "\t\n\r ", u"\t\n\r "},
    {"two bytes", "\xC2\x80\xDF\xBF", u"\u0080\u07FF"},
    {"three bytes", "\xE0\xA0\x80\xEF\xBF\xBD", u"\u0800\uFFFD"},
    {"beside the surrogates", "\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},
    {"four bytes", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
    {"mixed", "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80z", u"a\u00FC\u20AC\U0001F600z"},
    {"byte order mark", "\xEF\xBB\xBF", u"\uFEFF"},
};

class TextPair : public Text, public testing::WithParamInterface<Pair> {};

INSTANTIATE_TEST_SUITE_P(Texts, TextPair, testing::ValuesIn(kPairs));

TEST_P(TextPair, Conversions_GiveTheOtherForm) {
  EXPECT_EQ(transcoder_.ToXml(GetParam().utf8), GetParam().xml);
  EXPECT_EQ(transcoder_.ToUtf8(GetParam().xml.c_str()), GetParam().utf8);
  EXPECT_EQ(TranscodeXMLString(GetParam().xml.c_str()), GetParam().utf8);
}

TEST_F(Text, ToUtf8_Null_IsEmpty) { EXPECT_EQ(transcoder_.ToUtf8(nullptr), ""); }

TEST_F(Text, ToXml_PartOfALongerText_ConvertsThePart) {
  const std::string text = "abcdef";
  EXPECT_EQ(transcoder_.ToXml(std::string_view(text).substr(1, 2)), u"bc");
}

/// All characters of a plane of 65536 that XML can carry, in both forms.
Pair Plane(std::uint32_t plane) {
  Pair pair{"", "", u""};
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

class TextPlane : public Text, public testing::WithParamInterface<std::uint32_t> {};

INSTANTIATE_TEST_SUITE_P(Planes, TextPlane, testing::Range(0U, 17U));

TEST_P(TextPlane, Conversions_GiveTheOtherFormOfEveryCharacter) {
  const Pair plane = Plane(GetParam());
  EXPECT_TRUE(transcoder_.ToXml(plane.utf8) == plane.xml);
  EXPECT_TRUE(transcoder_.ToUtf8(plane.xml.c_str()) == plane.utf8);
}

// Long texts, at sizes around those of any block that a conversion may work in.

class TextOfSize : public Text, public testing::WithParamInterface<std::size_t> {
 protected:
  static std::string Repeat(const std::string& character) {
    std::string text;
    for (std::size_t i = 0; i < GetParam(); ++i) text += character;
    return text;
  }
};

INSTANTIATE_TEST_SUITE_P(Sizes, TextOfSize,
                         testing::Values(1U, 1023U, 1024U, 1025U, 4096U, 16384U, 100000U));

TEST_P(TextOfSize, ToXml_AndBack_GivesTheSame) {
  EXPECT_TRUE(transcoder_.ToXml(Repeat("a")) == std::u16string(GetParam(), u'a'));
  for (const char* character : {"\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    const std::string text = Repeat(character);
    EXPECT_TRUE(transcoder_.ToUtf8(std::u16string(transcoder_.ToXml(text)).c_str()) == text)
        << character;
  }
}

TEST_P(TextOfSize, ToXml_BadAtTheEnd_IsRefused) {
  EXPECT_NE(ErrorOf(Repeat("a") + "\xE2\x82"), "");
}

// One object for many texts.

TEST_F(Text, Reuse_TextsOfAnyLengthInTurn_HaveNothingOfTheOnesBefore) {
  transcoder_.ToXml(std::string(5000, 'x'));
  EXPECT_EQ(transcoder_.ToXml("ab"), u"ab");
  EXPECT_EQ(transcoder_.ToXml(std::string(5000, 'y')), std::u16string(5000, u'y'));
  EXPECT_EQ(transcoder_.ToXml(""), u"");
}

TEST_F(Text, Reuse_GoodTextAfterABadOne_IsConverted) {
  for (const char* bad : {"\xFF", "\xE2\x82", "a\x01", "\xF0\x9F"}) {
    ASSERT_NE(ErrorOf(bad), "");
    EXPECT_EQ(transcoder_.ToXml("a\xC3\xBC"), u"a\u00FC");
  }
}

TEST_F(Text, Reuse_BothDirectionsInTurn_DoNotDisturbEachOther) {
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(transcoder_.ToXml("\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_EQ(transcoder_.ToUtf8(u"\u00FC"), "\xC3\xBC");
  }
}

// Texts that are refused.

TEST_F(Text, ToXml_NotUtf8_IsRefused) {
  for (const std::string& text : {"\x80"s,
                                  "\xBF"s,
                                  "\xC3"s,
                                  "\xC0\x80"s,
                                  "\xC1\xBF"s,
                                  "\xE0\x80\x80"s,
                                  "\xE0\x9F\xBF"s,
                                  "\xED\xA0\x80"s,
                                  "\xF0\x8F\xBF\xBF"s,
                                  "\xED\xBF\xBF"s,
                                  "\xE2\x82"s,
                                  "\xF0\x9F\x98"s,
                                  "a\xC3z"s,
                                  "\xF4\x90\x80\x80"s,
                                  "\xE2\x82z"s,
                                  "\xC3\xC3"s,
                                  "\xC3\x28"s,
                                  "gr\xFCn"s,
                                  "\xF5\x80\x80\x80"s,
                                  "\xFE"s,
                                  "\xFF"s,
                                  "\xF8\x88\x80\x80\x80"s,
                                  "\xF0\x28\x8C\xBC"s}) {
    for (const std::string& before : {""s, "long enough to be a text of its own "s}) {
      EXPECT_NE(ErrorOf(before + text), "") << testing::PrintToString(text);
    }
  }
}

// Whether a text is UTF-8, written down once more.
bool IsUtf8(const std::string& text) {
  const auto at = [&](std::size_t i) -> unsigned {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  std::size_t i = 0;
  while (i < text.size()) {
    const unsigned first = at(i);
    const unsigned second = at(i + 1);
    std::size_t length = 1;
    bool second_fits = true;
    if (first >= 0xF0) {
      length = 4;
      second_fits = first == 0xF0 ? second >= 0x90 : first == 0xF4 ? second < 0x90 : first < 0xF4;
    } else if (first >= 0xE0) {
      length = 3;
      second_fits = first == 0xE0 ? second >= 0xA0 : first != 0xED || second < 0xA0;
    } else if (first >= 0x80) {
      length = 2;
      second_fits = first >= 0xC2;
    }
    if (!second_fits) return false;
    for (std::size_t j = 1; j < length; ++j) {
      if ((at(i + j) & 0xC0) != 0x80) return false;
    }
    i += length;
  }
  return true;
}

class TextOfBytes : public Text, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Behind, TextOfBytes,
                         testing::Values("", "a", "more than a few letters that go before it"));

TEST_P(TextOfBytes, ToXml_AcceptsUtf8AndNothingElse) {
  // Each byte that a rule of UTF-8 turns on; those that XML refuses anyway are left out.
  constexpr char kBytes[] =
      "a\x7F\x80\x8F\x90\x9F\xA0\xB7\xBD\xC1\xC2\xDF\xE0\xED\xEE\xF0\xF1\xF4\xF5\xFF";
  constexpr std::size_t kCount = sizeof(kBytes) - 1;
  int wrong = 0;
  std::string example;
  for (std::size_t i = 0; i < kCount * kCount * kCount * kCount; ++i) {
    std::string text = GetParam();
    for (std::size_t rest = i, j = 0; j < 4; ++j, rest /= kCount) text += kBytes[rest % kCount];
    if (ErrorOf(text).empty() == IsUtf8(text)) continue;
    ++wrong;
    example = text;
  }
  EXPECT_EQ(wrong, 0) << "such as " << testing::PrintToString(example);
}

TEST_F(Text, ToXml_NotUtf8_ErrorShowsTheText) {
  EXPECT_EQ(ErrorOf("a\xFF"), "the text \"a\\xff\" is not UTF-8");
}

TEST_F(Text, ToXml_EveryControlThatXmlCannotCarry_IsRefused) {
  for (char c = 0; c < 0x20; ++c) {
    const bool is_allowed = c == '\t' || c == '\n' || c == '\r';
    EXPECT_EQ(ErrorOf("a" + std::string(1, c)).empty(), is_allowed) << static_cast<int>(c);
  }
}

TEST_F(Text, ToXml_NonCharacters_AreRefusedInTheFirstPlaneOnly) {
  EXPECT_NE(ErrorOf("\xEF\xBF\xBE"), "");
  EXPECT_NE(ErrorOf("\xEF\xBF\xBF"), "");
  EXPECT_EQ(ErrorOf("\xEF\xB7\x90\xF0\x9F\xBF\xBE\xF4\x8F\xBF\xBF"), "");
}

TEST_F(Text, ToXml_ForbiddenCharacter_ErrorTellsTextAndCharacter) {
  EXPECT_EQ(ErrorOf("a\x01"),
            "the text \"a\\x01\" has the character U+0001, which XML cannot carry");
}

TEST_F(Text, ToXml_ForbiddenCharacters_ErrorTellsTheFirst) {
  EXPECT_NE(ErrorOf("a\xEF\xBF\xBE\x01").find("U+FFFE"), std::string::npos);
}

// Names.

const char* const kNames[] = {
    "a",        "_", "param", "a-b.c_1", "A1", "xml", "xsi", "\xC3\xA9", "\xE5\x90\x8D\xE5\x89\x8D",
    "e\xCC\x81"};

const std::string kNoNames[] = {"",
                                ":",
                                "a:b",
                                ":a",
                                "a:",
                                "1",
                                "-a",
                                ".a",
                                "a b",
                                "a\tb",
                                "a/b",
                                "<",
                                "&",
                                "\xCC\x81",
                                "\xF0\x9F\x98\x80",
                                "a\0"s,
                                "\0"s,
                                "a\x01",
                                "a\xFF",
                                "\xFF",
                                "a\xED\xA0\x80",
                                "a\xF5\x80\x80\x80"};

TEST_F(Text, ToElementName_Name_IsConverted) {
  for (const char* name : kNames) {
    EXPECT_EQ(TranscodeXMLString(transcoder_.ToElementName(name).c_str()), name);
  }
}

TEST_F(Text, ToElementName_NoName_IsEmpty) {
  for (const std::string& name : kNoNames) {
    EXPECT_EQ(transcoder_.ToElementName(name), u"") << testing::PrintToString(name);
  }
}

TEST_F(Text, ToElementName_Conversions_DoNotDisturbEachOther) {
  const std::u16string name = transcoder_.ToElementName("first");
  transcoder_.ToElementName("long text that is not UTF-8\xFF");
  EXPECT_EQ(transcoder_.ToElementName("next"), u"next");
  EXPECT_EQ(name, u"first");
}

TEST_F(Text, IsNCName_TellsNamesFromOtherText) {
  EXPECT_TRUE(IsNCName(u"name"));
  EXPECT_FALSE(IsNCName(u"pre:name"));
  EXPECT_FALSE(IsNCName(u""));
  EXPECT_TRUE(IsNCName(std::u16string_view(u"name with blanks").substr(0, 4)));
}

}  // namespace
