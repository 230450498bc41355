#include <projectdb/check.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <future>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/checking.h"
#include "testing/denied.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// As a user is shown it.
std::string Show(const FileProblem& problem) {
  return std::to_string(problem.line) + ":" + std::to_string(problem.column) +
         (IsError(problem) ? ": error: " : ": warning: ") + problem.message;
}

const std::string kRoot = "<project xmlns=\"http://schema.kel.example/wdp_proj\">\n";

class Check : public testing::Test, public Loading {
 protected:
  std::vector<std::string> CheckFile(const std::string& file, const std::string& schema = "") {
    std::vector<std::string> shown;
    for (const FileProblem& problem : CheckProjectFile(file, schema)) {
      shown.push_back(Show(problem));
    }
    return shown;
  }

  std::vector<std::string> CheckBytes(const std::string& bytes, const std::string& schema = "") {
    return CheckFile(Write("p.xml", bytes), schema);
  }

  /// The sections begin in line 2, column 1.
  std::vector<std::string> CheckSections(const std::string& sections,
                                         const std::string& schema = "") {
    return CheckBytes(kRoot + sections + "</project>\n", schema);
  }
};

// ---- Files without problems

TEST_F(Check, CheckProjectFile_SampleProject_HasNoProblem) {
  EXPECT_THAT(CheckFile(SampleProject(), ShippedSchema()), IsEmpty());
}

TEST_F(Check, CheckProjectFile_CompleteProject_HasNoProblem) {
  EXPECT_THAT(CheckBytes(CompleteProjectXml()), IsEmpty());
}

TEST_F(Check, CheckProjectFile_Security_HasNoProblem) {
  EXPECT_THAT(CheckSections("<security><any/></security>"), IsEmpty());
}

TEST_F(Check, CheckProjectFile_HintToAMissingSchema_IsNoProblem) {
  EXPECT_THAT(CheckBytes(ProjectXml("",
                                    "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj "
                                    "gone.xsd\"")),
              IsEmpty());
}

// ---- The files themselves

TEST_F(Check, CheckProjectFile_MissingFile_IsAnErrorInNoLine) {
  EXPECT_THAT(CheckFile(directory / "gone.xml"),
              ElementsAre("0:0: error: the project file does not exist"));
}

TEST_F(Check, CheckProjectFile_EmptyName_IsAnErrorInNoLine) {
  EXPECT_THAT(CheckFile(""), ElementsAre("0:0: error: the project file does not exist"));
}

TEST_F(Check, CheckProjectFile_OtherExtension_IsAnErrorInNoLine) {
  EXPECT_THAT(CheckFile(Write("p.XML", ProjectXml(""))),
              ElementsAre("0:0: error: the name of a project file must end in \".xml\""));
}

TEST_F(Check, CheckProjectFile_Directory_IsAnErrorInNoLine) {
  std::filesystem::create_directory(directory / "d.xml");
  EXPECT_THAT(CheckFile(directory / "d.xml"),
              ElementsAre(StartsWith("0:0: error: the file cannot be read: ")));
}

TEST_F(Check, CheckProjectFile_UnreadableFile_IsAnErrorInNoLine) {
  const std::string path = Write("p.xml", ProjectXml(""));
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(path);
  if (!denied.effective() || !std::filesystem::exists(path)) GTEST_SKIP() << "cannot be denied";
  EXPECT_THAT(CheckFile(path), ElementsAre(StartsWith("0:0: error: the file cannot be read: ")));
}

TEST_F(Check, CheckProjectFile_RelativeNames_AreBelowTheWorkingDirectory) {
  Write("p.xml", kRoot + "<bogus/></project>");
  Write("s.xsd", DeviceOnlySchema());
  const WorkingDirectory working_directory(directory.path());
  EXPECT_THAT(CheckFile("p.xml", "s.xsd"),
              ElementsAre(StartsWith("2:1: error: <bogus> is not a section"),
                          HasSubstr("2:9: error: no declaration found for element 'bogus'"),
                          StartsWith("2:19: error: ")));
}

// ---- Parse errors

