#include "contents/record_text.h"

#include <set>

#include "testing/test.h"

namespace {

using namespace projectdb;

TEST(RecordText, QuotedText_EscapesWhatHasAMeaningOrIsNoLetter) {
  EXPECT_EQ(QuotedText("a \"b\" \\ c"), R"("a \"b\" \\ c")");
  EXPECT_EQ(QuotedText(std::string("\n\r\t\x01\x1F\x7F\0", 7)), R"("\n\r\t\x01\x1f\x7f\x00")");
  EXPECT_EQ(QuotedText("gr\xC3\xBC\xFF"), "\"gr\xC3\xBC\xFF\"");
}

TEST(RecordText, TextOf_DesignFile_NamesTheFieldsBehindTheFirstThatAreNotEmpty) {
  EXPECT_EQ(TextOf(DesignFile("src/top.v", "v2001", "work")),
            "src/top.v version=v2001 library=work");
  EXPECT_EQ(TextOf(DesignFile("src\\top.v", "", "default")), "src\\top.v library=default");
}

TEST(RecordText, TextOf_FieldThatIsNoWordOrAnEmptyFirstOne_IsQuoted) {
  EXPECT_EQ(TextOf(DesignFile("", "", "")), "\"\"");
  EXPECT_EQ(TextOf(DesignFile("my top.v", "v 2", "a\"b")),
            R"("my top.v" version="v 2" library="a\"b")");
}

TEST(RecordText, TextOf_IpInstance_ShowsItsSourceFilesInOrder) {
  EXPECT_EQ(TextOf(IP{"uart", "ip/uart.cfg", {{"uart.v"}, {"fifo.v"}, {""}}}),
            R"(uart path=ip/uart.cfg file=uart.v file=fifo.v file="")");
}

TEST(RecordText, TextOf_Parameter_ShowsValueAndTypeIfItHasOne) {
  EXPECT_EQ(TextOf(Parameter("effort", "high", e_option)), "effort value=high type=e_option");
  EXPECT_EQ(TextOf(Parameter("WIDTH", "8", kNoParameterType)), "WIDTH value=8");
  EXPECT_EQ(TextOf(Parameter("WIDTH", "8", static_cast<ParameterType>(7))), "WIDTH value=8 type=7");
}

TEST(RecordText, TextUnderKey_Parameter_BeginsWithTheValueAndShowsAnotherName) {
  EXPECT_EQ(TextUnderKey("quiet", Parameter("quiet", "", e_noarg)), "\"\" type=e_noarg");
  EXPECT_EQ(TextUnderKey("a", Parameter("b", "1", e_bool)), "1 type=e_bool name=b");
}

/// Texts that may be taken for what stands between fields.
const std::vector<std::string> kTrickyTexts = {
    "",    " ",     "\"",  "\\",        "\n",       "n",     "=",      "a",
    "a a", "\"a\"", "\\n", "version=a", "library=", "path=", "file=a", "a file=a"};

TEST(RecordText, TextOf_DifferentDesignFiles_AreDifferent) {
  std::set<std::string> texts;
  for (const std::string& name : kTrickyTexts) {
    for (const std::string& version : kTrickyTexts) {
      for (const std::string& library : kTrickyTexts) {
        texts.insert(TextOf(DesignFile(name, version, library)));
      }
    }
  }
  EXPECT_EQ(texts.size(), kTrickyTexts.size() * kTrickyTexts.size() * kTrickyTexts.size());
}

TEST(RecordText, TextOf_DifferentIpInstances_AreDifferent) {
  std::vector<std::vector<IPSrcFile>> source_files = {{}};
  for (const std::string& first : kTrickyTexts) {
    source_files.push_back({{first}});
    for (const std::string& second : kTrickyTexts) source_files.push_back({{first}, {second}});
  }
  std::set<std::string> texts;
  for (const std::string& name : kTrickyTexts) {
    for (const std::string& path : kTrickyTexts) {
      for (const auto& files : source_files) texts.insert(TextOf(IP{name, path, files}));
    }
  }
  EXPECT_EQ(texts.size(), kTrickyTexts.size() * kTrickyTexts.size() * source_files.size());
}

TEST(RecordText, TextUnderKey_DifferentParameters_AreDifferent) {
  std::set<std::string> texts;
  for (const std::string& name : kTrickyTexts) {
    for (const std::string& value : kTrickyTexts) {
      for (int type = -1; type < 8; ++type) {
        texts.insert(TextUnderKey("a", Parameter(name, value, static_cast<ParameterType>(type))));
      }
    }
  }
  EXPECT_EQ(texts.size(), kTrickyTexts.size() * kTrickyTexts.size() * 9);
}

}  // namespace
