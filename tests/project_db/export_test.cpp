#include <ctime>
#include <filesystem>
#include <iomanip>
#include <sstream>

#include <kel/version.h>
#include <projectdb/vocabulary.h>

#include "testing/clock.h"
#include "testing/files.h"
#include "testing/flow_processes.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr char kNamespaceInFile[] = "http://schema.kel.example/wdp_proj";

class Export : public testing::Test {
 protected:
  XmlElement ExportedRoot() const {
    database_.ExportProjectData(path_);
    return ReadXmlFile(path_);
  }
  std::string ExportedText() const {
    database_.ExportProjectData(path_);
    return ReadFile(path_);
  }
  std::string ExportedSection(const std::string& name) const {
    return Show(ExportedRoot().Child(name));
  }

  /// Loads a project file of the given content from the directory.
  void Load(const std::string& xml) {
    WriteFile(directory_ / "loaded.xml", xml);
    database_.LoadProjectData(directory_ / "loaded.xml", "");
  }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "exported.xml";
  KelProjectDatabase database_;
};

/// With a new project.
class ExportOfNewProject : public Export {
 protected:
  ExportOfNewProject() { database_.CreateNewProjectDatabase("soc"); }
};

/// With a project that has something in every section.
class ExportOfCompleteProject : public Export {
 protected:
  ExportOfCompleteProject() { Load(CompleteProjectXml()); }
};

TEST_F(Export, ExportProjectData_NoProject_WritesNoFileAndLeavesAnExistingOne) {
  database_.ExportProjectData(path_);
  EXPECT_FALSE(std::filesystem::exists(path_));
  WriteFile(path_, "former");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadFile(path_), "former");
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyPath_DoesNothing) {
  const WorkingDirectory working_directory(directory_.path());
  database_.ExportProjectData("");
  EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
}

TEST_F(ExportOfNewProject, ExportProjectData_RelativePath_IsBelowTheWorkingDirectory) {
  const WorkingDirectory working_directory(directory_.path());
  database_.ExportProjectData("exported.xml");
  EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(ExportOfNewProject, ExportProjectData_NameOfAnyEndingInAnyCharacters_IsWritten) {
  for (const std::string& path : {directory_ / "project.backup", directory_ / "größe 漢.xml"}) {
    database_.ExportProjectData(path);
    EXPECT_EQ(ReadXmlFile(path).name, "kel:project");
  }
}

TEST_F(ExportOfNewProject, ExportProjectData_LongerFileThere_IsReplaced) {
  WriteFile(path_, std::string(100000, 'x'));
  EXPECT_EQ(ExportedRoot().name, "kel:project");
}

TEST_F(ExportOfCompleteProject, ExportProjectData_DeclaresUtf8AndNothingElse) {
  const std::string text = ExportedText();
  EXPECT_THAT(text, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\""));
  EXPECT_EQ(text.find("<?", 1), std::string::npos);
  EXPECT_EQ(text.find("<!"), std::string::npos);
}