TEST_F(Check, CheckProjectFile_WrongEndTag_IsAnErrorAtTheTag) {
  EXPECT_THAT(CheckSections("<device_info>\n  </device>\n</device_info>"),
              ElementsAre("3:5: error: expected end of tag 'device_info'"));
}

TEST_F(Check, CheckProjectFile_CutOffFile_IsAnErrorAtItsEnd) {
  EXPECT_THAT(CheckBytes(kRoot + "<device_info>\n<fam"),
              ElementsAre("3:5: error: unexpected end of input"));
}

TEST_F(Check, CheckProjectFile_EmptyFile_IsAnErrorAtItsBeginning) {
  EXPECT_THAT(CheckBytes(""), ElementsAre(StartsWith("1:1: error: ")));
}

TEST_F(Check, CheckProjectFile_Doctype_IsAnErrorAtTheDeclaration) {
  EXPECT_THAT(CheckBytes("\n\n<!DOCTYPE project>\n<project/>"),
              ElementsAre("3:10: error: invalid document structure: expected the root element, "
                          "with no document type declaration before it"));
}

TEST_F(Check, CheckProjectFile_WhatThePartsOfALoadThrowOn_IsAnError) {
  const std::string bytes = "<?xml version=\"1.X\"?><project/>";
  EXPECT_THROW(LoadBytes(bytes), std::runtime_error);
  EXPECT_THAT(CheckBytes(bytes),
              ElementsAre(StartsWith("1:1: error: the file cannot be parsed: ")));
}

TEST_F(Check, CheckProjectFile_WhatLoadingPrints_IsNotPrinted) {
  testing::internal::CaptureStdout();
  CheckBytes("<?xml version=\"1.X\"?><project/>");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Check, CheckProjectFile_TextThatIsNotUtf8_IsAnErrorAtTheFirstWrongByte) {
  EXPECT_THAT(CheckSections("<device_info>\r\n <family name=\"gr\xF6\xDF"
                            "e\"/></device_info>"),
              ElementsAre(StartsWith("3:18: error: the text is not UTF-8: ")));
}

TEST_F(Check, CheckProjectFile_ErrorFarIntoALargeFile_HasItsLine) {
  std::string sections = "<design_info>\n";
  for (int i = 0; i < 5000; ++i) sections += "<design_file name=\"a file with some name.v\"/>\n";
  EXPECT_THAT(CheckSections(sections + "<design_file name=\"\xE9\"/></design_info>"),
              ElementsAre(StartsWith("5003:20: error: the text is not UTF-8: ")));
}

TEST_F(Check, CheckProjectFile_ErrorAfterElementsOutsideTheFormat_ListsThemToo) {
  EXPECT_THAT(CheckSections("<bogus/>\n<isf_info>\n</project>"),
              ElementsAre(StartsWith("2:1: error: <bogus> is not a section"),
                          "4:3: error: expected end of tag 'isf_info'"));
}

TEST_F(Check, CheckProjectFile_MessageThatQuotesALineBreak_IsOneLine) {
  const std::string schema = ShippedSchema();
  EXPECT_THAT(CheckSections("<synthesis>\n<param value_type=\"a&#10;b\"/></synthesis>", schema),
              testing::Contains(AllOf(StartsWith("3:30: error: "), HasSubstr("a b"))));
}

TEST_F(Check, CheckProjectFile_AnyProblem_HasNoControlCharacterInItsMessage) {
  const std::string bytes = kRoot +
                            "<synthesis><param name=\"&#10;&#9;&#127;\" value_type=\"&#10;x\"/>"
                            "</synthesis></project>";
  for (const FileProblem& problem : CheckProjectFile(Write("p.xml", bytes), ShippedSchema())) {
    EXPECT_TRUE(std::none_of(problem.message.begin(), problem.message.end(), [](char c) {
      return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    })) << testing::PrintToString(problem.message);
  }
}

// ---- Schemas

TEST_F(Check, CheckProjectFile_MissingSchema_IsAWarningInNoLine) {
  EXPECT_THAT(
      CheckBytes(ProjectXml(""), "no/such.xsd"),
      ElementsAre("0:0: warning: the XML schema \"no/such.xsd\" does not exist; the file is "
                  "read without it"));
}

