#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "support/message_recorder.h"
#include "support/project_loading.h"
#include "support/project_snapshot.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace std::string_literals;
using testing::AnyOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Eq;
using testing::StartsWith;

class LoadRawBytes : public testing::Test, public Loading {
 protected:
  /// Loads a project file of these bytes. A std::runtime_error must have one of the two texts;
  /// anything else that is thrown fails the test.
  /// @return whether the file was taken for a project file at all
  bool IsRead(const std::string& bytes) {
    const std::string file = Write("p.xml", bytes);
    const MessageRecorder recorder;
    try {
      const bool result = database.LoadProjectData(file, "");
      const auto posted = recorder.messages();
      return result || posted.empty() || !(posted.back() == MalformedMessage(file));
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), AnyOf(StartsWith("Failed parsing XML file " + file + ": "),
                                      Eq("Unexpected Exception\n"s)));
      EXPECT_THAT(error.what(), EndsWith("\n"));
      return false;
    }
  }

  /// Expects that a file of these bytes is refused and makes no project.
  void ExpectRefused(const std::string& bytes) {
    EXPECT_FALSE(LoadBytes(bytes));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }

  /// The project name that a file of these bytes gives; nothing if it is not accepted.
  std::optional<std::string> NameFrom(const std::string& bytes) {
    database.CleanProjectDatabase();
    if (!LoadBytes(bytes)) return std::nullopt;
    return database.GetProjectName();
  }
};

std::u16string Widen(std::string_view ascii) { return std::u16string(ascii.begin(), ascii.end()); }

enum class ByteOrder { kLittle, kBig };

/// The bytes of the text, after the mark that tells their order.
std::string Utf16(const std::u16string& text, ByteOrder order) {
  std::string bytes;
  for (const char16_t unit : u'\uFEFF' + text) {
    const char high = static_cast<char>(unit >> 8U);
    const char low = static_cast<char>(unit & 0xFFU);
    bytes += order == ByteOrder::kBig ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

std::string NamedXml(const std::string& name) { return "<project name=\"" + name + "\"/>"; }

std::string DeclaredXml(const std::string& encoding, const std::string& name) {
  return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" + NamedXml(name);
}

// ---- Encodings

TEST_F(LoadRawBytes, LoadProjectData_Utf8_GivesUtf8) {
  const std::string name = "größe 日本 🐟";
  EXPECT_EQ(NameFrom(NamedXml(name)), name);
  EXPECT_EQ(NameFrom(DeclaredXml("UTF-8", name)), name);
  EXPECT_EQ(NameFrom(DeclaredXml("utf-8", name)), name);
}

TEST_F(LoadRawBytes, LoadProjectData_Utf8WithByteOrderMark_GivesUtf8) {
  const std::string name = "größe 日本 🐟";
  EXPECT_EQ(NameFrom("\xEF\xBB\xBF" + NamedXml(name)), name);
  EXPECT_EQ(NameFrom("\xEF\xBB\xBF" + DeclaredXml("UTF-8", name)), name);
}

TEST_F(LoadRawBytes, LoadProjectData_Utf16_GivesUtf8) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    SCOPED_TRACE(order == ByteOrder::kBig);
    for (const std::string declaration : {"", "<?xml version=\"1.0\" encoding=\"UTF-16\"?>"}) {
      const std::u16string text =
          Widen(declaration + "<project name=\"") + u"größe 日本 \U0001F41F" + Widen("\"/>");
      EXPECT_EQ(NameFrom(Utf16(text, order)), "größe 日本 🐟");
    }
  }
}

TEST_F(LoadRawBytes, LoadProjectData_CompleteFileInUtf16_GivesTheSameProject) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject expected(database);
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    database.CleanProjectDatabase();
    ASSERT_TRUE(LoadBytes(Utf16(Widen(CompleteProjectXml()), order)));
    EXPECT_EQ(WholeProject(database), expected);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_DeclaredSingleByteEncodings_GiveUtf8) {
  EXPECT_EQ(NameFrom(DeclaredXml("ISO-8859-1",
                                 "gr\xF6\xDF"
                                 "e")),
            "größe");
  EXPECT_EQ(NameFrom(DeclaredXml("iso-8859-1", "\xE9")), "é");
  EXPECT_EQ(NameFrom(DeclaredXml("windows-1252", "\x80")), "€");
  EXPECT_EQ(NameFrom(DeclaredXml("US-ASCII", "gr&#246;&#xDF;e")), "größe");
}