TEST_F(ExportOfCompleteProject, ExportProjectData_IsPrettyPrinted) {
  const std::string text = ExportedText();
  for (const char* line : {"\n<kel:project ", "\n  <kel:device_info>\n", "\n    <kel:family ",
                           "\n  </kel:device_info>\n", "\n      <kel:ip_src_file "}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST_F(ExportOfCompleteProject,
       ExportProjectData_ElementsHaveNamespacePrefixNoTextAndNoOtherPrefix) {
  const XmlElement root = ExportedRoot();
  std::vector<std::string> with_prefix;
  for (const XmlElement* element : AllElements(root)) {
    EXPECT_EQ(element->namespace_uri, kNamespaceInFile) << element->name;
    EXPECT_THAT(element->name, StartsWith("kel:"));
    EXPECT_EQ(element->text.find_first_not_of(" \n"), std::string::npos) << element->text;
    for (const auto& [name, value] : element->attributes) {
      if (name.find(':') != std::string::npos) with_prefix.push_back(name);
    }
  }
  EXPECT_THAT(with_prefix, ElementsAre("xsi:schemaLocation"));
}

TEST_F(ExportOfCompleteProject, ExportProjectData_SecondExport_IsTheSameButForTheTimeStamp) {
  const std::string first = ExportedText();
  EXPECT_EQ(WithoutTimeStamp(ExportedText()), WithoutTimeStamp(first));
}

TEST_F(ExportOfCompleteProject, ExportProjectData_LeavesTheProjectAsItWasAndPostsNothing) {
  const MessageRecorder recorder;
  database_.ExportProjectData(path_);
  EXPECT_THAT(AllDifferences(CompleteProject(directory_.path()), database_), IsEmpty());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(ExportOfNewProject, ExportProjectData_NewProject_RootHasTheFixedAttributesOnly) {
  const XmlElement root = ExportedRoot();
  EXPECT_EQ(root.name, "kel:project");
  EXPECT_THAT(root.attributes,
              UnorderedElementsAre(
                  Pair("xsi:schemaLocation", std::string(kNamespaceInFile) + " wdp_proj.xsd"),
                  Pair("name", "soc"), Pair("sw_version", KEL_VERSION_NO),
                  Pair("last_change_date", testing::_)));
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyName_IsAnEmptyAttribute) {
  database_.AddProjectInfoAttribute("name", "");
  EXPECT_EQ(ExportedRoot().attributes.at("name"), "");
}

TEST_F(Export, ExportProjectData_LoadedRootAttributes_AreWrittenBackButTheDeclarationsAndStamps) {
  Load(ProjectXml("", R"(name="p" board="b7" note="" xmlns:v="urn:v" v:id="3" )"
                      R"(sw_version="0.0.1-other" xsi:schemaLocation="urn:other other.xsd" )"
                      R"(xsi:noNamespaceSchemaLocation="other.xsd" xmlns:unused="urn:unused")"));
  EXPECT_THAT(ExportedRoot().attributes,
              UnorderedElementsAre(
                  Pair("xsi:schemaLocation", std::string(kNamespaceInFile) + " wdp_proj.xsd"),
                  Pair("name", "p"), Pair("sw_version", KEL_VERSION_NO),
                  Pair("last_change_date", testing::_), Pair("board", "b7"), Pair("note", ""),
                  Pair("v:id", "3")));
  EXPECT_EQ(ExportedText().find("unused"), std::string::npos);
}

TEST_F(Export, ExportProjectData_TimeStamp_IsTheLocalTimeOfTheExport) {
  Load(ProjectXml("", "last_change_date=\"long ago\""));
  const std::time_t before = Now();
  const std::string text = ExportedRoot().attributes.at("last_change_date");
  const std::time_t after = Now();
  std::tm local{};
  std::istringstream parts(text);
  ASSERT_TRUE(parts >> std::get_time(&local, "%a %b %d %Y %H:%M:%S")) << text;
  local.tm_isdst = -1;
  const std::time_t stamp = std::mktime(&local);
  EXPECT_LE(before, stamp);
  EXPECT_LE(stamp, after);
}

TEST_F(ExportOfNewProject, ExportProjectData_SectionsAreInTheFixedOrder) {
  EXPECT_THAT(
      ChildNames(ExportedRoot()),
      ElementsAre("kel:device_info", "kel:design_info", "kel:constraint_info", "kel:isf_info",
                  "kel:sim_info", "kel:misc_info", "kel:ip_info", "kel:synthesis",
                  "kel:place_and_route", "kel:bitstream_generation", "kel:debugger"));
}

TEST_F(Export, ExportProjectData_TagsOutsideTheFormat_AreNotWritten) {
  Load(
      ProjectXml("<package_info/><security/><other/><constraint_info><io_place_file name=\"a\"/>"
                 "<core_place_file name=\"b\"/></constraint_info>"));
  const XmlElement root = ExportedRoot();
  EXPECT_EQ(root.children.size(), 11U);
  EXPECT_EQ(Show(root.Child("constraint_info")),
            "<constraint_info><inter_file name=\"\"/></constraint_info>");
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptySections_AreWritten) {
  const XmlElement root = ExportedRoot();
  for (
      const std::string section :
      {R"(<device_info><family name="Varel"/><device name="Q8R25"/><timing_model name=""/></device_info>)",
       R"(<design_info def_veri_version="" def_vhdl_version=""><top_module name=""/><top_vhdl_arch name=""/></design_info>)",
       R"(<constraint_info><inter_file name=""/></constraint_info>)", "<isf_info/>", "<sim_info/>",
       "<misc_info/>", "<ip_info/>", "<synthesis/>", "<place_and_route/>",
       "<bitstream_generation/>", "<debugger/>"}) {
    EXPECT_EQ(Show(root.Child(section.substr(1, section.find_first_of(" />", 1) - 1))), section);
  }
}

TEST_F(ExportOfCompleteProject, ExportProjectData_FilledSections_AreWrittenAsTheyWereLoaded) {
  const XmlElement loaded = ReadXmlFile(directory_ / "loaded.xml");
  const XmlElement root = ExportedRoot();
  for (const XmlElement& section : loaded.children) {
    // Parameters have no order of their own.
    EXPECT_EQ(ShowSortedChildren(root.Child(section.name)), ShowSortedChildren(section));
    EXPECT_EQ(root.Child(section.name).attributes, section.attributes);
    if (section.name != "synthesis") {
      EXPECT_EQ(Show(root.Child(section.name)), Show(section));
    }
  }
}

TEST_F(ExportOfNewProject, ExportProjectData_ManyParameterMaps_AreAllWritten) {
  constexpr int kMaps = 100;
  for (int i = 0; i < kMaps; ++i) {
    const std::string map = "map_" + std::to_string(i);
    database_.AddFlowProcessParameterMap(e_synthesis, map);
    for (const char* name : {"level", "mode"}) {
      ASSERT_TRUE(database_.AddFlowProcessParameter(e_synthesis, map, name, map, e_string));
    }
  }
  const std::string exported = ExportedText();
  for (int i = 0; i < kMaps; ++i) {
    const std::string map = "map_" + std::to_string(i);
    for (const char* name : {"level", "mode"}) {
      EXPECT_THAT(exported, HasSubstr("<kel:" + map + " name=\"" + name + "\" value=\"" + map +
                                      "\" value_type=\"e_string\"/>"));
    }
  }
}

TEST_F(ExportOfNewProject, ExportProjectData_ToolSetBackToEmpty_IsOmitted) {
  database_.SetSynthesisExecutableName("syn");
  EXPECT_EQ(ExportedSection("synthesis"), R"(<synthesis tool_name="syn"/>)");
  database_.SetSynthesisExecutableName("");
  EXPECT_EQ(ExportedSection("synthesis"), "<synthesis/>");
}

TEST_F(ExportOfNewProject, ExportProjectData_RenamedProcess_IsWrittenUnderItsNameInItsPlace) {
  database_.SetFlowProcessName(e_place_and_route, "layout");
  EXPECT_EQ(ExportedRoot().children[8].name, "kel:layout");
}

TEST_F(ExportOfNewProject, ExportProjectData_ProcessUnderTheNameOfAnotherOrASection_IsWritten) {
  for (const char* name :
       {"debugger", "device_info", "design_info", "constraint_info", "isf_info", "sim_info",
        "misc_info", "ip_info", "package_info", "security", "project"}) {
    database_.SetFlowProcessName(e_synthesis, name);
    EXPECT_EQ(ExportedRoot().children.at(7).name, std::string("kel:") + name);
  }
}

// Parameters that a load would read otherwise.

TEST_F(ExportOfNewProject, ExportProjectData_ParameterUnderAnotherKey_IsWrittenUnderItsName) {
  auto* map = database_.AddFlowProcessParameterMap(e_debugger, "param");
  ASSERT_TRUE(KelProjectDatabase::InsertOrAssignParameterToMap(*map, "key",
                                                               Parameter("name", "v", e_string)));
  EXPECT_EQ(ExportedSection("debugger"),
            R"(<debugger><param name="name" value="v" value_type="e_string"/></debugger>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_TwoKeysOfOneName_AreWrittenEach) {
  auto* map = database_.AddFlowProcessParameterMap(e_debugger, "param");
  for (const char* key : {"a", "b"}) map->emplace(key, Parameter("p", key, e_option));
  EXPECT_THAT(ShowSortedChildren(ExportedRoot().Child("debugger")),
              ElementsAre(R"(<param name="p" value="a" value_type="e_option"/>)",
                          R"(<param name="p" value="b" value_type="e_option"/>)"));
}

TEST_F(ExportOfNewProject, ExportProjectData_ValueThatDoesNotGoWithItsType_IsWritten) {
  auto* map = database_.AddFlowProcessParameterMap(e_debugger, "param");
  for (const int type : {0, 1, 2, 3, 4, 7}) {
    const std::string name = std::to_string(type);
    map->emplace(name, Parameter(name, type == e_noarg ? "on" : "", ParameterType(type)));
  }
  EXPECT_THAT(
      ShowSortedChildren(ExportedRoot().Child("debugger")),
      ElementsAre(R"(<param name="0" value="" value_type="e_string"/>)",
                  R"(<param name="1" value="" value_type="e_bool"/>)",
                  R"(<param name="2" value="" value_type="e_option"/>)",
                  R"(<param name="3" value="on" value_type="e_noarg"/>)",
                  R"(<param name="4" value=""/>)", R"(<param name="7" value="" value_type=""/>)"));
}

TEST_F(Export, ExportProjectData_UnnamedProcesses_AreWrittenUnderTheirDefaultNames) {
  database_.SetupProjectDatabase();
  for (const ProcType type : kProcesses) {
    database_.SetFlowProcessExecutableName(type, "tool" + std::to_string(type));
    database_.AddFlowProcessParameter(type, "param", "p", std::to_string(type), kNoParameterType);
  }
  const XmlElement root = ExportedRoot();
  for (const ProcType type : kProcesses) {
    const std::string number = std::to_string(type);
    const std::string name = kFlowProcesses.at(static_cast<std::size_t>(type)).name;
    EXPECT_EQ(Show(root.children.at(7 + static_cast<std::size_t>(type))),
              "<" + name + " tool_name=\"tool" + number + "\"><param name=\"p\" value=\"" + number +
                  "\"/></" + name + ">");
    EXPECT_EQ(database_.GetFlowProcess(type)->name, "");
  }
}

}  // namespace