TEST_F(Check, CheckProjectFile_MissingSchema_StillListsTheRest) {
  EXPECT_THAT(CheckSections("<package_info/>", "gone.xsd"),
              ElementsAre(StartsWith("0:0: warning: the XML schema"),
                          StartsWith("2:1: warning: <package_info> is deprecated")));
}

TEST_F(Check, CheckProjectFile_DirectoryAsSchema_IsAnErrorInNoLine) {
  const std::string schema = directory.path().string();
  EXPECT_THAT(CheckBytes(ProjectXml(""), schema),
              ElementsAre("0:0: error: the XML schema \"" + schema + "\" cannot be read"));
}

TEST_F(Check, CheckProjectFile_RefusedSchema_IsAnErrorWithItsPathAndLine) {
  const std::string schema = Write("s.xsd", "\n<!DOCTYPE xs:schema>" + DeviceOnlySchema());
  EXPECT_THAT(
      CheckBytes(ProjectXml(""), schema),
      ElementsAre(StartsWith("0:0: error: XML schema \"" + schema + "\", line 2: invalid doc")));
}

TEST_F(Check, CheckProjectFile_SchemaWithErrors_HasThemAsErrorsInNoLine) {
  const std::string schema =
      Write("s.xsd", DeviceOnlySchema("\n<xs:element name=\"e\" type=\"xs:nonsense\"/>"));
  EXPECT_THAT(CheckBytes(ProjectXml(""), schema),
              ElementsAre(AllOf(StartsWith("0:0: error: XML schema \"" + schema + "\", line 2: "),
                                HasSubstr("nonsense"))));
}

TEST_F(Check, CheckProjectFile_RefusedHintedSchema_IsAnErrorAtTheElementThatNamesIt) {
  const std::string schema = Write("s.xsd", "<!DOCTYPE xs:schema>" + DeviceOnlySchema());
  EXPECT_THAT(CheckBytes("<!-- -->\n <project xmlns=\"http://schema.kel.example/wdp_proj\"\n"
                         " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
                         " xsi:schemaLocation=\"http://schema.kel.example/wdp_proj s.xsd\"/>"),
              ElementsAre(StartsWith("2:2: error: XML schema \"" + schema + "\", line 1: ")));
}

TEST_F(Check, CheckProjectFile_FileThatBreaksTheSchema_HasAnErrorForEachBreach) {
  EXPECT_THAT(CheckSections("<device_info kind=\"a\">\n</device_info>\n<ip_info other=\"b\"/>",
                            ShippedSchema()),
              ElementsAre("2:23: error: attribute 'kind' is not declared for element 'device_info'",
                          "4:21: error: attribute 'other' is not declared for element 'ip_info'"));
}

TEST_F(Check, CheckProjectFile_FileThatBreaksTheSchema_IsStillHeldAgainstTheLoadersRules) {
  EXPECT_THAT(
      CheckSections("<debugger kind=\"a\">\n<param name=\"n\"/>\n</debugger>", ShippedSchema()),
      ElementsAre(StartsWith("2:20: error: attribute 'kind' is not declared"),
                  StartsWith("3:1: warning: parameter \"n\" is ignored")));
}

// ---- The rules of the loader: errors

TEST_F(Check, CheckProjectFile_UnknownSection_IsAnErrorWithTheSections) {
  EXPECT_THAT(CheckSections("<device_info/>\n  <timing/>"),
              ElementsAre("3:3: error: <timing> is not a section of a project file; expected "
                          "<device_info>, <design_info>, <constraint_info>, <isf_info>, "
                          "<sim_info>, <misc_info>, <ip_info>, <synthesis>, <place_and_route>, "
                          "<bitstream_generation> or <debugger>"));
}

struct UnknownChild {
  std::string section;
  std::string expected;
};

void PrintTo(const UnknownChild& child, std::ostream* out) { *out << child.section; }

class CheckUnknownChild : public Check, public testing::WithParamInterface<UnknownChild> {};