TEST_F(LoadRawBytes, LoadProjectData_Utf8DeclaredAsLatin1_IsTakenAtItsWord) {
  EXPECT_EQ(NameFrom(DeclaredXml("ISO-8859-1", "é")), "Ã©");
}

TEST_F(LoadRawBytes, LoadProjectData_Latin1DeclaredAsUtf8_IsRefused) {
  ExpectRefused(DeclaredXml("UTF-8", "\xE9"));
  ExpectRefused(NamedXml("\xE9"));
}

TEST_F(LoadRawBytes, LoadProjectData_UnknownEncoding_IsRefused) {
  ExpectRefused(DeclaredXml("x-nonsense", "a"));
  ExpectRefused(DeclaredXml("", "a"));
  ExpectRefused(DeclaredXml("UTF 8", "a"));
}

TEST_F(LoadRawBytes, LoadProjectData_ContradictoryEncoding_GivesTheNameOrIsRefused) {
  const std::u16string latin = Widen(DeclaredXml("ISO-8859-1", "abc"));
  for (const std::string& bytes :
       {DeclaredXml("UTF-16", "abc"), DeclaredXml("UTF-32", "abc"),
        DeclaredXml("ebcdic-cp-us", "abc"), Utf16(latin, ByteOrder::kLittle),
        Utf16(latin, ByteOrder::kBig), "\xEF\xBB\xBF" + DeclaredXml("UTF-16", "abc"),
        "\xFF\xFE" + NamedXml("abc"), "\xFE\xFF" + NamedXml("abc")}) {
    SCOPED_TRACE(bytes);
    database.CleanProjectDatabase();
    const bool is_read = IsRead(bytes);
    EXPECT_EQ(is_read, database.IsProjectDatabaseExist());
    EXPECT_THAT(database.GetProjectName(), AnyOf("abc", ""));
  }
}

// ---- What is no text

TEST_F(LoadRawBytes, LoadProjectData_EmptyFile_IsRefused) { ExpectRefused(""); }

