#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_differences.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using projectdb::DesignFile;
using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;
using projectdb::ParameterType;
using projectdb::ProcType;
using projectdb::ProjectContents;
using test_support::AllDifferences;
using test_support::CompleteProjectXml;
using test_support::DifferencesButStamps;
using test_support::MessageRecorder;
using test_support::ProjectXml;
using test_support::ReadXmlFile;
using test_support::TemporaryDirectory;
using test_support::WriteFile;
using testing::IsEmpty;

using namespace std::string_literals;

const std::string kSchema = test_support::ShippedSchema();

/// What a load can be given to check the file with.
enum class Schema { kNone, kGiven, kBesideTheFile };

void PrintTo(Schema schema, std::ostream* out) {
  *out << (schema == Schema::kNone    ? "no schema"
           : schema == Schema::kGiven ? "given schema"
                                      : "schema beside the file");
}

const auto kAllSchemas = testing::Values(Schema::kNone, Schema::kGiven, Schema::kBesideTheFile);

/// A project, and the project that comes back when it is exported and loaded.
class Trip {
 public:
  explicit Trip(Schema schema) : schema_(schema) {
    if (schema == Schema::kBesideTheFile) {
      std::filesystem::copy_file(kSchema, directory_ / "wdp_proj.xsd");
    }
    Restart();
  }

  /// Begins with a new project in the directory of the file.
  void Restart() {
    project.CleanProjectDatabase();
    project.CreateNewProjectDatabase("soc");
    project.SetProjectCurrentPath(directory_.path().string());
  }

  /// Loads a file of the given content into the project.
  bool Merge(const std::string& xml) {
    WriteFile(directory_ / "merged.xml", xml);
    return project.LoadProjectData(directory_ / "merged.xml", "");
  }

  bool ExportAndLoad() {
    project.ExportProjectData(path_);
    return Load(returned);
  }

  bool Load(KelProjectDatabase& database) const {
    return database.LoadProjectData(path_, schema_ == Schema::kGiven ? kSchema : "");
  }

  std::vector<MessageRecorder::Message> messages() const { return recorder_.messages(); }
  const std::string& path() const { return path_; }

  KelProjectDatabase project;
  KelProjectDatabase returned;

 private:
  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "project.xml";
  Schema schema_;
};

/// What a file gives back of a project: a type outside the four becomes "no type".
ProjectContents Expected(const KelProjectDatabase& database) {
  ProjectContents project = GetProjectContents(database);
  for (auto& process : project.flow_processes) {
    for (auto& [map_name, parameters] : process.parameter_maps) {
      for (auto& [name, parameter] : parameters) {
        const bool has_text = parameter.type >= 0 && parameter.type <= 3;
        if (!has_text) parameter.type = projectdb::kNoParameterType;
      }
    }
  }
  return project;
}

/// What of a project did not come back; the stamps do not count.
std::vector<std::string> WhatWasLost(const Trip& trip) {
  return DifferencesButStamps(Expected(trip.project), GetProjectContents(trip.returned));
}

class RoundTrip : public testing::TestWithParam<Schema> {
 protected:
  Trip trip_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Schemas, RoundTrip, kAllSchemas);

// Whole projects.