TEST_P(CheckUnknownChild, CheckProjectFile_UnknownChild_IsAnErrorWithTheExpectedOnes) {
  const auto& [section, expected] = GetParam();
  EXPECT_THAT(
      CheckSections("<" + section + ">\n <x/></" + section + ">"),
      ElementsAre("3:2: error: <x> cannot stand in <" + section + ">; expected " + expected));
}

INSTANTIATE_TEST_SUITE_P(
    Sections, CheckUnknownChild,
    testing::Values(UnknownChild{"device_info", "<family>, <device> or <timing_model>"},
                    UnknownChild{"design_info", "<top_module>, <design_file> or <top_vhdl_arch>"},
                    UnknownChild{"constraint_info", "<sdc_file> or <inter_file>"},
                    UnknownChild{"isf_info", "<isf_file>"},
                    UnknownChild{"synthesis", "<param>, <dynparam> or <defmacro>"},
                    UnknownChild{"place_and_route", "<param>"},
                    UnknownChild{"bitstream_generation", "<param>"},
                    UnknownChild{"debugger", "<param>"}),
    [](const auto& test_info) { return test_info.param.section; });

/// The names in angle brackets.
std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> names;
  for (std::size_t begin = text.find('<'); begin != std::string::npos;
       begin = text.find('<', begin + 1)) {
    names.push_back(text.substr(begin + 1, text.find('>', begin) - begin - 1));
  }
  return names;
}

TEST_P(CheckUnknownChild, CheckProjectFile_ExpectedChild_IsNoError) {
  const auto& [section, expected] = GetParam();
  for (const std::string& child : WordsOf(expected)) {
    EXPECT_THAT(
        CheckSections("<" + section + "><" + child +
                      " name=\"a\" value=\"b\" value_type=\"e_string\"/></" + section + ">"),
        IsEmpty());
  }
}

TEST_F(Check, CheckProjectFile_PrefixedElement_IsNamedWithoutPrefix) {
  EXPECT_THAT(CheckBytes("<k:project xmlns:k=\"http://schema.kel.example/wdp_proj\">\n"
                         "<k:debugger><k:x/></k:debugger></k:project>"),
              ElementsAre("2:13: error: <x> cannot stand in <debugger>; expected <param>"));
}

// ---- The rules of the loader: warnings

TEST_F(Check, CheckProjectFile_OtherRoot_IsAWarning) {
  EXPECT_THAT(CheckBytes("\n<design/>"),
              ElementsAre("2:1: warning: the root is <design>; expected <project>"));
}

TEST_F(Check, CheckProjectFile_DeprecatedElements_AreWarnings) {
  EXPECT_THAT(
      CheckSections("<package_info/>\n<constraint_info>\n<io_place_file/><core_place_file/>"
                    "</constraint_info>"),
      ElementsAre("2:1: warning: <package_info> is deprecated and ignored; it can be removed",
                  "4:1: warning: <io_place_file> is deprecated and ignored; it can be removed",
                  "4:17: warning: <core_place_file> is deprecated and ignored; it can be removed"));
}

TEST_F(Check, CheckProjectFile_IgnoredElements_AreWarnings) {
  EXPECT_THAT(CheckSections("<ip_info>\n<x/><ip><y/></ip></ip_info>\n<sim_info><misc_file/>"
                            "</sim_info>\n<misc_info><z><misc_file name=\"a\"/></z></misc_info>"),
              ElementsAre("3:1: warning: <x> in <ip_info> is ignored; expected <ip>",
                          "3:9: warning: <y> in <ip> is ignored; expected <ip_src_file>",
                          "4:11: warning: <misc_file> in <sim_info> is ignored; expected "
                          "<sim_file>",
                          "5:12: warning: <z> in <misc_info> is ignored; expected <misc_file>"));
}

TEST_F(Check, CheckProjectFile_FileOutsideTheNamespace_IsAWarning) {
  EXPECT_THAT(CheckSections("<sim_info><sim_file xmlns=\"urn:other\" name=\"a\"/></sim_info>"),
              ElementsAre("2:11: warning: <sim_file> is ignored because it is not in the namespace "
                          "\"http://schema.kel.example/wdp_proj\""));
}

