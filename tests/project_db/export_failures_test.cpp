#include <filesystem>
#include <functional>
#include <stdexcept>

#include <xercesc/util/IOException.hpp>

#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_differences.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;

using namespace std::string_literals;

/// The text of the std::runtime_error that an export ends in; "" if it ends well.
std::string ExportError(const KelProjectDatabase& database, const std::string& path) {
  return ErrorOf([&] { database.ExportProjectData(path); });
}

auto IsWritingErrorFor(const std::string& path) {
  const std::string prefix = "Failed writing XML file " + path + ": ";
  return AllOf(StartsWith(prefix), EndsWith("\n"), SizeIs(testing::Gt(prefix.size() + 1)));
}

class ExportFailures : public testing::Test {
 protected:
  ExportFailures() { database_.CreateNewProjectDatabase("soc"); }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "exported.xml";
  KelProjectDatabase database_;
};

TEST_F(ExportFailures, ExportProjectData_BadPath_ThrowsTheXmlLibrarysExceptionAndCreatesNoFile) {
  const std::pair<const char*, std::string> cases[] = {
      {"missing directory", directory_ / "missing/p.xml"},
      {"a directory", directory_.path().string()},
      {"NUL in the name", path_ + "\0.xml"s},
      {"name too long", directory_ / (std::string(300, 'n') + ".xml")}};
  for (const auto& [name, path] : cases) {
    SCOPED_TRACE(name);
    std::string message;
    try {
      database_.ExportProjectData(path);
    } catch (const xercesc::IOException& exception) {
      message = Utf8(exception.getMessage());
    }
    EXPECT_THAT(message, HasSubstr(directory_.path().filename().string()));
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
  }
  EXPECT_EQ(ExportError(database_, path_), "");
}

TEST_F(ExportFailures, ExportProjectData_CannotOpen_TextIsCheckedFirst) {
  database_.SetProjectName("\x01");
  const std::string path = directory_ / "missing/p.xml";
  EXPECT_THAT(ExportError(database_, path), IsWritingErrorFor(path));
}

struct TextField {
  const char* name;
  std::function<void(KelProjectDatabase&, const std::string&)> set;
  bool takes_any_bytes = true;  ///< Or only UTF-8.
};

const TextField kTextFields[] = {
    {"project name", [](auto& db, auto& text) { db.SetProjectName(text); }},
    {"device family", [](auto& db, auto& text) { db.SetDeviceFamily(text); }},
    {"device model", [](auto& db, auto& text) { db.SetDeviceModel(text); }},
    {"timing model", [](auto& db, auto& text) { db.SetDeviceTimingModel(text); }},
    {"top module", [](auto& db, auto& text) { db.SetDesignTopModuleName(text); }},
    {"top VHDL architecture", [](auto& db, auto& text) { db.SetDesignTopVHDLArchitecture(text); }},
    {"design file name", [](auto& db, auto& text) { db.AddDesignRTLFile(text, "", ""); }},
    {"design file version", [](auto& db, auto& text) { db.AddDesignRTLFile("a", text, ""); }},
    {"design file library", [](auto& db, auto& text) { db.AddDesignRTLFile("a", "", text); }},
    {"test bench name", [](auto& db, auto& text) { db.AddSimulationTestBenchFile(text, ""); }},
    {"test bench version", [](auto& db, auto& text) { db.AddSimulationTestBenchFile("a", text); }},
    {"test bench library",
     [](auto& db, auto& text) {
       std::vector<DesignFile> files = {{"a", "", text}};
       db.AddSimulationTestBenchFile(files);
     }},
    {"miscellaneous file", [](auto& db, auto& text) { db.AddMiscellaneousFile(text); }},
    {"timing constraint file",
     [](auto& db, auto& text) { db.AddTimingConstraintFile(text + ".sdc"); }, false},
    {"interface constraint file",
     [](auto& db, auto& text) { db.SetInterfaceConstraint(text + ".interface.csv"); }, false},
    {"tool name", [](auto& db, auto& text) { db.SetPlaceAndRouteExecutableName(text); }},
    {"parameter name", [](auto& db, auto& text) { db.AddDebuggerParameter(text, "v", e_string); }},
    {"parameter value", [](auto& db, auto& text) { db.AddDebuggerParameter("p", text, e_string); }},
    {"info attribute value", [](auto& db, auto& text) { db.AddProjectInfoAttribute("a", text); }},
    {"info attribute value with prefix",
     [](auto& db, auto& text) { db.AddProjectInfoAttribute("v:a", text); }},
};

