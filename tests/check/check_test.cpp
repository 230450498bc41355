#include <projectdb/check.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/slowness.h"
#include "testing/test.h"
#include "testing/threads.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// As a user is shown it.
std::string Show(const FileProblem& problem) {
  return std::to_string(problem.line) + ":" + std::to_string(problem.column) +
         (IsError(problem) ? ": error: " : ": warning: ") + problem.message;
}

/// A path as messages have it, between quotes.
std::string Quoted(const std::string& path) {
  std::string quoted = "\"";
  for (const char c : path) quoted += c == '\\' ? "\\\\" : std::string(1, c);
  return quoted + "\"";
}

/// Matches a text by a pattern in which "*" stands for anything: what the XML library says in words
/// of its own.
MATCHER_P(IsLike, pattern, "") {
  std::string_view rest = arg;
  std::string_view parts = pattern;
  for (bool is_first = true;; is_first = false) {
    const std::size_t star = parts.find('*');
    const std::string_view part = parts.substr(0, star);
    const bool is_last = star == std::string_view::npos;
    if (is_last && rest.size() < part.size()) return false;
    const std::size_t found = is_last ? rest.size() - part.size() : rest.find(part);
    if (found == std::string_view::npos || (is_first && found != 0)) return false;
    if (is_last) return rest.substr(found) == part;
    rest.remove_prefix(found + part.size());
    parts.remove_prefix(star + 1);
  }
}

auto AreLike(const Lines& patterns) {
  std::vector<testing::Matcher<std::string>> matchers;
  for (const std::string& pattern : patterns) matchers.emplace_back(IsLike(pattern));
  return testing::ElementsAreArray(matchers);
}

const std::string kRoot = "<project xmlns=\"http://schema.kel.example/wdp_proj\">\n";

class Check : public testing::Test, public Loading {
 protected:
  Lines CheckFile(const std::string& file, const std::string& schema = "") {
    Lines shown;
    for (const FileProblem& problem : CheckProjectFile(file, schema)) {
      shown.push_back(Show(problem));
    }
    return shown;
  }

  Lines CheckBytes(const std::string& bytes, const std::string& schema = "") {
    return CheckFile(Write("p.xml", bytes), schema);
  }
};

struct CheckCase {
  std::string name;
  std::string bytes;
  Lines problems;
  bool has_schema = false;  ///< The shipped one.
};

/// The sections begin in line 2, column 1.
CheckCase CheckSections(const std::string& name, const std::string& sections,
                        const Lines& problems) {
  return {name, kRoot + sections + "</project>\n", problems};
}

CheckCase CheckSectionsWithSchema(const std::string& name, const std::string& sections,
                                  const Lines& problems) {
  return {name, kRoot + sections + "</project>\n", problems, true};
}

class CheckFileCase : public Check, public testing::WithParamInterface<CheckCase> {};

TEST_P(CheckFileCase, CheckProjectFile_GivesItsProblemsInTheOrderOfTheirPlaces) {
  EXPECT_THAT(CheckBytes(GetParam().bytes, GetParam().has_schema ? ShippedSchema() : ""),
              AreLike(GetParam().problems));
}

std::vector<CheckCase> UnknownChildren() {
  const std::pair<std::string, std::string> sections[] = {
      {"device_info", "<family>, <device> or <timing_model>"},
      {"design_info", "<top_module>, <design_file> or <top_vhdl_arch>"},
      {"constraint_info", "<sdc_file> or <inter_file>"},
      {"isf_info", "<isf_file>"},
      {"synthesis", "<param>, <dynparam> or <defmacro>"},
      {"place_and_route", "<param>"},
      {"bitstream_generation", "<param>"},
      {"debugger", "<param>"}};
  std::vector<CheckCase> cases;
  for (const auto& [section, expected] : sections) {
    std::string children;  // Each is accepted, and so are its attributes.
    for (std::size_t at = expected.find('<'); at != std::string::npos;
         at = expected.find('<', at + 1)) {
      children += expected.substr(at, expected.find('>', at) - at) +
                  " name=\"a\" value=\"b\" value_type=\"e_string\"/>";
    }
    cases.push_back(
        CheckSections("In_" + section, "<" + section + ">\n <x/>" + children + "</" + section + ">",
                      {"3:2: error: <x> cannot stand in <" + section + ">; expected " + expected}));
  }
  return cases;
}