TEST_F(Check, CheckProjectFile_FilesWithoutName_AreWarnings) {
  EXPECT_THAT(
      CheckSections("<isf_info><isf_file/></isf_info>\n"
                    "<constraint_info><sdc_file name=\"\"/></constraint_info>"),
      ElementsAre("2:11: warning: <isf_file> is ignored because it names no file; expected the "
                  "attribute \"name\"",
                  "3:18: warning: <sdc_file> is ignored because it names no file; expected the "
                  "attribute \"name\""));
}

TEST_F(Check, CheckProjectFile_SwitchWithValue_IsAWarningWithTheReason) {
  EXPECT_THAT(CheckSections("<synthesis><param name=\"flat\" value=\"1\" value_type=\"e_noarg\"/>"
                            "</synthesis>"),
              ElementsAre("2:12: warning: parameter \"flat\" is ignored because a parameter with "
                          "type e_noarg must have no value"));
}

TEST_F(Check, CheckProjectFile_ParameterWithoutValue_IsAWarningWithTheReason) {
  EXPECT_THAT(CheckSections("<debugger>\n<param name=\"a\" value_type=\"e_bool\"/>\n"
                            "<param name=\"b\"/></debugger>"),
              ElementsAre("3:1: warning: parameter \"a\" is ignored because a parameter with type "
                          "e_bool must have a value",
                          "4:1: warning: parameter \"b\" is ignored because a parameter with no "
                          "type must have a value"));
}

TEST_F(Check, CheckProjectFile_ParameterThatChangesItsType_IsAWarningWithTheReason) {
  EXPECT_THAT(
      CheckSections("<debugger>\n<param name=\"a\" value=\"1\" value_type=\"e_string\"/>\n"
                    "<param name=\"a\" value=\"1\"/></debugger>\n"
                    "<debugger><param name=\"a\" value=\"1\" value_type=\"e_bool\"/></debugger>"),
      ElementsAre("4:1: warning: parameter \"a\" is ignored because it has no type, but one of "
                  "that name above has type e_string",
                  "5:11: warning: parameter \"a\" is ignored because it has type e_bool, but one "
                  "of that name above has type e_string"));
}

TEST_F(Check, CheckProjectFile_UnknownParameterType_IsAWarningWithTheTypes) {
  EXPECT_THAT(CheckSections("<debugger><param name=\"a\" value=\"1\" value_type=\"string\"/>"
                            "</debugger>"),
              ElementsAre("2:11: warning: parameter \"a\": \"string\" is not a type; expected "
                          "e_string, e_bool, e_option or e_noarg"));
}

TEST_F(Check, CheckProjectFile_ParameterNameOutsideAscii_IsShownAsItIs) {
  EXPECT_THAT(CheckSections("<debugger><param name=\"größe 🐟\"/></debugger>"),
              ElementsAre(HasSubstr("parameter \"größe 🐟\" is ignored")));
}

TEST_F(Check, CheckProjectFile_WarningsOnly_LoadsWithTrue) {
  const std::string sections =
      "<package_info/><constraint_info><io_place_file/><sdc_file/></constraint_info>"
      "<ip_info><x/></ip_info><sim_info><x/></sim_info><debugger><param/></debugger>";
  EXPECT_THAT(CheckSections(sections), Not(IsEmpty()));
  EXPECT_TRUE(LoadBytes(kRoot + sections + "</project>", directory / "gone.xsd"));
}

// ---- Places

TEST_F(Check, CheckProjectFile_Element_StandsWhereItsStartTagBegins) {
  EXPECT_THAT(CheckSections("<x1\n a='1'/><!-- \n --><x2></x2>text&amp;<x3/><?any thing?><x4>\n"
                            "</x4>\t<x5/><![CDATA[]]><x6/> größe <x7/>&#65;<x8/>\r\n\n<x9/>"),
              ElementsAre(StartsWith("2:1:"), StartsWith("4:5:"), StartsWith("4:23:"),
                          StartsWith("4:41:"), StartsWith("5:7:"), StartsWith("5:24:"),
                          StartsWith("5:36:"), StartsWith("5:46:"), StartsWith("7:1:")));
}

TEST_F(Check, CheckProjectFile_RootAfterADeclaration_StandsWhereItBegins) {
  EXPECT_THAT(CheckBytes("<?xml version=\"1.0\"?><x/>"), ElementsAre(StartsWith("1:22:")));
}