class ExportOfBadText : public ExportFailures, public testing::WithParamInterface<TextField> {
 protected:
  /// Expects that a new project with the text in the field is not written.
  void ExpectRefused(const std::string& text) {
    SCOPED_TRACE(testing::PrintToString(text));
    database_.CleanProjectDatabase();
    database_.CreateNewProjectDatabase("soc");
    GetParam().set(database_, text);
    const auto before = GetProjectContents(database_);
    std::filesystem::remove(path_);
    EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
    EXPECT_FALSE(std::filesystem::exists(path_));
    WriteFile(path_, "former");
    EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
    EXPECT_EQ(ReadFile(path_), "former");
    EXPECT_THAT(AllDifferences(before, database_), IsEmpty());
    EXPECT_THAT(recorder_.messages(), IsEmpty());
  }
};

TEST_P(ExportOfBadText, CharacterThatXmlForbids_IsAnErrorWithoutMessageFileOrChange) {
  for (const std::string& text : {"a\x01"s, "a\0b"s, "\v"s, "\x1F"s, "\uFFFE"s, "\uFFFFz"s}) {
    ExpectRefused(text);
  }
}

TEST_P(ExportOfBadText, TextThatIsNotUtf8_IsAnErrorWithoutMessageFileOrChange) {
  if (!GetParam().takes_any_bytes) return;
  for (const std::string text :
       {"\x80", "Pr\xFC", "a\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF", "\xED\xA0\x80",
        "\xED\xA0\xBD\xED\xB8\x80", "\xF4\x90\x80\x80", "text \xF5\x80\x80\x80", "\xFF"}) {
    ExpectRefused(text);
  }
}

INSTANTIATE_TEST_SUITE_P(Fields, ExportOfBadText, testing::ValuesIn(kTextFields), ByName());

TEST_F(ExportFailures, ExportProjectData_BadText_ErrorTellsItAndTheCorrectedOneIsWritten) {
  database_.SetProjectName("broken\x01");
  EXPECT_THAT(ExportError(database_, path_), HasSubstr("broken"));
  database_.SetProjectName("a");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(path_).attributes.at("name"), "a");
}

TEST_F(ExportFailures, ExportProjectData_BadTextAndPathThatIsNoText_TellsThePathAsItIs) {
  database_.SetProjectName("\x01");
  const std::string path = directory_ / "pr\xFC.xml";
  EXPECT_THAT(ExportError(database_, path), IsWritingErrorFor(path));
}

TEST_F(ExportFailures, ExportProjectData_BadTextThatTheFileDoesNotKeep_IsNoError) {
  database_.SetProjectCurrentPath("\x01");
  database_.SetProjectSoftwareVersion("\xFF");
  database_.AddProjectInfoAttribute("last_change_date", "\x01");
  database_.GetFlowProcess(e_debugger)->parameters.emplace_back("\x01", "\xFF", e_string);
  EXPECT_EQ(ExportError(database_, path_), "");
}

// What neither an element nor the part of an attribute name before or after its colon can be.
const std::vector<std::string> kNoElementNames = {
    "a b",  " a",   "a ",       "1a",       "-a",        ".a",           "<",
    "a>",   "a=",   "a/b",      "a\nb",     "\xC3\x97",  "a\x01"s,       "\xED\xA0\x80",
    "\xFF", "a\0"s, "param\0"s, "\0param"s, "a\0param"s, "\xEF\xBF\xBE", "a\xE2\x82"s};