std::vector<CheckCase> SingleNamesTwice() {
  const std::pair<std::string, std::string> elements[] = {
      {"device_info", "family"},        {"device_info", "device"},
      {"device_info", "timing_model"},  {"design_info", "top_module"},
      {"design_info", "top_vhdl_arch"}, {"constraint_info", "inter_file"}};
  std::vector<CheckCase> cases;
  for (const auto& [section, element] : elements) {
    cases.push_back(CheckSections(
        element, ElementXml(section, "", "\n<" + element + " name=\"a\"/>\n<" + element + "/>"),
        {"4:1: warning: <" + element +
         "> takes the place of \"a\" above; a project has only one"}));
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(NameTwice, CheckFileCase, testing::ValuesIn(SingleNamesTwice()), ByName());

INSTANTIATE_TEST_SUITE_P(UnknownChild, CheckFileCase, testing::ValuesIn(UnknownChildren()),
                         ByName());

const CheckCase kCheckCases[] = {
    CheckCase{"SampleProject", ReadFile(SampleProject()), {}, true},
    CheckCase{"CompleteProject", CompleteProjectXml(), {}},
    CheckSections("Security", "<security><any/></security>", {}),
    CheckCase{"HintToAMissingSchema",
              ProjectXml("",
                         "xsi:schemaLocation=\"http://schema.kel.example/"
                         "wdp_proj gone.xsd\""),
              {}},
    CheckSections("WrongEndTag_AtTheTag", "<device_info>\n  </device>\n</device_info>",
                  {"3:5: error: *device_info*"}),
    CheckCase{"CutOffFile_AtItsEnd", kRoot + "<device_info>\n<fam", {"3:5: error: *"}},
    CheckCase{"EmptyFile_AtItsBeginning", "", {"1:1: error: *"}},
    CheckCase{"Doctype_AtTheDeclaration",
              "\n\n<!DOCTYPE project>\n<project/>",
              {"3:10: error: *: expected the root element, with no document type declaration "
               "before it"}},
    CheckSections("TextThatIsNotUtf8_AtTheFirstWrongByte",
                  "<device_info>\r\n <family name=\"gr\xF6\xDF"
                  "e\"/></device_info>",
                  {"3:18: error: the text is not UTF-8: *"}),
    CheckSections("ErrorFarIntoALargeFile_HasItsLine",
                  "<design_info>\n" +
                      Repeated("<design_file name=\"a file with some name.v\"/>\n", 5000) +
                      "<design_file name=\"\xE9\"/></design_info>",
                  {"5003:20: error: the text is not UTF-8: *"}),
    CheckSections("AfterElementsOutsideTheFormat_ListsThemToo", "<bogus/>\n<isf_info>\n",
                  {"2:1: error: <bogus> is not a section*", "4:3: error: *isf_info*"}),
    CheckSectionsWithSchema("EachBreach",
                            "<device_info kind=\"a\">\n</device_info>\n<ip_info other=\"b\"/>",
                            {"2:23: error: *kind*device_info*", "4:21: error: *other*ip_info*"}),
    CheckSectionsWithSchema("BesideTheLoadersRules",
                            "<debugger kind=\"a\">\n<param name=\"n\"/>\n</debugger>",
                            {"2:20: error: *kind*", "3:1: warning: parameter \"n\" is ignored*"}),
    CheckSections("UnknownSection_IsAnErrorWithTheSections", "<device_info/>\n  <timing/>",
                  {"3:3: error: <timing> is not a section of a project file; expected "
                   "<device_info>, <design_info>, <constraint_info>, <isf_info>, <sim_info>, "
                   "<misc_info>, <ip_info>, <synthesis>, <place_and_route>, <bitstream_generation> "
                   "or <debugger>"}),
    CheckCase{"PrefixedElement_IsNamedWithoutPrefix",
              "<k:project xmlns:k=\"http://schema.kel.example/wdp_proj\">\n"
              "<k:debugger><k:x/></k:debugger></k:project>",
              {"2:13: error: <x> cannot stand in <debugger>; expected <param>"}},
    CheckCase{"OtherRoot_IsAWarning",
              "\n<design/>",
              {"2:1: warning: the root is <design>; expected <project>"}},
    CheckSections(
        "DeprecatedElements_AreWarnings",
        "<package_info/>\n<constraint_info>\n<io_place_file/><core_place_file/>"
        "</constraint_info>",
        {"2:1: warning: <package_info> is deprecated and ignored; it can be removed",
         "4:1: warning: <io_place_file> is deprecated and ignored; it can be removed",
         "4:17: warning: <core_place_file> is deprecated and ignored; it can be removed"}),
    CheckSections("IgnoredElements_AreWarnings",
                  "<ip_info>\n<x/><ip><y/></ip></ip_info>\n<sim_info><misc_file/></sim_info>\n"
                  "<misc_info><z><misc_file name=\"a\"/></z></misc_info>",
                  {"3:1: warning: <x> in <ip_info> is ignored; expected <ip>",
                   "3:9: warning: <y> in <ip> is ignored; expected <ip_src_file>",
                   "4:11: warning: <misc_file> in <sim_info> is ignored; expected <sim_file>",
                   "5:12: warning: <z> in <misc_info> is ignored; expected <misc_file>"}),
    CheckSections("FileOutsideTheNamespace_IsAWarning",
                  "<sim_info><sim_file xmlns=\"urn:other\" name=\"a\"/></sim_info>",
                  {"2:11: warning: <sim_file> is ignored because it is not in the namespace "
                   "\"http://schema.kel.example/wdp_proj\""}),
    CheckSections("FilesWithoutName_AreWarnings",
                  "<isf_info><isf_file/></isf_info>\n"
                  "<constraint_info><sdc_file name=\"\"/></constraint_info>",
                  {"2:11: warning: <isf_file> is ignored because it names no file; expected the "
                   "attribute \"name\"",
                   "3:18: warning: <sdc_file> is ignored because it names no file; expected the "
                   "attribute \"name\""}),
    CheckSections(
        "ParametersWithoutTheirValue_AreWarningsWithTheReason",
        "<debugger><param name=\"flat\" value=\"1\" value_type=\"e_noarg\"/>\n"
        "<param name=\"a\" value_type=\"e_bool\"/>\n<param name=\"größe 🐟\"/></debugger>",
        {"2:11: warning: parameter \"flat\" is ignored because a parameter with type "
         "e_noarg must have no value",
         "3:1: warning: parameter \"a\" is ignored because a parameter with type e_bool "
         "must have a value",
         "4:1: warning: parameter \"größe 🐟\" is ignored because a parameter with no type "
         "must have a value"}),
    CheckSections("ParameterThatChangesItsType_IsAWarningWithTheReason",
                  "<debugger>\n<param name=\"a\" value=\"1\" value_type=\"e_string\"/>\n"
                  "<param name=\"a\" value=\"1\"/></debugger>\n"
                  "<debugger><param name=\"a\" value=\"1\" value_type=\"e_bool\"/></debugger>",
                  {"4:1: warning: parameter \"a\" is ignored because it has no type, but one of "
                   "that name above has type e_string",
                   "5:11: warning: parameter \"a\" is ignored because it has type e_bool, but one "
                   "of that name above has type e_string"}),
    CheckSections("ParameterTwice_IsAWarningAtTheOneThatIsKept",
                  "<debugger>\n<param name=\"a\" value=\"1\"/><param name=\"b\" value=\"1\"/>\n"
                  "<param name=\"a\" value=\"2\"/></debugger>\n"
                  "<debugger><param name=\"b\" value=\"1\"/></debugger>",
                  {"4:1: warning: parameter \"a\" takes the place of the one of that name above",
                   "5:11: warning: parameter \"b\" takes the place of the one of that name above"}),
    CheckSections("ParameterOfOneNameInTwoMapsOrProcesses_IsNoProblem",
                  "<synthesis><param name=\"a\" value=\"1\"/><dynparam name=\"a\" value=\"1\"/>"
                  "<defmacro name=\"a\" value=\"1\"/></synthesis>"
                  "<debugger><param name=\"a\" value=\"1\"/></debugger>",
                  {}),
    CheckSections("NameInAnotherSection_TakesThePlaceOfTheFormerToo",
                  "<design_info><top_module name=\"a\"/></design_info>\n"
                  "<design_info><top_module name=\"a\"/></design_info>",
                  {"3:14: warning: <top_module> takes the place of \"a\" above; a project has only "
                   "one"}),
    CheckSections("NameBehindAnEmptyOne_IsNoProblem",
                  "<design_info><top_module name=\"\"/><top_module name=\"a\"/></design_info>", {}),
    CheckSections("UnknownParameterType_IsAWarningWithTheTypes",
                  "<debugger><param name=\"a\" value=\"1\" value_type=\"string\"/></debugger>",
                  {"2:11: warning: parameter \"a\": \"string\" is not a type; expected e_string, "
                   "e_bool, e_option or e_noarg"}),
    CheckSections("ProblemsOfOneElement_KeepTheirOrder",
                  "<debugger><param name=\"a\" value_type=\"string\"/></debugger>",
                  {"2:11: warning: parameter \"a\": \"string\" is not a type; *",
                   "2:11: warning: parameter \"a\" is ignored because *"}),
    CheckSections(
        "Places_ElementsStandWhereTheirStartTagsBegin",
        "<x1\n a='1'/><!-- \n --><x2></x2>text&amp;<x3/><?any thing?><x4>\n"
        "</x4>\t<x5/><![CDATA[]]><x6/> größe <x7/>&#65;<x8/>\r\n\n<x9/>",
        {"2:1:*", "4:5:*", "4:23:*", "4:41:*", "5:7:*", "5:24:*", "5:36:*", "5:46:*", "7:1:*"}),
    CheckCase{"Places_RootAfterADeclaration", "<?xml version=\"1.0\"?><x/>", {"1:22:*"}},
    CheckCase{"Places_RootAfterAByteOrderMark", "\xEF\xBB\xBF<x/>", {"1:1:*"}},
    CheckSections("Places_CharacterBeyond16Bits_TakesTwoColumns", "🐟<x/>", {"2:3:*"}),
    CheckSectionsWithSchema("Places_WhiteSpaceThatTheSchemaAllows_Counts", "  \n <package_info/>\n",
                            {"3:2:*"})};

INSTANTIATE_TEST_SUITE_P(Files, CheckFileCase, testing::ValuesIn(kCheckCases), ByName());

TEST_F(Check, CheckProjectFile_SeveralProblems_AreInTheOrderOfTheirPlaces) {
  const std::vector<FileProblem> problems = CheckProjectFile(
      Write("p.xml", kRoot + "<a><x/></a>\n<b/><debugger><x/><param/></debugger>\n</project>"),
      ShippedSchema());
  EXPECT_GT(problems.size(), 6U);
  EXPECT_TRUE(std::is_sorted(problems.begin(), problems.end(), [](const auto& a, const auto& b) {
    return a.line != b.line ? a.line < b.line : a.column < b.column;
  }));
}

TEST_F(Check, CheckProjectFile_MessagesThatQuoteControlCharacters_AreOneLine) {
  const std::string bytes = kRoot +
                            "<synthesis>\n<param name=\"&#10;&#9;&#127;\" value_type=\"a&#10;b\"/>"
                            "</synthesis></project>";
  const Lines lines = CheckBytes(bytes, ShippedSchema());
  EXPECT_THAT(lines, Contains(IsLike("3:*: error: *a b*")));
  for (const std::string& line : lines) {
    EXPECT_TRUE(std::none_of(line.begin(), line.end(), [](char c) {
      return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    })) << testing::PrintToString(line);
  }
}

TEST_F(Check, CheckProjectFile_WarningsOnly_LoadsWithTrue) {
  const std::string bytes = kRoot +
                            "<package_info/><constraint_info><io_place_file/><sdc_file/>"
                            "</constraint_info><ip_info><x/></ip_info><sim_info><x/></sim_info>"
                            "<debugger><param/></debugger></project>";
  EXPECT_THAT(CheckBytes(bytes), Not(IsEmpty()));
  EXPECT_TRUE(LoadBytes(bytes, directory / "gone.xsd"));
}

TEST_F(Check, CheckProjectFile_WhatThePartsOfALoadThrowOn_IsAnErrorThatIsNotPrinted) {
  const std::string bytes = "<?xml version=\"1.X\"?><project/>";
  EXPECT_THROW(LoadBytes(bytes), std::runtime_error);
  testing::internal::CaptureStdout();
  EXPECT_THAT(CheckBytes(bytes), AreLike({"1:1: error: the file cannot be parsed: *"}));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Check, CheckProjectFile_WhatIsNoProjectFile_IsAnErrorInNoLine) {
  std::filesystem::create_directory(directory / "d.xml");
  const std::pair<std::string, std::string> cases[] = {
      {directory / "gone.xml", "0:0: error: the project file does not exist"},
      {"", "0:0: error: the project file does not exist"},
      {Write("p.XML", ProjectXml("")),
       "0:0: error: the name of a project file must end in \".xml\""},
      {directory / "d.xml", "0:0: error: the file cannot be read: *"}};
  for (const auto& [file, problem] : cases) EXPECT_THAT(CheckFile(file), AreLike({problem}));
}

TEST_F(Check, CheckProjectFile_RelativeNames_AreBelowTheWorkingDirectory) {
  Write("p.xml", kRoot + "<bogus/></project>");
  Write("s.xsd", DeviceOnlySchema());
  const WorkingDirectory working_directory(directory.path());
  EXPECT_THAT(CheckFile("p.xml", "s.xsd"), AreLike({"2:1: error: <bogus> is not a section*",
                                                    "2:9: error: *bogus*", "2:19: error: *"}));
}

TEST_F(Check, CheckProjectFile_MissingSchema_IsAWarningInNoLineBesideTheRest) {
  EXPECT_THAT(CheckBytes(kRoot + "<package_info/></project>", "no/such.xsd"),
              AreLike({"0:0: warning: the XML schema \"no/such.xsd\" does not exist; the file is "
                       "read without it",
                       "2:1: warning: <package_info> is deprecated*"}));
}

TEST_F(Check, CheckProjectFile_SchemaThatCannotBeUsed_IsAnErrorInNoLineWithPathAndLine) {
  const std::string doctype = Write("d.xsd", "\n<!DOCTYPE xs:schema>" + DeviceOnlySchema());
  const std::string wrong =
      Write("w.xsd", DeviceOnlySchema("\n<xs:element name=\"e\" type=\"xs:nonsense\"/>"));
  const std::string no_file = PathText(directory.path());
  EXPECT_THAT(CheckBytes(ProjectXml(""), no_file),
              AreLike({"0:0: error: the XML schema " + Quoted(no_file) + " cannot be read"}));
  EXPECT_THAT(CheckBytes(ProjectXml(""), doctype),
              AreLike({"0:0: error: XML schema " + Quoted(doctype) + ", line 2: *"}));
  EXPECT_THAT(CheckBytes(ProjectXml(""), wrong),
              AreLike({"0:0: error: XML schema " + Quoted(wrong) + ", line 2: *nonsense*"}));
}

TEST_F(Check, CheckProjectFile_RefusedHintedSchema_IsAnErrorAtTheElementThatNamesIt) {
  const std::string schema = Write("s.xsd", "<!DOCTYPE xs:schema>" + DeviceOnlySchema());
  EXPECT_THAT(CheckBytes("<!-- -->\n <project xmlns=\"http://schema.kel.example/wdp_proj\"\n"
                         " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
                         " xsi:schemaLocation=\"http://schema.kel.example/wdp_proj s.xsd\"/>"),
              AreLike({"2:2: error: XML schema " + Quoted(schema) + ", line 1: *"}));
}

TEST_F(Check, CheckProjectFile_ProblemsOfAllKinds_PostsNothingAndLeavesFileAndProject) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const std::string bytes = ProjectXml("<package_info/><bogus/>", "name=\"other\"");
  const MessageRecorder recorder;
  CheckFile("gone.xml");
  CheckBytes("<project>");
  CheckBytes(bytes, "gone.xsd");
  EXPECT_THAT(recorder.messages(), IsEmpty());
  EXPECT_EQ(ReadFile(path()), bytes);
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
}

TEST_F(Check, CheckProjectFile_InSeveralThreads_GivesTheSameProblems) {
  const std::string file = Write("p.xml", kRoot + "<bogus/><package_info/></project>");
  const Lines expected = CheckFile(file, ShippedSchema());
  InThreads(4, [&](int) { EXPECT_EQ(CheckFile(file, ShippedSchema()), expected); });
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

TEST_F(CheckAgreement, CheckProjectFile_NamesThatAreNoProjectFile_AgreesWithLoading) {
  for (const std::string& name : {std::string(), directory / "gone.xml", directory.path().string(),
                                  Write("p.XML", ProjectXml("")), std::string("a\0b.xml", 7)}) {
    ExpectAgreement(name);
  }
}

TEST_F(CheckAgreement, CheckProjectFile_SampleWithAByteReplaced_AgreesWithLoading) {
  const std::size_t step = 211 * StepOfManyFiles();
  const std::string sample = ReadFile(SampleProject());
  for (const char byte : {'\0', '<', '&', '"', ' ', ':', 'x', '/', '>', '\xFF'}) {
    const auto first = static_cast<std::size_t>(static_cast<unsigned char>(byte)) % step;
    for (std::size_t position = first; position < sample.size(); position += step) {
      std::string damaged = sample;
      damaged[position] = byte;
      ExpectAgreementOnBytes(damaged);
    }
  }
}

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
  std::istringstream words(
      "device_info design_info constraint_info isf_info sim_info misc_info ip_info "
      "synthesis place_and_route bitstream_generation debugger package_info security family "
      "device timing_model top_module top_vhdl_arch design_file sdc_file inter_file "
      "io_place_file core_place_file isf_file sim_file misc_file ip ip_src_file param "
      "dynparam defmacro ");
  const std::vector<std::string> names(std::istream_iterator<std::string>(words), {});
  for (std::size_t i = 0; i < names.size() * names.size(); i += StepOfManyFiles()) {
    const std::string& section = names[i / names.size()];
    const std::string& child = names[i % names.size()];
    ExpectAgreementOnBytes(ProjectXml(ElementXml(section, "", ElementXml(child))));
  }
}

}  // namespace