TEST_F(Check, CheckProjectFile_RootAfterAByteOrderMark_StandsInColumnOne) {
  EXPECT_THAT(CheckBytes("\xEF\xBB\xBF<x/>"), ElementsAre(StartsWith("1:1:")));
}

TEST_F(Check, CheckProjectFile_CharacterBeyond16Bits_TakesTwoColumns) {
  EXPECT_THAT(CheckSections("🐟<x/>"), ElementsAre(StartsWith("2:3:")));
}

TEST_F(Check, CheckProjectFile_WhiteSpaceThatTheSchemaAllows_CountsInPlaces) {
  EXPECT_THAT(CheckSections("  \n <package_info/>\n", ShippedSchema()),
              ElementsAre(StartsWith("3:2:")));
}

TEST_F(Check, CheckProjectFile_SeveralProblems_AreInTheOrderOfTheirPlaces) {
  const std::vector<FileProblem> problems = CheckProjectFile(
      Write("p.xml", kRoot + "<a><x/></a>\n<b/><debugger><x/><param/></debugger>\n</project>"),
      ShippedSchema());
  EXPECT_GT(problems.size(), 6U);
  EXPECT_TRUE(std::is_sorted(problems.begin(), problems.end(), [](const auto& a, const auto& b) {
    return a.line != b.line ? a.line < b.line : a.column < b.column;
  }));
}

// ---- Side effects