TEST_P(RoundTrip, NewProject_ComesBack) {
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

TEST_P(RoundTrip, CompleteProject_ComesBackWithTheStampsOfTheFileAndNoMessageButThatItIsRead) {
  ASSERT_TRUE(trip_.Merge(CompleteProjectXml()));
  const std::size_t before = trip_.messages().size();
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  EXPECT_EQ(trip_.messages().size(), before + 1);
  EXPECT_EQ(trip_.messages().back(), test_support::ReadingMessage(trip_.path()));
  const auto attributes = ReadXmlFile(trip_.path()).attributes;
  EXPECT_EQ(trip_.returned.GetProjectSoftwareVersion(), attributes.at("sw_version"));
  EXPECT_EQ(trip_.returned.GetProjectLastModifyTime(), attributes.at("last_change_date"));
}

TEST_P(RoundTrip, EmptyTexts_ComeBackEmpty) {
  trip_.project.SetProjectName("");
  trip_.project.SetDeviceFamily("");
  trip_.project.SetDeviceModel("");
  trip_.project.AddDesignRTLFile("", "", "");
  trip_.project.AddSimulationTestBenchFile("", "");
  trip_.project.AddMiscellaneousFile("");
  trip_.project.AddDebuggerParameter("", "", projectdb::e_noarg);
  trip_.project.AddProjectInfoAttribute("note", "");
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

TEST_P(RoundTrip, UnnamedProcesses_ComeBackUnderTheirDefaultNamesWithAllParameters) {
  trip_.project.CleanProjectDatabase();
  trip_.project.SetupProjectDatabase();
  for (int type = 0; type < 4; ++type) {
    trip_.project.SetFlowProcessExecutableName(ProcType(type), "tool");
    trip_.project.AddFlowProcessParameter(ProcType(type), "param", "p", "v", projectdb::e_bool);
  }
  ASSERT_TRUE(trip_.ExportAndLoad());
  ProjectContents expected = GetProjectContents(trip_.project);
  const char* names[] = {"synthesis", "place_and_route", "bitstream_generation", "debugger"};
  for (std::size_t type = 0; type < 4; ++type) expected.flow_processes[type].name = names[type];
  EXPECT_THAT(CompareProjects(expected, GetProjectContents(trip_.returned)), IsEmpty());
}

TEST_P(RoundTrip, FileWithoutAProcess_GivesItItsDefaultName) {
  trip_.project.CleanProjectDatabase();
  ASSERT_TRUE(trip_.Merge(ProjectXml("<synthesis/>")));
  trip_.project.AddDebuggerParameter("p", "v", projectdb::e_string);
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_EQ(trip_.returned.GetFlowProcess(projectdb::e_debugger)->name, "debugger");
  EXPECT_EQ(trip_.returned.GetDebuggerParameterValue("p"), "v");
}

TEST_P(RoundTrip, Parameters_ComeBackFromTheirMapsButTheirUnknownTypesAndPlainOnes) {
  trip_.project.AddSynthesisParameter("p", "1", projectdb::e_string);
  trip_.project.AddSynthesisVerilogDefineParameter("p", "2");
  trip_.project.AddSynthesisVerilogMacro("p", "3");
  trip_.project.AddPlaceAndRouteParameter("p", "4", projectdb::e_option);
  for (int i = 0; i < 5000; ++i) {
    trip_.project.AddSynthesisParameter("p" + std::to_string(i), "v", projectdb::e_string);
  }
  trip_.project.AddDebuggerParameter("p", "v", ParameterType(7));
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  EXPECT_EQ(trip_.returned.GetDebuggerParameter("p")->type, projectdb::kNoParameterType);
  trip_.project.GetFlowProcess(projectdb::e_debugger)
      ->parameters.emplace_back("plain", "v", projectdb::e_string);
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(trip_.returned.GetFlowProcess(projectdb::e_debugger)->parameters, IsEmpty());
}

// Texts.

struct TextCase {
  const char* name;
  std::string text;
};

void PrintTo(const TextCase& c, std::ostream* out) { *out << c.name; }

const TextCase kTextCases[] = {
    {"tab", "a\tb"},
    {"newline", "a\nb"},
    {"carriage return", "a\rb"},
    {"carriage return and newline", "a\r\nb\r\r\n\n"},
    {"blank", " "},
    {"leading and trailing blanks", "  a  "},
    {"several blanks", "a   b"},
    {"white space only", "\t\n\r \r\n"},
    {"double quote", "\"a\""},
    {"single quote", "'a'"},
    {"both quotes", "'\"'\""},
    {"markup", "<a b='c'>&amp;</a>"},
    {"end of a section of characters", "a]]>b"},
    {"comment", "<!-- a -- b -->"},
    {"processing instruction", "<?a b?>"},
    {"text that looks escaped", "&#x41; &lt; &nosuch; %41 \\n"},
    {"braces and percent signs", "{} {0} %s %n {{"},
    {"DEL and the controls behind it", "\x7F\xC2\x80\xC2\x9F"},
    {"U+0085",
     "a\xC2\x85"
     "b"},
    {"U+00A0", "\xC2\xA0"},
    {"U+2028 and U+2029",
     "a\xE2\x80\xA8"
     "b\xE2\x80\xA9"},
    {"byte order mark",
     "\xEF\xBB\xBF"
     "a\xEF\xBB\xBF"},
    {"combining characters, not composed", "e\xCC\x81"},
    {"right to left", "\xD7\x90\xD7\x91"},
    {"last before the surrogates", "\xED\x9F\xBF"},
    {"first after the surrogates", "\xEE\x80\x80"},
    {"last of the first plane", "\xEF\xBF\xBD"},
    {"non-characters", "\xEF\xB7\x90\xF0\x9F\xBF\xBF"},
    {"first beyond 16 bits", "\xF0\x90\x80\x80"},
    {"emoji", "\xF0\x9F\x98\x80"},
    {"last of all", "\xF4\x8F\xBF\xBF"},
    {"long", std::string(100000, 'x')},
    {"long outside ASCII",
     [] {
       std::string text;
       for (int i = 0; i < 10000; ++i) text += "\xF0\x9F\x98\x80\xC3\xBC";
       return text;
     }()},
};

class RoundTripOfText : public testing::TestWithParam<std::tuple<TextCase, Schema>> {
 protected:
  const std::string& text() const { return std::get<0>(GetParam()).text; }
  Trip trip_{std::get<1>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Texts, RoundTripOfText,
                         testing::Combine(testing::ValuesIn(kTextCases), kAllSchemas));

TEST_P(RoundTripOfText, EveryField_ComesBack) {
  KelProjectDatabase& project = trip_.project;
  project.SetProjectName(text());
  project.SetDeviceFamily(text());
  project.SetDeviceModel(text());
  project.SetDeviceTimingModel(text());
  project.SetDesignTopModuleName(text());
  project.SetDesignTopVHDLArchitecture(text());
  project.AddDesignRTLFile(text(), text(), text());
  std::vector<DesignFile> files = {{text(), text(), text()}};
  project.AddSimulationTestBenchFile(files);
  project.AddMiscellaneousFile(text());
  project.AddProjectInfoAttribute("note", text());
  project.AddProjectInfoAttribute("v:note", text());
  project.SetFlowProcessExecutableName(projectdb::e_debugger, text());
  project.AddDebuggerParameter(text(), text(), projectdb::e_string);
  project.AddSynthesisVerilogMacro(text(), text());
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

TEST_P(RoundTrip, ConstraintFileNamesWithMarkup_ComeBack) {
  trip_.project.AddTimingConstraintFile(" <a>\t&\n\"\xC3\xBC.sdc");
  trip_.project.SetInterfaceConstraint(" <a>\t&\n\"\xC3\xBC.interface.csv");
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

// Info attributes.

struct AttributesCase {
  const char* name;
  std::vector<std::pair<std::string, std::string>> attributes;
};

void PrintTo(const AttributesCase& c, std::ostream* out) { *out << c.name; }

const AttributesCase kAttributes[] = {
    {"without prefix", {{"board", "b7"}, {"_", "1"}, {"a.b-c_d", "2"}}},
    {"with a prefix", {{"vendor:id", "77"}}},
    {"several prefixes, equal local names",
     {{"v:id", "1"}, {"w:id", "2"}, {"x:id", "3"}, {"id", "4"}}},
    {"several attributes of one prefix", {{"v:a", "1"}, {"v:b", "2"}, {"v:c", "3"}}},
    {"the prefix of the format", {{"kel:id", "1"}, {"kel:name", "2"}}},
    {"the prefix of the format and another, equal local names",
     {{"kel:id", "1"}, {"v:id", "2"}, {"id", "3"}}},
    {"reserved names behind prefixes",
     {{"v:name", "1"},
      {"v:sw_version", "2"},
      {"v:last_change_date", "3"},
      {"v:schemaLocation", "4"}}},
    {"prefixes with reserved names", {{"name:a", "1"}, {"sw_version:a", "2"}}},
    {"prefix xml, any name", {{"xml:note", "1"}, {"xml:name", "2"}}},
    {"xml:lang", {{"xml:lang", "de-CH"}}},
    {"xml:lang that is no language", {{"xml:lang", "no language!"}}},
    {"xml:space", {{"xml:space", "preserve"}}},
    {"xml:space of another kind", {{"xml:space", "other"}}},
    {"xml:base", {{"xml:base", "http://127.0.0.1/elsewhere/"}}},
    {"xml:base that is no address", {{"xml:base", "::: %"}}},
    {"xml:id", {{"xml:id", "i1"}}},
    {"xml:id that is no name", {{"xml:id", "1 2"}}},
    {"names that begin with xml",
     {{"xmlfoo", "1"},
      {"xmlfoo:a", "2"},
      {"XML", "3"},
      {"XML:a", "4"},
      {"xmlns2", "5"},
      {"xmlnsx:a", "6"},
      {"xml", "7"},
      {"a:xmlns", "8"}}},
    {"names that begin with xsi", {{"xsi2", "1"}, {"xsi2:type", "2"}, {"xsix:nil", "3"}}},
    {"prefixes as programs invent them",
     {{"ns1:a", "1"}, {"NS0:a", "2"}, {"NS1:a", "3"}, {"ns0:a", "4"}, {"_:a", "5"}, {"p0:a", "6"}}},
    {"prefixes that differ in case", {{"v:a", "1"}, {"V:a", "2"}, {"KEL:a", "3"}, {"Xsi:a", "4"}}},
    {"prefixes that an address escapes", {{"v.1-x:a", "1"}, {"\xC3\xBC:a", "2"}}},
    {"outside ASCII",
     {{"gr\xC3\xB6\xC3\x9F"
       "e",
       "1"},
      {"\xE5\x90\x8D", "2"},
      {"\xD0\xB0:\xD0\xB1", "3"},
      {"v:e\xCC\x81", "4"}}},
    {"schema instance names behind another prefix", {{"v:type", "a"}, {"v:nil", "true"}}},
    {"schema instance names without prefix",
     {{"type", "a"}, {"nil", "true"}, {"schemaLocation", "a b"}}},
};

class RoundTripOfAttributes : public testing::TestWithParam<std::tuple<AttributesCase, Schema>> {
 protected:
  Trip trip_{std::get<1>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Attributes, RoundTripOfAttributes,
                         testing::Combine(testing::ValuesIn(kAttributes), kAllSchemas));

TEST_P(RoundTripOfAttributes, InfoAttributes_ComeBack) {
  for (const auto& [name, value] : std::get<0>(GetParam()).attributes) {
    trip_.project.AddProjectInfoAttribute(name, value);
  }
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

TEST_P(RoundTrip, InfoAttributesOfALoadedFile_KeepTheirPrefixes) {
  trip_.Merge(ProjectXml("", "xmlns:v=\"urn:v\" xmlns:w=\"urn:w\" v:id=\"1\" w:id=\"2\" id=\"3\""));
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

// Whatever operations build.

/// A change of a project, as values that can be printed and made smaller.
struct Change {
  std::size_t kind;
  std::vector<std::string> texts;  ///< Three texts.
  std::string attribute_name;
  ProcType process;
  ParameterType type;
};

std::string CharacterReferences(const std::string& utf8);

using ApplyChange = void (*)(Trip&, const Change&);

const std::pair<const char*, ApplyChange> kChanges[] = {
    {"name", [](auto& trip, auto& c) { trip.project.SetProjectName(c.texts[0]); }},
    {"version", [](auto& trip, auto& c) { trip.project.SetProjectSoftwareVersion(c.texts[0]); }},
    {"family", [](auto& trip, auto& c) { trip.project.SetDeviceFamily(c.texts[0]); }},
    {"device", [](auto& trip, auto& c) { trip.project.SetDeviceModel(c.texts[0]); }},
    {"timing", [](auto& trip, auto& c) { trip.project.SetDeviceTimingModel(c.texts[0]); }},
    {"top", [](auto& trip, auto& c) { trip.project.SetDesignTopModuleName(c.texts[0]); }},
    {"arch", [](auto& trip, auto& c) { trip.project.SetDesignTopVHDLArchitecture(c.texts[0]); }},
    {"interface",
     [](auto& trip, auto& c) {
       trip.project.SetInterfaceConstraint(c.texts[0] + ".interface.csv");
     }},
    {"design file",
     [](auto& trip, auto& c) {
       trip.project.AddDesignRTLFile(c.texts[0], c.texts[1], c.texts[2]);
     }},
    {"test bench",
     [](auto& trip, auto& c) { trip.project.AddSimulationTestBenchFile(c.texts[0], c.texts[1]); }},
    {"test benches",
     [](auto& trip, auto& c) {
       std::vector<DesignFile> files = {{c.texts[0], c.texts[1], c.texts[2]}, {"a", "", ""}};
       trip.project.AddSimulationTestBenchFile(files);
     }},
    {"miscellaneous", [](auto& trip, auto& c) { trip.project.AddMiscellaneousFile(c.texts[0]); }},
    {"constraint",
     [](auto& trip, auto& c) {
       try {
         trip.project.AddTimingConstraintFile(c.texts[0] + ".sdc");
       } catch (const std::filesystem::filesystem_error&) {
         // A name that is too long for a file.
       }
     }},
    {"tool",
     [](auto& trip, auto& c) { trip.project.SetFlowProcessExecutableName(c.process, c.texts[0]); }},
    {"parameter",
     [](auto& trip, auto& c) {
       trip.project.AddFlowProcessParameter(c.process, "param", c.texts[0], c.texts[1], c.type);
     }},
    {"switch",
     [](auto& trip, auto& c) {
       trip.project.AddFlowProcessParameter(c.process, "param", c.texts[0], "", projectdb::e_noarg);
     }},
    {"define",
     [](auto& trip, auto& c) {
       trip.project.AddSynthesisVerilogDefineParameter(c.texts[0], c.texts[1]);
     }},
    {"macro",
     [](auto& trip, auto& c) { trip.project.AddSynthesisVerilogMacro(c.texts[0], c.texts[1]); }},
    {"attribute",
     [](auto& trip, auto& c) {
       trip.project.AddProjectInfoAttribute(c.attribute_name, c.texts[0]);
     }},
    {"loaded file",
     [](auto& trip, auto& c) {
       std::string texts[3];
       std::transform(c.texts.begin(), c.texts.end(), texts, CharacterReferences);
       trip.Merge(
           ProjectXml("<isf_info><isf_file name=\"" + texts[0] + "\"/></isf_info>" +
                      "<design_info def_veri_version=\"" + texts[1] + "\" def_vhdl_version=\"" +
                      texts[2] + "\"/><ip_info><ip instance_name=\"" + texts[0] + "\" path=\"" +
                      texts[1] + "\"><ip_src_file name=\"" + texts[2] + "\"/></ip></ip_info>"));
     }},
};

void showValue(const Change& change, std::ostream& out) {
  out << kChanges[change.kind].first << " (";
  for (const std::string& text : change.texts) out << testing::PrintToString(text) << ", ";
  out << change.attribute_name << ", process " << change.process << ", type " << change.type << ")";
}

std::string Utf8Of(std::uint32_t c) {
  const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
  if (c < 0x80) return {byte(c)};
  const char last = byte(0x80 | (c & 0x3F));
  if (c < 0x800) return {byte(0xC0 | (c >> 6)), last};
  const char third = byte(0x80 | (c >> 6 & 0x3F));
  if (c < 0x10000) return {byte(0xE0 | (c >> 12)), third, last};
  return {byte(0xF0 | (c >> 18)), byte(0x80 | (c >> 12 & 0x3F)), third, last};
}

std::string CharacterReferences(const std::string& utf8) {
  std::string references;
  std::uint32_t c = 0;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    const bool is_first = (byte & 0xC0) != 0x80;
    if (is_first) {
      c = byte < 0x80 ? byte : byte < 0xE0 ? byte & 0x1F : byte < 0xF0 ? byte & 0xF : byte & 0x7;
    } else {
      c = c << 6 | (byte & 0x3F);
    }
    const bool is_last =
        i + 1 == utf8.size() || (static_cast<unsigned char>(utf8[i + 1]) & 0xC0) != 0x80;
    if (is_last) references += "&#" + std::to_string(c) + ";";
  }
  return references;
}

/// Any text that XML can hold, mostly of characters that are likely to go wrong.
rc::Gen<std::string> XmlText() {
  const std::vector<std::uint32_t> likely = {
      '\t', '\n', '\r', ' ', '"', '\'', '<',  '>',    '&',    ';',    ']',    '/',    '\\',  '{',
      '}',  '%',  '.',  ':', '#', 0x85, 0xA0, 0x2028, 0x2029, 0xFEFF, 0xD7FF, 0xE000, 0xFFFD};
  const auto range = [](std::uint32_t first, std::uint32_t last) {
    return rc::gen::inRange(first, last + 1);
  };
  const auto character = rc::gen::weightedOneOf<std::uint32_t>({{4, rc::gen::elementOf(likely)},
                                                                {3, range(0x20, 0x7F)},
                                                                {2, range(0x80, 0x7FF)},
                                                                {1, range(0x800, 0xD7FF)},
                                                                {1, range(0xE000, 0xFFFD)},
                                                                {2, range(0x10000, 0x10FFFF)}});
  return rc::gen::map(rc::gen::container<std::vector<std::uint32_t>>(character),
                      [](const std::vector<std::uint32_t>& characters) {
                        std::string text;
                        for (const std::uint32_t c : characters) text += Utf8Of(c);
                        return text;
                      });
}

/// A name without colon.
rc::Gen<std::string> NcName() {
  const auto part = [](const std::vector<std::string>& characters) {
    return rc::gen::elementOf(characters);
  };
  const std::vector<std::string> starts = {"a",        "b",        "X",           "_",
                                           "\xC3\xA9", "\xCE\xA9", "\xE5\x90\x8D"};
  std::vector<std::string> others = {"1", "-", ".", "\xC2\xB7", "\xCC\x81"};
  others.insert(others.end(), starts.begin(), starts.end());
  return rc::gen::apply(
      [](const std::string& start, const std::vector<std::string>& rest) {
        std::string name = start;
        for (const std::string& character : rest) name += character;
        return name;
      },
      part(starts), rc::gen::container<std::vector<std::string>>(part(others)));
}

rc::Gen<std::string> AttributeName() {
  const auto prefix =
      rc::gen::oneOf(NcName(), rc::gen::elementOf(std::vector<std::string>{
                                   "xml", "kel", "v", "w", "NS0", "xsi", "xmlns", "xmlfoo"}));
  const auto local_name =
      rc::gen::oneOf(NcName(), rc::gen::elementOf(std::vector<std::string>{
                                   "id", "name", "sw_version", "xsi", "lang", "base"}));
  return rc::gen::oneOf(local_name, rc::gen::apply([](const std::string& a,
                                                      const std::string& b) { return a + ":" + b; },
                                                   prefix, local_name));
}

rc::Gen<Change> AnyChange() {
  return rc::gen::build<Change>(
      rc::gen::set(&Change::kind, rc::gen::inRange<std::size_t>(0, std::size(kChanges))),
      rc::gen::set(&Change::texts, rc::gen::container<std::vector<std::string>>(3, XmlText())),
      rc::gen::set(&Change::attribute_name, AttributeName()),
      rc::gen::set(&Change::process,
                   rc::gen::map(rc::gen::inRange(0, 4), [](int i) { return ProcType(i); })),
      rc::gen::set(&Change::type,
                   rc::gen::map(rc::gen::inRange(-1, 8), [](int i) { return ParameterType(i); })));
}

/// Checks a property of projects that any changes make.
template <typename Property>
void CheckForAnyProject(Schema schema, Property property) {
  Trip trip(schema);
  const bool holds = rc::check([&] {
    const auto changes =
        *rc::gen::container<std::vector<Change>>(AnyChange()).as("changes of a new project");
    trip.Restart();
    trip.returned.CleanProjectDatabase();
    for (const Change& change : changes) kChanges[change.kind].second(trip, change);
    property(trip);
  });
  EXPECT_TRUE(holds);
}

TEST_P(RoundTrip, AnyProject_ComesBack) {
  CheckForAnyProject(GetParam(), [](Trip& trip) {
    RC_ASSERT(trip.ExportAndLoad());
    RC_ASSERT(WhatWasLost(trip) == std::vector<std::string>());
  });
}

TEST(RoundTripOfAnyProject, IsNotChangedByItsExport) {
  CheckForAnyProject(Schema::kNone, [](Trip& trip) {
    const ProjectContents before = GetProjectContents(trip.project);
    trip.project.ExportProjectData(trip.path());
    RC_ASSERT(AllDifferences(before, trip.project).empty());
  });
}

}  // namespace
