#include <cstdint>
#include <filesystem>
#include <ostream>

#include <rapidcheck.h>

#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;

using namespace std::string_literals;

const std::string kSchema = ShippedSchema();

/// What a load can be given to check the file with.
enum class Schema { kNone, kGiven, kBesideTheFile };

void PrintTo(Schema schema, std::ostream* out) {
  *out << (schema == Schema::kNone    ? "no schema"
           : schema == Schema::kGiven ? "given schema"
                                      : "schema beside the file");
}

/// A project, and the project that comes back when it is exported and loaded.
class Trip {
 public:
  explicit Trip(Schema schema) : schema_(schema) {
    if (schema == Schema::kBesideTheFile) {
      std::filesystem::copy_file(kSchema, directory_ / "wdp_proj.xsd");
    }
    Restart();
  }

  /// Begins with a new project in the directory of the file, of which nothing has come back.
  void Restart() {
    returned.CleanProjectDatabase();
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
    return returned.LoadProjectData(path_, schema_ == Schema::kGiven ? kSchema : "");
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
        if (!has_text) parameter.type = kNoParameterType;
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

const auto kAllSchemas = testing::Values(Schema::kNone, Schema::kGiven, Schema::kBesideTheFile);

INSTANTIATE_TEST_SUITE_P(Schemas, RoundTrip, kAllSchemas);

TEST_P(RoundTrip, CompleteProject_ComesBackWithTheStampsOfTheFileAndNoMessageButThatItIsRead) {
  ASSERT_TRUE(trip_.Merge(CompleteProjectXml()));
  const std::size_t before = trip_.messages().size();
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  EXPECT_EQ(trip_.messages().size(), before + 1);
  EXPECT_EQ(trip_.messages().back(), ReadingMessage(trip_.path()));
  const auto attributes = ReadXmlFile(trip_.path()).attributes;
  EXPECT_EQ(trip_.returned.GetProjectSoftwareVersion(), attributes.at("sw_version"));
  EXPECT_EQ(trip_.returned.GetProjectLastModifyTime(), attributes.at("last_change_date"));
}

TEST_P(RoundTrip, UnnamedProcesses_ComeBackUnderTheirDefaultNamesWithAllParameters) {
  trip_.project.CleanProjectDatabase();
  trip_.project.SetupProjectDatabase();
  for (int type = 0; type < 4; ++type) {
    trip_.project.SetFlowProcessExecutableName(ProcType(type), "tool");
    trip_.project.AddFlowProcessParameter(ProcType(type), "param", "p", "v", e_bool);
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
  trip_.project.AddDebuggerParameter("p", "v", e_string);
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_EQ(trip_.returned.GetFlowProcess(e_debugger)->name, "debugger");
  EXPECT_EQ(trip_.returned.GetDebuggerParameterValue("p"), "v");
}

TEST_P(RoundTrip, Parameters_ComeBackFromTheirMapsButTheirUnknownTypesAndPlainOnes) {
  trip_.project.AddSynthesisParameter("p", "1", e_string);
  trip_.project.AddSynthesisVerilogDefineParameter("p", "2");
  trip_.project.AddSynthesisVerilogMacro("p", "3");
  trip_.project.AddPlaceAndRouteParameter("p", "4", e_option);
  for (int i = 0; i < 5000; ++i) {
    trip_.project.AddSynthesisParameter("p" + std::to_string(i), "v", e_string);
  }
  trip_.project.AddDebuggerParameter("p", "v", ParameterType(7));
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  EXPECT_EQ(trip_.returned.GetDebuggerParameter("p")->type, kNoParameterType);
  trip_.project.GetFlowProcess(e_debugger)->parameters.emplace_back("plain", "v", e_string);
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(trip_.returned.GetFlowProcess(e_debugger)->parameters, IsEmpty());
}

class RoundTripOfText : public RoundTrip {
 protected:
  void ExpectBackInEveryField(const std::string& text) {
    SCOPED_TRACE(testing::PrintToString(text));
    trip_.Restart();
    KelProjectDatabase& project = trip_.project;
    project.SetProjectName(text);
    project.SetDeviceFamily(text);
    project.SetDeviceModel(text);
    project.SetDeviceTimingModel(text);
    project.SetDesignTopModuleName(text);
    project.SetDesignTopVHDLArchitecture(text);
    project.AddDesignRTLFile(text, text, text);
    std::vector<DesignFile> files = {{text, text, text}};
    project.AddSimulationTestBenchFile(files);
    project.AddMiscellaneousFile(text);
    project.AddProjectInfoAttribute("note", text);
    project.AddProjectInfoAttribute("v:note", text);
    project.SetFlowProcessExecutableName(e_debugger, text);
    project.AddDebuggerParameter(text, text, text.empty() ? e_noarg : e_string);
    project.AddSynthesisVerilogMacro(text, text);
    ASSERT_TRUE(trip_.ExportAndLoad());
    EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  }
};

INSTANTIATE_TEST_SUITE_P(Schemas, RoundTripOfText, kAllSchemas);

TEST_P(RoundTripOfText, EveryField_ComesBack) {
  for (const std::string text : {"",
                                 "a\tb",
                                 "a\nb",
                                 "a\rb",
                                 "a\r\nb\r\r\n\n",
                                 " ",
                                 "  a  ",
                                 "a   b",
                                 "\t\n\r \r\n",
                                 "\"a\"",
                                 "'a'",
                                 "'\"'\"",
                                 "<a b='c'>&amp;</a>",
                                 "a]]>b",
                                 "<!-- a -- b -->",
                                 "<?a b?>",
                                 "&#x41; &lt; &nosuch; %41 \\n",
                                 "{} {0} %s %n {{",
                                 "\x7F\u0080\u009F",
                                 "a\u0085b",
                                 "\u00A0",
                                 "a\u2028b\u2029",
                                 "\uFEFFa\uFEFF",
                                 "e\u0301",
                                 "\u05D0\u05D1",
                                 "\uD7FF",
                                 "\uE000",
                                 "\uFFFD",
                                 "\uFDD0\U0001FFFF",
                                 "\U00010000",
                                 "\U0001F600",
                                 "\U0010FFFF"}) {
    ExpectBackInEveryField(text);
  }
  ExpectBackInEveryField(Repeated("x", 100000));
  ExpectBackInEveryField(Repeated("\U0001F600\u00FC", 10000));
}

TEST_P(RoundTrip, ConstraintFileNamesWithMarkup_ComeBack) {
  trip_.project.AddTimingConstraintFile(" <a>\t&\n\"\xC3\xBC.sdc");
  trip_.project.SetInterfaceConstraint(" <a>\t&\n\"\xC3\xBC.interface.csv");
  ASSERT_TRUE(trip_.ExportAndLoad());
  EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
}

// Those of a line may stand together.
const std::vector<std::string> kAttributeNames[] = {
    {"board", "_", "a.b-c_d", "größe", "名"},
    {"v:id", "w:id", "x:id", "id"},
    {"v:a", "v:b", "v:c"},
    {"kel:id", "kel:name"},
    {"kel:id", "v:id", "id"},
    {"v:name", "v:sw_version", "v:last_change_date", "v:schemaLocation"},
    {"name:a", "sw_version:a"},
    {"xml:note", "xml:name", "xml:lang", "xml:space", "xml:base", "xml:id"},
    {"xmlfoo", "xmlfoo:a", "XML", "XML:a", "xmlns2", "xmlnsx:a", "xml", "a:xmlns"},
    {"xsi2", "xsi2:type", "xsix:nil"},
    {"ns1:a", "NS0:a", "NS1:a", "ns0:a", "_:a", "p0:a"},
    {"v:a", "V:a", "KEL:a", "Xsi:a"},
    {"v.1-x:a", "ü:a", "а:б", "v:e\u0301"},
    {"v:type", "v:nil"},
    {"type", "nil", "schemaLocation"}};

TEST_P(RoundTrip, InfoAttributes_ComeBack) {
  for (const std::vector<std::string>& names : kAttributeNames) {
    SCOPED_TRACE(testing::PrintToString(names));
    trip_.Restart();
    for (const std::string& name : names) {
      trip_.project.AddProjectInfoAttribute(name, "::: % of " + name);
    }
    ASSERT_TRUE(trip_.ExportAndLoad());
    EXPECT_THAT(WhatWasLost(trip_), IsEmpty());
  }
}

TEST_P(RoundTrip, InfoAttributesThatXmlGivesAMeaning_ComeBack) {
  for (const auto& [name, value] :
       {std::pair("xml:lang", "de-CH"), std::pair("xml:space", "preserve"),
        std::pair("xml:base", "http://127.0.0.1/elsewhere/"), std::pair("xml:id", "i1")}) {
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

/// A change of a project, as values that can be printed and made smaller.
struct Change {
  std::size_t kind;
  std::vector<std::string> texts;  ///< Three texts.
  std::string attribute_name;
  ProcType process;
  ParameterType type;
};

using ApplyChange = void (*)(KelProjectDatabase&, const Change&, const std::string& text);

void ChangeContents(KelProjectDatabase& db, const Change& c, const std::string& text) {
  ProjectContents project = GetProjectContents(db);
  if (!text.empty()) project.design_isf.isf_files.push_back(text);
  project.design_info.def_veri_version = c.texts[1];
  project.design_info.def_vhdl_version = c.texts[2];
  project.ip_info.ips.push_back({text, c.texts[1], {{c.texts[2]}}});
  SetProjectContents(db, project);
}

const std::pair<const char*, ApplyChange> kChanges[] = {
    {"name", [](auto& db, auto&, auto& text) { db.SetProjectName(text); }},
    {"version", [](auto& db, auto&, auto& text) { db.SetProjectSoftwareVersion(text); }},
    {"family", [](auto& db, auto&, auto& text) { db.SetDeviceFamily(text); }},
    {"device", [](auto& db, auto&, auto& text) { db.SetDeviceModel(text); }},
    {"timing", [](auto& db, auto&, auto& text) { db.SetDeviceTimingModel(text); }},
    {"top", [](auto& db, auto&, auto& text) { db.SetDesignTopModuleName(text); }},
    {"arch", [](auto& db, auto&, auto& text) { db.SetDesignTopVHDLArchitecture(text); }},
    {"interface",
     [](auto& db, auto&, auto& text) { db.SetInterfaceConstraint(text + ".interface.csv"); }},
    {"design file",
     [](auto& db, auto& c, auto& text) { db.AddDesignRTLFile(text, c.texts[1], c.texts[2]); }},
    {"test bench",
     [](auto& db, auto& c, auto& text) { db.AddSimulationTestBenchFile(text, c.texts[1]); }},
    {"test benches",
     [](auto& db, auto& c, auto& text) {
       std::vector<DesignFile> files = {{text, c.texts[1], c.texts[2]}, {"a", "", ""}};
       db.AddSimulationTestBenchFile(files);
     }},
    {"miscellaneous", [](auto& db, auto&, auto& text) { db.AddMiscellaneousFile(text); }},
    {"constraint",
     [](auto& db, auto&, auto& text) {
       try {
         db.AddTimingConstraintFile(text + ".sdc");
       } catch (const std::filesystem::filesystem_error&) {
         // A name that is too long for a file.
       }
     }},
    {"tool",
     [](auto& db, auto& c, auto& text) { db.SetFlowProcessExecutableName(c.process, text); }},
    {"parameter",
     [](auto& db, auto& c, auto& text) {
       db.AddFlowProcessParameter(c.process, "param", text, c.texts[1], c.type);
     }},
    {"switch",
     [](auto& db, auto& c, auto& text) {
       db.AddFlowProcessParameter(c.process, "param", text, "", e_noarg);
     }},
    {"define", [](auto& db, auto& c,
                  auto& text) { db.AddSynthesisVerilogDefineParameter(text, c.texts[1]); }},
    {"macro", [](auto& db, auto& c, auto& text) { db.AddSynthesisVerilogMacro(text, c.texts[1]); }},
    {"attribute",
     [](auto& db, auto& c, auto& text) { db.AddProjectInfoAttribute(c.attribute_name, text); }},
    {"what only a file brings", ChangeContents}};

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
    for (const Change& change : changes)
      kChanges[change.kind].second(trip.project, change, change.texts[0]);
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