class ExportOfBadName : public ExportFailures {
 protected:
  /// Expects that a new project with the name in that place is not written.
  /// @param more names that only this place cannot have
  void ExpectRefused(const std::function<void(const std::string& name)>& set,
                     std::vector<std::string> more) {
    more.insert(more.end(), kNoElementNames.begin(), kNoElementNames.end());
    for (const std::string& name : more) {
      SCOPED_TRACE(testing::PrintToString(name));
      database_.CleanProjectDatabase();
      database_.CreateNewProjectDatabase("soc");
      set(name);
      WriteFile(path_, "former");
      EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
      EXPECT_EQ(ReadFile(path_), "former");
    }
  }
};

TEST_F(ExportOfBadName, OfAProcess_IsAnErrorAndLeavesTheFileThatWasThere) {
  ExpectRefused([&](auto& name) { database_.GetFlowProcess(e_debugger)->name = name; },
                {"x:y", ":a", "a:", ":"});
}

TEST_F(ExportOfBadName, OfAParameterMap_IsAnErrorAndLeavesTheFileThatWasThere) {
  ExpectRefused(
      [&](auto& name) { database_.AddFlowProcessParameter(e_debugger, name, "p", "v", e_string); },
      {"", "x:y", "kel:param", ":a", "a:", ":"});
}

TEST_F(ExportOfBadName, OfAnInfoAttribute_IsAnErrorAndLeavesTheFileThatWasThere) {
  ExpectRefused([&](auto& name) { database_.AddProjectInfoAttribute(name, "v"); },
                {"", ":", ":a", "a:", "a:b:c", "a::b", "a:1", "1:a", "a: b", "a :b", "v:a\0"s});
}

TEST_F(ExportFailures, ExportProjectData_BadProcessName_ErrorTellsTheProcessAndItsName) {
  database_.SetFlowProcessName(e_bitstream_generation, "a b");
  EXPECT_EQ(ExportError(database_, path_),
            "Failed writing XML file " + path_ +
                ": the flow process bitstream_generation has the name \"a b\", which no element "
                "can have\n");
}

TEST_F(ExportFailures, ExportProjectData_BadMapName_ErrorTellsTheProcessAndTheMap) {
  database_.AddFlowProcessParameter(e_synthesis, "my map", "p", "v", e_string);
  EXPECT_EQ(ExportError(database_, path_),
            "Failed writing XML file " + path_ +
                ": a parameter map of the flow process synthesis has the name \"my map\", which no "
                "element can have\n");
}

TEST_F(ExportFailures, ExportProjectData_BadMapNameOfAnUnnamedProcess_IsAnError) {
  database_.CleanProjectDatabase();
  database_.SetupProjectDatabase();
  database_.AddFlowProcessParameter(e_synthesis, "my map", "p", "v", e_string);
  EXPECT_THAT(ExportError(database_, path_), HasSubstr("my map"));
}

TEST_F(ExportFailures, ExportProjectData_BadNameOfAMapWithoutParameters_IsNoError) {
  EXPECT_FALSE(database_.AddFlowProcessParameter(e_synthesis, "my map", "p", "", e_string));
  EXPECT_TRUE(database_.AddFlowProcessParameterList(e_synthesis, "syn opts", {}));
  EXPECT_EQ(ExportError(database_, path_), "");
  EXPECT_EQ(ReadXmlFile(path_).children.size(), 11U);
}

TEST_F(ExportFailures, ExportProjectData_BadMapNameAfterItsParametersWereErased_IsNoError) {
  database_.AddFlowProcessParameter(e_synthesis, "my map", "p", "v", e_string);
  ASSERT_NE(ExportError(database_, path_), "");
  database_.FindFlowProcessParameterMap(e_synthesis, "my map")->clear();
  EXPECT_EQ(ExportError(database_, path_), "");
}

}  // namespace
