#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/slowness.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "xml/text.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace std::string_literals;
using testing::Eq;

class LoadRawBytes : public testing::Test, public Loading {
 protected:
  /// Loads a project file of these bytes. A std::runtime_error must have one of the two texts;
  /// anything else that is thrown fails the test.
  /// @return whether the file was taken for a project file at all
  bool IsRead(const std::string& bytes, const std::string& schema = "") {
    return IsReadInto(database, Write("p.xml", bytes), schema);
  }

  static bool IsReadInto(KelProjectDatabase& into, const std::string& file,
                         const std::string& schema) {
    const MessageRecorder recorder;
    try {
      const bool result = into.LoadProjectData(file, schema);
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
    SCOPED_TRACE(testing::PrintToString(bytes));
    EXPECT_FALSE(LoadBytes(bytes));
    EXPECT_EQ(messages, RefusedMessages(path()));
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

TEST_F(LoadRawBytes, LoadProjectData_Utf8_GivesUtf8) {
  const std::string name = "größe 日本 🐟";
  for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
    EXPECT_EQ(NameFrom(mark + NamedXml(name)), name);
    EXPECT_EQ(NameFrom(mark + DeclaredXml("UTF-8", name)), name);
    EXPECT_EQ(NameFrom(mark + DeclaredXml("utf-8", name)), name);
  }
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

TEST_F(LoadRawBytes, LoadProjectData_DeclaredSingleByteEncodings_GiveUtf8) {
  EXPECT_EQ(NameFrom(DeclaredXml("ISO-8859-1", "gr\xF6\xDF")), "größ");
  EXPECT_EQ(NameFrom(DeclaredXml("iso-8859-1", "\xE9")), "é");
  EXPECT_EQ(NameFrom(DeclaredXml("windows-1252", "\x80")), "€");
  EXPECT_EQ(NameFrom(DeclaredXml("US-ASCII", "gr&#246;&#xDF;e")), "größe");
  // UTF-8 is taken at its word too.
  EXPECT_EQ(NameFrom(DeclaredXml("ISO-8859-1", "é")), "Ã©");
}

TEST_F(LoadRawBytes, LoadProjectData_UnknownEncodingOrOneThatIsNotThatOfTheText_IsRefused) {
  for (const std::string& bytes :
       {DeclaredXml("UTF-8", "\xE9"), NamedXml("\xE9"), DeclaredXml("x-nonsense", "a"),
        DeclaredXml("", "a"), DeclaredXml("UTF 8", "a")}) {
    ExpectRefused(bytes);
  }
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

TEST_F(LoadRawBytes, LoadProjectData_NoXml_IsRefused) {
  for (const std::string& bytes : {""s, " "s, "\n"s, "\xEF\xBB\xBF"s, "\xFF\xFE"s, "plain text"s,
                                   "<"s, "<?xml version=\"1.0\"?>"s,
                                   "\x7F"
                                   "ELF\x02\x01\x01"s,
                                   std::string(100, '\xFF'), std::string(5000, ' ')}) {
    ExpectRefused(bytes);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_NulByteInTheDocument_IsRefused) {
  const std::string nul(1, '\0');
  for (const std::string& bytes :
       {nul, std::string(100000, '\0'), nul + NamedXml("a"), NamedXml("a" + nul + "b"),
        NamedXml(nul), "<project" + nul + "/>", "<pro" + nul + "ject/>",
        "<project>" + nul + "</project>", NamedXml("&#0;")}) {
    ExpectRefused(bytes);
  }
}

TEST_F(LoadRawBytes, LoadProjectData_InvalidUtf8_IsRefused) {
  for (const std::string bytes :
       {"\xFF", "\xC3", "\x80", "\xE2\x82", "\xF0\x9F\x90", "\xC0\xAF", "\xE0\x80\xAF",
        "\xED\xA0\x80", "\xED\xA0\x80\xED\xB0\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
    ExpectRefused(NamedXml(bytes));
    ExpectRefused(NamedXml("a" + bytes + "b"));
    ExpectRefused("<project>" + bytes + "</project>");
    ExpectRefused("<project><" + bytes + "/></project>");
  }
}

TEST_F(LoadRawBytes, LoadProjectData_LoneSurrogateOrOddNumberOfBytesInUtf16_IsRefused) {
  for (const char16_t unit : {u'\xD800', u'\xDC00'}) {
    ExpectRefused(Utf16(Widen("<project name=\"") + unit + Widen("\"/>"), ByteOrder::kLittle));
  }
  const std::string bytes = Utf16(Widen(NamedXml("abc")), ByteOrder::kLittle);
  ExpectRefused(bytes.substr(0, bytes.size() - 1));
}

TEST_F(LoadRawBytes, LoadProjectData_CharacterThatXmlExcludes_IsRefused) {
  for (const std::string name : {"\x01", "\x1F", "&#1;", "&#x1F;", "&#xFFFE;", "\xEF\xBF\xBF",
                                 "&#xD800;", "&#x110000;", "&#99999999999;"}) {
    ExpectRefused(NamedXml(name));
  }
}

TEST_F(LoadRawBytes, LoadProjectData_AnythingAfterTheRoot_IsRefused) {
  for (const std::string rest :
       {"x", "<project/>", "&amp;", "<![CDATA[]]>", "<?xml version=\"1.0\"?>"}) {
    ExpectRefused(NamedXml("a") + rest);
  }
}

std::string SampleXml() { return ReadFile(SampleProject()); }

/// The sample project's text, which declares the encoding instead of its own.
std::u16string SampleText(const std::string& encoding) {
  const XmlPlatform platform;
  const std::string former = "encoding=\"UTF-8\"";
  std::string text = SampleXml();
  return xml::Transcoder().ToXml(
      text.replace(text.find(former), former.size(), "encoding=\"" + encoding + "\""));
}

std::string Latin1(const std::u16string& text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += static_cast<char>(unit);
  return bytes;
}

std::string WithoutMark(const std::string& utf16) { return utf16.substr(2); }

/// A project of every kind of field that no load of anything damaged may touch.
class SampleBytes : public LoadRawBytes {
 protected:
  SampleBytes() {
    const MessageRecorder recorder;
    held_.LoadProjectData(Write("held.xml", CompleteProjectXml()), "");
  }

  /// Expects that a file of these bytes is either read or refused, and that a refusal leaves no
  /// trace. @return whether it is read
  bool ReadOrRefusedWithoutTrace(const std::string& bytes, const std::string& schema = "") {
    database.CleanProjectDatabase();
    const bool is_read = IsRead(bytes, schema);
    EXPECT_EQ(is_read, database.IsProjectDatabaseExist());
    if (!is_read) {
      EXPECT_FALSE(IsReadInto(held_, path(), schema));
      EXPECT_THAT(AllDifferences(untouched_, held_), IsEmpty());
    }
    return is_read;
  }

  void ExpectRefusedWithoutTrace(const std::string& bytes) {
    EXPECT_FALSE(ReadOrRefusedWithoutTrace(bytes));
  }

  /// Expects that a file of these bytes gives the sample project.
  void ExpectSample(const std::string& bytes) {
    KelProjectDatabase sample;
    ASSERT_TRUE(IsReadInto(sample, Write("sample.xml", SampleXml()), ""));
    database.CleanProjectDatabase();
    ASSERT_TRUE(LoadBytes(bytes));
    EXPECT_THAT(AllDifferences(GetProjectContents(sample), database), IsEmpty());
  }

 private:
  const XmlPlatform platform_;
  KelProjectDatabase held_;
  const ProjectContents untouched_ = CompleteProject(directory.path());
};

TEST_F(SampleBytes, LoadProjectData_SampleInUtf16_GivesTheSameProject) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    const std::string bytes = Utf16(SampleText("UTF-16"), order);
    ExpectSample(bytes);
    ExpectSample(WithoutMark(bytes));
  }
}

TEST_F(SampleBytes, LoadProjectData_SampleInLatin1_GivesTheSameProject) {
  ExpectSample(Latin1(SampleText("ISO-8859-1")));
}

TEST_F(SampleBytes, LoadProjectData_SampleUnderAnotherDeclaration_IsRefusedWithoutTrace) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    ExpectRefusedWithoutTrace(Utf16(SampleText("UTF-8"), order));
    ExpectRefusedWithoutTrace(WithoutMark(Utf16(SampleText("ISO-8859-1"), order)));
  }
  ExpectRefusedWithoutTrace(Latin1(SampleText("UTF-8")));
  ExpectRefusedWithoutTrace(Latin1(SampleText("UTF-16")));
  ExpectRefusedWithoutTrace(Latin1(SampleText("US-ASCII")));
  ExpectRefusedWithoutTrace(Latin1(SampleText("x-nonsense")));
}

// The XML library takes the first one for the end of the file, which may come there.
TEST_F(SampleBytes, LoadProjectData_SampleWithNulBytesAtItsEnd_GivesTheSameProject) {
  for (const std::size_t count : {1U, 2U, 4095U, 100000U}) {
    ExpectSample(SampleXml() + std::string(count, '\0'));
  }
}

constexpr std::size_t kParts = 8;

/// Damage in one of the parts of the sample, which together are all of it. The sample has
/// everything that the format has, and nothing twice that could be there once.
class DamagedSample : public SampleBytes, public testing::WithParamInterface<std::size_t> {
 protected:
  /// Does the work with each position of the part until one fails.
  template <typename Work>
  void WithEachPosition(Work work) {
    const std::size_t step = kParts * StepOfManyFiles();
    for (std::size_t at = GetParam(); at < sample_.size() && !HasFailure(); at += step) {
      SCOPED_TRACE("position " + std::to_string(at));
      work(at);
    }
  }

  const std::string sample_ = CompleteProjectXml();
};

INSTANTIATE_TEST_SUITE_P(Parts, DamagedSample, testing::Range<std::size_t>(0, kParts));

TEST_P(DamagedSample, LoadProjectData_CutOffBeforeTheEnd_IsRefusedWithoutTrace) {
  EXPECT_TRUE(LoadBytes(sample_, ShippedSchema()));
  const std::size_t end = sample_.rfind('>');
  for (const std::string& schema : {std::string(), ShippedSchema()}) {
    WithEachPosition([&](std::size_t at) {
      EXPECT_EQ(ReadOrRefusedWithoutTrace(sample_.substr(0, at), schema), at > end);
    });
  }
}

TEST_P(DamagedSample, LoadProjectData_ByteReplaced_IsReadOrRefusedWithoutTrace) {
  for (const char replacement : {'\0', ' ', '<', '&', '"', '\x80', '\xFF'}) {
    WithEachPosition([&](std::size_t at) {
      std::string damaged = sample_;
      damaged[at] = replacement;
      ReadOrRefusedWithoutTrace(damaged);
    });
  }
}

TEST_P(DamagedSample, LoadProjectData_BitFlipped_IsReadOrRefusedWithoutTrace) {
  for (const std::string& schema : {std::string(), ShippedSchema()}) {
    WithEachPosition([&](std::size_t at) {
      std::string damaged = sample_;
      damaged[at] = static_cast<char>(damaged[at] ^ 1);
      ReadOrRefusedWithoutTrace(damaged, schema);
    });
  }
}

/// A file whose XML version is none makes the library throw instead of reporting an error.
const std::string kImpossibleVersion = "<?xml version=\"1.X\"?><project name=\"new\"/>";

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_ThrowsRuntimeErrorWithPathAndReason) {
  Write("p.xml", kImpossibleVersion);
  const MessageRecorder recorder;
  const std::string text = ErrorOf([&] { database.LoadProjectData(path(), ""); });
  const std::string prefix = "Failed parsing XML file " + path() + ": ";
  EXPECT_THAT(text,
              AllOf(StartsWith(prefix), EndsWith("\n"), SizeIs(testing::Gt(prefix.size() + 1))));
  EXPECT_THAT(recorder.messages(), ElementsAre(ReadingMessage(path())));
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(LoadRawBytes, LoadProjectData_LibraryThrows_LeavesTheProjectUntouchedAndLoadsTheNext) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_THROW(LoadBytes(kImpossibleVersion), std::runtime_error);
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
  EXPECT_EQ(NameFrom(NamedXml("next")), "next");
}

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
  const std::string root = PathText(directory.path().root_name());
  for (std::size_t i = 0; i < files.size(); ++i) {
    ASSERT_EQ(files[i].name, root + "/f" + std::to_string(i));
  }
}

}  // namespace