TEST_F(LoadRawBytes, LoadProjectData_NoXml_IsRefused) {
  for (const std::string& bytes :
       {" "s, "\n"s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "plain text"s, "<"s, "<?xml version=\"1.0\"?>"s,
        "\x7F"
        "ELF\x02\x01\x01"s,
        std::string(100, '\xFF'), std::string(5000, ' ')}) {
    SCOPED_TRACE(bytes);
    ExpectRefused(bytes);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_NulByteInTheDocument_IsRefused) {
  const std::string nul(1, '\0');
  for (const std::string& bytes :
       {nul, std::string(100000, '\0'), nul + NamedXml("a"), NamedXml("a" + nul + "b"),
        NamedXml(nul), "<project" + nul + "/>", "<pro" + nul + "ject/>",
        "<project>" + nul + "</project>", NamedXml("&#0;")}) {
    SCOPED_TRACE(bytes);
    ExpectRefused(bytes);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_InvalidUtf8_IsRefused) {
  for (const std::string bytes :
       {"\xFF", "\xC3", "\x80", "\xE2\x82", "\xF0\x9F\x90", "\xC0\xAF", "\xE0\x80\xAF",
        "\xED\xA0\x80", "\xED\xA0\x80\xED\xB0\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    ExpectRefused(NamedXml(bytes));
    ExpectRefused(NamedXml("a" + bytes + "b"));
    ExpectRefused("<project>" + bytes + "</project>");
    ExpectRefused("<project><" + bytes + "/></project>");
  }
}

TEST_F(LoadRawBytes, LoadProjectData_LoneSurrogateInUtf16_IsRefused) {
  for (const char16_t unit : {u'\xD800', u'\xDC00'}) {
    ExpectRefused(Utf16(Widen("<project name=\"") + unit + Widen("\"/>"), ByteOrder::kLittle));
  }
}

TEST_F(LoadRawBytes, LoadProjectData_OddNumberOfBytesInUtf16_IsRefused) {
  const std::string bytes = Utf16(Widen(NamedXml("abc")), ByteOrder::kLittle);
  ExpectRefused(bytes.substr(0, bytes.size() - 1));
}

TEST_F(LoadRawBytes, LoadProjectData_CharacterThatXmlExcludes_IsRefused) {
  for (const std::string name : {"\x01", "\x1F", "&#1;", "&#x1F;", "&#xFFFE;", "\xEF\xBF\xBF",
                                 "&#xD800;", "&#x110000;", "&#99999999999;"}) {
    SCOPED_TRACE(name);
    ExpectRefused(NamedXml(name));
  }
}

TEST_F(LoadRawBytes, LoadProjectData_AnythingAfterTheRoot_IsRefused) {
  for (const std::string rest :
       {"x", "<project/>", "&amp;", "<![CDATA[]]>", "<?xml version=\"1.0\"?>"}) {
    SCOPED_TRACE(rest);
    ExpectRefused(NamedXml("a") + rest);
  }
}

// ---- Damaged files

TEST_F(LoadRawBytes, LoadProjectData_TruncatedAnywhere_IsRefusedWithTheProjectUntouched) {
  const std::string complete = CompleteProjectXml();
  ASSERT_TRUE(LoadBytes(complete));
  const WholeProject before(database);
  const std::size_t end = complete.rfind('>');
  for (std::size_t length = 0; length <= end; ++length) {
    ASSERT_FALSE(IsRead(complete.substr(0, length))) << "length " << length;
    ASSERT_EQ(TakeSnapshot(database), before.snapshot) << "length " << length;
  }
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(LoadRawBytes, LoadProjectData_WithoutTheLastLineEnd_Loads) {
  const std::string complete = CompleteProjectXml();
  EXPECT_TRUE(LoadBytes(complete.substr(0, complete.rfind('>') + 1)));
}

class LoadDamagedByte : public LoadRawBytes, public testing::WithParamInterface<char> {};

TEST_P(LoadDamagedByte, LoadProjectData_OneByteReplaced_IsReadOrRefusedWithoutProject) {
  const std::string complete = CompleteProjectXml();
  for (std::size_t position = 0; position < complete.size(); ++position) {
    std::string damaged = complete;
    damaged[position] = GetParam();
    database.CleanProjectDatabase();
    const bool is_read = IsRead(damaged);
    ASSERT_EQ(is_read, database.IsProjectDatabaseExist()) << "position " << position;
  }
}

INSTANTIATE_TEST_SUITE_P(Bytes, LoadDamagedByte, testing::Values('\0', '<', '&', '"', ':', '\xFF'),
                         [](const auto& test_info) { return std::to_string(test_info.index); });

// ---- Files that the XML library gives up on

/// A file whose XML version is none makes the library throw instead of reporting an error.
const std::string kImpossibleVersion = "<?xml version=\"1.X\"?><project name=\"new\"/>";

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_ThrowsRuntimeErrorWithPathAndReason) {
  Write("p.xml", kImpossibleVersion);
  const MessageRecorder recorder;
  try {
    database.LoadProjectData(path(), "");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    const std::string start = "Failed parsing XML file " + path() + ": ";
    EXPECT_THAT(error.what(), StartsWith(start));
    EXPECT_THAT(error.what(), EndsWith("\n"));
    EXPECT_GT(std::string_view(error.what()).size(), start.size() + 1);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_PostsReadingOnly) {
  Write("p.xml", kImpossibleVersion);
  const MessageRecorder recorder;
  EXPECT_THROW(database.LoadProjectData(path(), ""), std::runtime_error);
  EXPECT_THAT(recorder.messages(), ElementsAre(ReadingMessage(path())));
}

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_MakesNoProject) {
  EXPECT_THROW(LoadBytes(kImpossibleVersion), std::runtime_error);
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_LeavesTheProjectUntouched) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject before(database);
  EXPECT_THROW(LoadBytes(kImpossibleVersion), std::runtime_error);
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(LoadRawBytes, LoadProjectData_AfterTheLibraryThrew_LoadsTheNext) {
  EXPECT_THROW(LoadBytes(kImpossibleVersion), std::runtime_error);
  EXPECT_EQ(NameFrom(NamedXml("next")), "next");
}

// ---- Large files

TEST_F(LoadRawBytes, LoadProjectData_LongText_IsReadWhole) {
  std::string name;
  for (int i = 0; i < 200000; ++i) name += i % 3 == 0 ? "日" : i % 3 == 1 ? "é" : "🐟";
  for (const std::string shift : {"", "x", "xx", "xxx"}) {
    const auto loaded = NameFrom(NamedXml(shift + name));
    ASSERT_TRUE(loaded.has_value());
    EXPECT_TRUE(*loaded == shift + name);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_ManyEntries_AreReadInOrder) {
  constexpr int kCount = 20000;
  std::string entries;
  for (int i = 0; i < kCount; ++i) entries += "<design_file name=\"/f" + std::to_string(i) + "\"/>";
  ASSERT_TRUE(LoadBytes(ProjectXml("<design_info>" + entries + "</design_info>")));
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  ASSERT_EQ(files.size(), std::size_t{kCount});
  for (std::size_t i = 0; i < files.size(); ++i) ASSERT_EQ(files[i].name, "/f" + std::to_string(i));
}

}  // namespace