TEST_F(Check, CheckProjectFile_ProblemsOfAllKinds_PostsNothing) {
  const MessageRecorder recorder;
  CheckFile("gone.xml");
  CheckSections("<package_info/><bogus/>", "gone.xsd");
  CheckBytes("<project>");
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(Check, CheckProjectFile_ProjectInMemory_IsUntouched) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject before(database);
  CheckBytes(ProjectXml(DeviceInfoXml("Other"), "name=\"other\""));
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(Check, CheckProjectFile_File_IsUntouched) {
  const std::string bytes = kRoot + "<bogus/></project>";
  CheckBytes(bytes);
  EXPECT_EQ(ReadFile(path()), bytes);
}

TEST_F(Check, CheckProjectFile_InSeveralThreads_GivesTheSameProblems) {
  const std::string file = Write("p.xml", kRoot + "<bogus/><package_info/></project>");
  const std::vector<std::string> expected = CheckFile(file, ShippedSchema());
  std::vector<std::future<std::vector<std::string>>> checks(4);
  for (auto& check : checks) {
    check = std::async(std::launch::async, [&] { return CheckFile(file, ShippedSchema()); });
  }
  for (auto& check : checks) EXPECT_EQ(check.get(), expected);
}

// ---- Agreement with loading

class CheckAgreement : public Check {
 protected:
  /// Expects that a check finds no error in the file exactly if it loads with true, with a schema
  /// and without.
  void ExpectAgreement(const std::string& file) {
    for (const std::string& schema : {std::string(), ShippedSchema()}) {
      SCOPED_TRACE(testing::Message() << file << " with schema \"" << schema << '"');
      const MessageRecorder recorder;
      KelProjectDatabase loaded;
      EXPECT_EQ(CheckAccepts(file, schema), LoadsWithTrue(loaded, file, schema));
    }
  }

  void ExpectAgreementOnBytes(const std::string& bytes) { ExpectAgreement(Write("p.xml", bytes)); }

 private:
  static bool LoadsWithTrue(KelProjectDatabase& project, const std::string& file,
                            const std::string& schema) {
    try {
      return project.LoadProjectData(file, schema);
    } catch (const std::runtime_error&) {
      return false;
    }
  }
};

TEST_F(CheckAgreement, CheckProjectFile_FuzzingCorpus_AgreesWithLoading) {
  ASSERT_GT(CorpusProjects().size(), 40U);
  for (const std::string& file : CorpusProjects()) ExpectAgreement(file);
}

TEST_F(CheckAgreement, CheckProjectFile_SampleProject_AgreesWithLoading) {
  ExpectAgreement(SampleProject());
}

TEST_F(CheckAgreement, CheckProjectFile_NamesThatAreNoProjectFile_AgreesWithLoading) {
  for (const std::string& name : {std::string(), directory / "gone.xml", directory.path().string(),
                                  Write("p.XML", ProjectXml("")), std::string("a\0b.xml", 7)}) {
    ExpectAgreement(name);
  }
}

class CheckDamagedByte : public CheckAgreement, public testing::WithParamInterface<char> {};

TEST_P(CheckDamagedByte, CheckProjectFile_SampleWithAByteReplaced_AgreesWithLoading) {
  constexpr std::size_t kStep = 89;
  const std::string sample = ReadFile(SampleProject());
  const auto first = static_cast<std::size_t>(static_cast<unsigned char>(GetParam())) % kStep;
  for (std::size_t position = first; position < sample.size(); position += kStep) {
    std::string damaged = sample;
    damaged[position] = GetParam();
    ExpectAgreementOnBytes(damaged);
  }
}

INSTANTIATE_TEST_SUITE_P(Bytes, CheckDamagedByte,
                         testing::Values('\0', '<', '&', '"', ' ', ':', 'x', '/', '>', '\xFF'),
                         [](const auto& test_info) { return std::to_string(test_info.index); });

TEST_F(CheckAgreement, CheckProjectFile_SampleCutOff_AgreesWithLoading) {
  constexpr std::size_t kStep = 211;
  const std::string sample = ReadFile(SampleProject());
  for (std::size_t size = 0; size < sample.size(); size += kStep) {
    ExpectAgreementOnBytes(sample.substr(0, size));
  }
}

TEST_F(CheckAgreement, CheckProjectFile_EveryLineDroppedOrDoubled_AgreesWithLoading) {
  const std::string complete = CompleteProjectXml();
  for (std::size_t begin = 0; begin < complete.size();) {
    const std::size_t size = complete.find('\n', begin) + 1 - begin;
    std::string dropped = complete;
    ExpectAgreementOnBytes(dropped.erase(begin, size));
    std::string doubled = complete;
    ExpectAgreementOnBytes(doubled.insert(begin, complete.substr(begin, size)));
    begin += size;
  }
}

TEST_F(CheckAgreement, CheckProjectFile_EveryElementRenamed_AgreesWithLoading) {
  const std::string complete = CompleteProjectXml();
  for (std::size_t tag = complete.find('<', 1); tag != std::string::npos;
       tag = complete.find('<', tag + 1)) {
    if (complete[tag + 1] == '/') continue;
    const std::size_t size = complete.find_first_of(" />", tag) - tag;
    std::string renamed = complete;
    const std::string name = complete.substr(tag + 1, size - 1);
    const std::size_t end_of_tag = complete.find('>', tag);
    if (complete[end_of_tag - 1] != '/') {
      renamed.replace(complete.find("</" + name + ">", tag) + 2, name.size(), "other");
    }
    ExpectAgreementOnBytes(renamed.replace(tag + 1, name.size(), "other"));
  }
}

TEST_F(CheckAgreement, CheckProjectFile_EveryElementInEverySection_AgreesWithLoading) {
  const std::vector<std::string> names = {"device_info",
                                          "design_info",
                                          "constraint_info",
                                          "isf_info",
                                          "sim_info",
                                          "misc_info",
                                          "ip_info",
                                          "synthesis",
                                          "place_and_route",
                                          "bitstream_generation",
                                          "debugger",
                                          "package_info",
                                          "security",
                                          "family",
                                          "device",
                                          "timing_model",
                                          "top_module",
                                          "top_vhdl_arch",
                                          "design_file",
                                          "sdc_file",
                                          "inter_file",
                                          "io_place_file",
                                          "core_place_file",
                                          "isf_file",
                                          "sim_file",
                                          "misc_file",
                                          "ip",
                                          "ip_src_file",
                                          "param",
                                          "dynparam",
                                          "defmacro"};
  for (const std::string& section : names) {
    for (const std::string& child : names) {
      ExpectAgreementOnBytes(ProjectXml(ElementXml(section, "", ElementXml(child))));
    }
  }
}

}  // namespace
