#include <algorithm>
#include <cctype>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <future>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kel/version.h>
#include <projectdb/project_db.h>

#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/project_snapshot.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using projectdb::DesignFile;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterType;
using projectdb::ProcType;
using test_support::AllElements;
using test_support::Attributes;
using test_support::ChildNames;
using test_support::CompleteProjectXml;
using test_support::MessageRecorder;
using test_support::ProjectXml;
using test_support::ReadFile;
using test_support::ReadXmlFile;
using test_support::Show;
using test_support::ShowSortedChildren;
using test_support::TakeSnapshot;
using test_support::TemporaryDirectory;
using test_support::WithoutTimeStamp;
using test_support::WorkingDirectory;
using test_support::WriteFile;
using test_support::XmlElement;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;
using testing::UnorderedElementsAre;

constexpr char kNamespace[] = "http://schema.kel.example/wdp_proj";

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

  std::string ExportedAttribute(const std::string& name) const {
    return ExportedRoot().attributes.at(name);
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

// Whether there is anything to write.

TEST_F(Export, ExportProjectData_NoProject_WritesNoFile) {
  database_.ExportProjectData(path_);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(Export, ExportProjectData_NoProject_LeavesAnExistingFile) {
  WriteFile(path_, "former");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadFile(path_), "former");
}

TEST_F(ExportOfNewProject, ExportProjectData_CleanedProject_WritesNoFile) {
  database_.CleanProjectDatabase();
  database_.ExportProjectData(path_);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyPath_DoesNothing) {
  const WorkingDirectory working_directory(directory_.path());
  database_.ExportProjectData("");
  EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
}

// The file that is written.

TEST_F(ExportOfNewProject, ExportProjectData_RelativePath_IsBelowTheWorkingDirectory) {
  const WorkingDirectory working_directory(directory_.path());
  database_.ExportProjectData("exported.xml");
  EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(ExportOfNewProject, ExportProjectData_AnyExtension_IsWritten) {
  const std::string path = directory_ / "project.backup";
  database_.ExportProjectData(path);
  EXPECT_EQ(ReadXmlFile(path).name, "kel:project");
}

TEST_F(ExportOfNewProject, ExportProjectData_PathThatIsNotUtf8_IsWrittenUnderItsBytes) {
  const std::string path = directory_ / "pr\xFC.xml";
  database_.ExportProjectData(path);
  EXPECT_EQ(ReadXmlFile(path).name, "kel:project");
}

TEST_F(ExportOfNewProject, ExportProjectData_LongerFileThere_IsReplaced) {
  WriteFile(path_, std::string(100000, 'x'));
  EXPECT_EQ(ExportedRoot().name, "kel:project");
}

TEST_F(ExportOfNewProject, ExportProjectData_SymbolicLink_ReplacesItsTarget) {
  const std::string target = directory_ / "target.xml";
  WriteFile(target, "former");
  std::filesystem::create_symlink(target, path_);
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(target).name, "kel:project");
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

TEST_F(ExportOfCompleteProject, ExportProjectData_HasNoTextBetweenTags) {
  const XmlElement root = ExportedRoot();
  for (const XmlElement* element : AllElements(root)) {
    EXPECT_TRUE(std::all_of(element->text.begin(), element->text.end(),
                            [](unsigned char c) { return std::isspace(c) != 0; }))
        << element->name << ": " << element->text;
  }
}

TEST_F(ExportOfCompleteProject, ExportProjectData_EveryElementIsInTheProjectNamespace) {
  const XmlElement root = ExportedRoot();
  for (const XmlElement* element : AllElements(root)) {
    EXPECT_EQ(element->namespace_uri, kNamespace) << element->name;
  }
}

TEST_F(ExportOfCompleteProject, ExportProjectData_EveryElementHasThePrefix) {
  const XmlElement root = ExportedRoot();
  for (const XmlElement* element : AllElements(root)) {
    EXPECT_THAT(element->name, StartsWith("kel:"));
  }
}

TEST_F(ExportOfCompleteProject, ExportProjectData_NoAttributeButTheSchemaLocationHasAPrefix) {
  const XmlElement root = ExportedRoot();
  std::vector<std::string> with_prefix;
  for (const XmlElement* element : AllElements(root)) {
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

TEST_F(ExportOfCompleteProject, ExportProjectData_ASecondLater_HasAnotherTimeStamp) {
  const std::string first = ExportedAttribute("last_change_date");
  std::this_thread::sleep_for(std::chrono::milliseconds(1010));
  EXPECT_NE(ExportedAttribute("last_change_date"), first);
}

TEST_F(ExportOfCompleteProject, ExportProjectData_LeavesTheProjectAsItWas) {
  const auto before = TakeSnapshot(database_, {"vendor_id"});
  database_.ExportProjectData(path_);
  EXPECT_EQ(TakeSnapshot(database_, {"vendor_id"}), before);
}

TEST_F(ExportOfNewProject, ExportProjectData_PostsNoMessage) {
  database_.ExportProjectData(path_);
  EXPECT_THAT(recorder_.messages(), IsEmpty());
}

// The root element.

TEST_F(ExportOfNewProject, ExportProjectData_RootIsTheProject) {
  EXPECT_EQ(ExportedRoot().name, "kel:project");
}

TEST_F(ExportOfNewProject, ExportProjectData_SchemaLocationIsNamespaceAndFileName) {
  EXPECT_EQ(ExportedAttribute("xsi:schemaLocation"), std::string(kNamespace) + " wdp_proj.xsd");
}

TEST_F(ExportOfNewProject, ExportProjectData_NewProject_RootHasTheFixedAttributesOnly) {
  std::vector<std::string> names;
  for (const auto& [name, value] : ExportedRoot().attributes) names.push_back(name);
  EXPECT_THAT(names,
              UnorderedElementsAre("xsi:schemaLocation", "name", "sw_version", "last_change_date"));
}

TEST_F(ExportOfNewProject, ExportProjectData_Name_IsThatOfTheProject) {
  EXPECT_EQ(ExportedAttribute("name"), "soc");
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyName_IsAnEmptyAttribute) {
  database_.SetProjectName("");
  EXPECT_EQ(ExportedAttribute("name"), "");
}

TEST_F(ExportOfNewProject, ExportProjectData_InfoAttributes_AreAttributesOfTheRoot) {
  database_.AddProjectInfoAttribute("board", "b7");
  database_.AddProjectInfoAttribute("note", "");
  const Attributes attributes = ExportedRoot().attributes;
  EXPECT_THAT(attributes, Contains(Pair("board", "b7")));
  EXPECT_THAT(attributes, Contains(Pair("note", "")));
}

TEST_F(ExportOfNewProject, ExportProjectData_ReservedInfoAttributeName_NamesTheProject) {
  database_.AddProjectInfoAttribute("name", "renamed");
  EXPECT_EQ(ExportedAttribute("name"), "renamed");
}

TEST_F(Export, ExportProjectData_LoadedRootAttributes_AreWrittenBack) {
  Load(ProjectXml("", "name=\"p\" board=\"b7\" xmlns:v=\"urn:v\" v:id=\"3\""));
  const Attributes attributes = ExportedRoot().attributes;
  EXPECT_THAT(attributes, Contains(Pair("board", "b7")));
  EXPECT_THAT(attributes, Contains(Pair("v:id", "3")));
}

TEST_F(Export, ExportProjectData_LoadedSchemaLocation_IsWrittenAfresh) {
  Load(ProjectXml("", "xsi:schemaLocation=\"urn:other other.xsd\""));
  EXPECT_EQ(ExportedAttribute("xsi:schemaLocation"), std::string(kNamespace) + " wdp_proj.xsd");
}

TEST_F(Export, ExportProjectData_LoadedSchemaInstanceAttributes_AreNotWritten) {
  Load(ProjectXml("", "xsi:noNamespaceSchemaLocation=\"other.xsd\""));
  EXPECT_EQ(ExportedRoot().attributes.count("xsi:noNamespaceSchemaLocation"), 0U);
}

TEST_F(Export, ExportProjectData_LoadedNamespaceDeclarations_AreNotWritten) {
  Load(ProjectXml("", "xmlns:unused=\"urn:unused\""));
  EXPECT_EQ(ExportedText().find("unused"), std::string::npos);
}

TEST_F(ExportOfNewProject, ExportProjectData_Version_IsThatOfTheLibrary) {
  EXPECT_EQ(ExportedAttribute("sw_version"), KEL_VERSION_NO);
}

TEST_F(Export, ExportProjectData_ProjectOfAnotherVersion_IsStampedWithThatOfTheLibrary) {
  Load(ProjectXml("", "sw_version=\"0.0.1-other\""));
  EXPECT_EQ(ExportedAttribute("sw_version"), KEL_VERSION_NO);
}

TEST_F(Export, ExportProjectData_ProjectOfAnotherVersion_KeepsItInMemory) {
  Load(ProjectXml("", "sw_version=\"0.0.1-other\""));
  database_.ExportProjectData(path_);
  EXPECT_EQ(database_.GetProjectSoftwareVersion(), "0.0.1-other");
}

TEST_F(Export, ExportProjectData_StoredTime_IsKeptInMemory) {
  Load(ProjectXml("", "last_change_date=\"long ago\""));
  database_.ExportProjectData(path_);
  EXPECT_EQ(database_.GetProjectLastModifyTime(), "long ago");
}

TEST_F(ExportOfNewProject, ExportProjectData_TimeStamp_HasTheClassicForm) {
  EXPECT_THAT(ExportedAttribute("last_change_date"),
              testing::MatchesRegex("(Sun|Mon|Tue|Wed|Thu|Fri|Sat) "
                                    "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                                    "[0-3][0-9] [0-9]{4} [0-2][0-9]:[0-5][0-9]:[0-6][0-9]"));
}

TEST_F(Export, ExportProjectData_TimeStamp_IsTheLocalTimeOfTheExport) {
  Load(ProjectXml("", "last_change_date=\"long ago\""));
  const std::time_t before = std::time(nullptr);
  const std::string text = ExportedAttribute("last_change_date");
  const std::time_t after = std::time(nullptr);
  std::tm local{};
  ASSERT_NE(strptime(text.c_str(), "%a %b %d %Y %H:%M:%S", &local), nullptr) << text;
  local.tm_isdst = -1;
  const std::time_t stamp = std::mktime(&local);
  EXPECT_LE(before, stamp);
  EXPECT_LE(stamp, after);
}

// The sections.

TEST_F(ExportOfNewProject, ExportProjectData_SectionsAreInTheFixedOrder) {
  EXPECT_THAT(
      ChildNames(ExportedRoot()),
      ElementsAre("kel:device_info", "kel:design_info", "kel:constraint_info", "kel:isf_info",
                  "kel:sim_info", "kel:misc_info", "kel:ip_info", "kel:synthesis",
                  "kel:place_and_route", "kel:bitstream_generation", "kel:debugger"));
}

TEST_F(Export, ExportProjectData_SectionsLoadedInAnotherOrder_AreInTheFixedOrder) {
  Load(ProjectXml("<debugger/><ip_info/><isf_info/><device_info/><synthesis/>"));
  const XmlElement root = ExportedRoot();
  ASSERT_EQ(root.children.size(), 11U);
  EXPECT_EQ(root.children.front().name, "kel:device_info");
  EXPECT_EQ(root.children.back().name, "kel:debugger");
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

struct SectionCase {
  const char* section;
  const char* of_new_project;
  const char* of_complete_project;
};

const SectionCase kSections[] = {
    {"device_info",
     R"(<device_info><family name="Varel"/><device name="Q8R25"/><timing_model name=""/></device_info>)",
     R"(<device_info><family name="Orrin"/><device name="O40"/><timing_model name="slow"/></device_info>)"},
    {"design_info",
     R"(<design_info def_veri_version="" def_vhdl_version=""><top_module name=""/><top_vhdl_arch name=""/></design_info>)",
     R"(<design_info def_veri_version="v2k" def_vhdl_version="vhdl08"><top_module name="top"/>)"
     R"(<design_file library="work" name="a.v" version="v2k"/>)"
     R"(<design_file library="lib" name="b.vhd" version=""/><top_vhdl_arch name="rtl"/></design_info>)"},
    {"constraint_info", R"(<constraint_info><inter_file name=""/></constraint_info>)",
     R"(<constraint_info><sdc_file name="c.sdc"/><inter_file name="c.interface.csv"/></constraint_info>)"},
    {"isf_info", "<isf_info/>", R"(<isf_info><isf_file name="d.isf"/></isf_info>)"},
    {"sim_info", "<sim_info/>",
     R"(<sim_info><sim_file library="sim" name="tb.v" version="sv"/></sim_info>)"},
    {"misc_info", "<misc_info/>",
     R"(<misc_info><misc_file library="docs" name="notes.txt" version="1"/></misc_info>)"},
    {"ip_info", "<ip_info/>",
     R"(<ip_info><ip instance_name="u" path="ip/u.cfg"><ip_src_file name="u.v"/></ip></ip_info>)"},
    {"place_and_route", "<place_and_route/>",
     R"(<place_and_route tool_name="pnr"><param name="seed" value="1" value_type="e_string"/></place_and_route>)"},
    {"bitstream_generation", "<bitstream_generation/>",
     R"(<bitstream_generation><param name="zip" value="true" value_type="e_bool"/></bitstream_generation>)"},
    {"debugger", "<debugger/>", R"(<debugger tool_name="dbg"/>)"},
};

TEST_F(ExportOfNewProject, ExportProjectData_EmptySections_AreWritten) {
  const XmlElement root = ExportedRoot();
  for (const SectionCase& c : kSections) EXPECT_EQ(Show(root.Child(c.section)), c.of_new_project);
}

TEST_F(ExportOfCompleteProject, ExportProjectData_FilledSections_AreWritten) {
  const XmlElement root = ExportedRoot();
  for (const SectionCase& c : kSections) {
    EXPECT_EQ(Show(root.Child(c.section)), c.of_complete_project);
  }
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyDevice_IsWrittenAsEmptyAttributes) {
  database_.SetDeviceFamily("");
  database_.SetDeviceModel("");
  EXPECT_EQ(
      ExportedSection("device_info"),
      R"(<device_info><family name=""/><device name=""/><timing_model name=""/></device_info>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_DesignFiles_AreInListOrderWithDuplicates) {
  for (const char* name : {"z.v", "a.v", "z.v"}) database_.AddDesignRTLFile(name, "", "");
  EXPECT_EQ(
      ExportedSection("design_info"),
      R"(<design_info def_veri_version="" def_vhdl_version=""><top_module name=""/>)"
      R"(<design_file library="" name="z.v" version=""/>)"
      R"(<design_file library="" name="a.v" version=""/>)"
      R"(<design_file library="" name="z.v" version=""/><top_vhdl_arch name=""/></design_info>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_ConstraintFiles_AreInListOrderBeforeTheInterfaceFile) {
  database_.AddTimingConstraintFile(std::vector<std::string>{"z.sdc", "a.sdc"});
  database_.SetInterfaceConstraint("io.interface.csv");
  EXPECT_EQ(ExportedSection("constraint_info"),
            R"(<constraint_info><sdc_file name="z.sdc"/><sdc_file name="a.sdc"/>)"
            R"(<inter_file name="io.interface.csv"/></constraint_info>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_SimulationFiles_AreInListOrder) {
  std::vector<DesignFile> files = {{"z.v", "", "w"}, {"a.v", "sv", ""}};
  database_.AddSimulationTestBenchFile(files);
  EXPECT_EQ(ExportedSection("sim_info"),
            R"(<sim_info><sim_file library="w" name="z.v" version=""/>)"
            R"(<sim_file library="" name="a.v" version="sv"/></sim_info>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_MiscellaneousFiles_AreInListOrder) {
  database_.AddMiscellaneousFile("z.txt");
  database_.AddMiscellaneousFile("a.txt");
  EXPECT_EQ(ExportedSection("misc_info"),
            R"(<misc_info><misc_file library="default" name="z.txt" version=""/>)"
            R"(<misc_file library="default" name="a.txt" version=""/></misc_info>)");
}

TEST_F(Export, ExportProjectData_IsfFiles_AreInListOrder) {
  Load(ProjectXml("<isf_info><isf_file name=\"z.isf\"/><isf_file name=\"a.isf\"/></isf_info>"));
  EXPECT_EQ(ExportedSection("isf_info"),
            R"(<isf_info><isf_file name="z.isf"/><isf_file name="a.isf"/></isf_info>)");
}

TEST_F(Export, ExportProjectData_IpInstances_AreInListOrderEachWithItsFiles) {
  const std::string section =
      R"(<ip_info><ip instance_name="z" path="p"><ip_src_file name="2.v"/><ip_src_file name="1.v"/></ip>)"
      R"(<ip instance_name="a" path=""/></ip_info>)";
  Load(ProjectXml(section));
  EXPECT_EQ(ExportedSection("ip_info"), section);
}

TEST_F(ExportOfNewProject, ExportProjectData_FileNames_AreWrittenAsStored) {
  database_.SetProjectCurrentPath("/somewhere");
  database_.AddMiscellaneousFile("../x/./a b.txt");
  EXPECT_EQ(
      ExportedSection("misc_info"),
      R"(<misc_info><misc_file library="default" name="../x/./a b.txt" version=""/></misc_info>)");
}

// Flow processes.

TEST_F(ExportOfNewProject, ExportProjectData_Tool_IsAnAttributeOfItsProcess) {
  database_.SetFlowProcessExecutableName(projectdb::e_debugger, "dbg");
  EXPECT_EQ(ExportedSection("debugger"), R"(<debugger tool_name="dbg"/>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_ToolSetBackToEmpty_IsOmitted) {
  database_.SetSynthesisExecutableName("syn");
  database_.SetSynthesisExecutableName("");
  EXPECT_EQ(ExportedSection("synthesis"), "<synthesis/>");
}

TEST_F(ExportOfCompleteProject, ExportProjectData_SynthesisParameters_AreNamedAfterTheirMaps) {
  EXPECT_THAT(ShowSortedChildren(ExportedRoot().Child("synthesis")),
              ElementsAre(R"(<defmacro name="SIM" value="1"/>)",
                          R"(<dynparam name="W" value="8" value_type="e_string"/>)",
                          R"(<param name="flat" value="" value_type="e_noarg"/>)",
                          R"(<param name="mode" value="fast" value_type="e_option"/>)"));
}

TEST_F(ExportOfNewProject, ExportProjectData_ParametersOfOneMap_AreAllWritten) {
  for (int i = 0; i < 100; ++i) {
    database_.AddDebuggerParameter("p" + std::to_string(i), "v", projectdb::e_string);
  }
  EXPECT_EQ(ExportedRoot().Child("debugger").children.size(), 100U);
}

TEST_F(ExportOfNewProject, ExportProjectData_MapOutsideTheFormat_IsWrittenUnderItsName) {
  database_.AddFlowProcessParameter(projectdb::e_debugger, "probes", "p", "v", projectdb::e_string);
  EXPECT_EQ(ExportedSection("debugger"),
            R"(<debugger><probes name="p" value="v" value_type="e_string"/></debugger>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_EmptyMap_LeavesNoTrace) {
  database_.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
  EXPECT_EQ(ExportedSection("debugger"), "<debugger/>");
}

TEST_F(ExportOfNewProject, ExportProjectData_PlainParameters_AreNotWritten) {
  database_.GetFlowProcess(projectdb::e_debugger)
      ->parameters.emplace_back("p", "v", projectdb::e_string);
  EXPECT_EQ(ExportedSection("debugger"), "<debugger/>");
}

TEST_F(ExportOfNewProject, ExportProjectData_RenamedProcess_IsWrittenUnderItsNameInItsPlace) {
  database_.SetFlowProcessName(projectdb::e_place_and_route, "layout");
  EXPECT_EQ(ExportedRoot().children[8].name, "kel:layout");
}

TEST_F(ExportOfNewProject, ExportProjectData_ProcessUnderTheNameOfAnotherOrASection_IsWritten) {
  for (const char* name :
       {"debugger", "device_info", "design_info", "constraint_info", "isf_info", "sim_info",
        "misc_info", "ip_info", "package_info", "security", "project"}) {
    database_.SetFlowProcessName(projectdb::e_synthesis, name);
    EXPECT_EQ(ExportedRoot().children.at(7).name, std::string("kel:") + name);
  }
}

// Parameters that a load would read otherwise.

TEST_F(ExportOfNewProject, ExportProjectData_ParameterUnderAnotherKey_IsWrittenUnderItsName) {
  auto* map = database_.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
  ASSERT_TRUE(KelProjectDatabase::InsertOrAssignParameterToMap(
      *map, "key", Parameter("name", "v", projectdb::e_string)));
  EXPECT_EQ(ExportedSection("debugger"),
            R"(<debugger><param name="name" value="v" value_type="e_string"/></debugger>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_ParameterRenamedUnderItsKey_IsWrittenUnderItsName) {
  database_.AddDebuggerParameter("p", "v", projectdb::e_string);
  auto* map = database_.FindFlowProcessParameterMap(projectdb::e_debugger, "param");
  ASSERT_TRUE(KelProjectDatabase::InsertOrAssignParameterToMap(
      *map, "p", Parameter("q", "w", projectdb::e_string)));
  EXPECT_EQ(ExportedSection("debugger"),
            R"(<debugger><param name="q" value="w" value_type="e_string"/></debugger>)");
}

TEST_F(ExportOfNewProject, ExportProjectData_TwoKeysOfOneName_AreWrittenEach) {
  auto* map = database_.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
  for (const char* key : {"a", "b"}) map->emplace(key, Parameter("p", key, projectdb::e_option));
  EXPECT_THAT(ShowSortedChildren(ExportedRoot().Child("debugger")),
              ElementsAre(R"(<param name="p" value="a" value_type="e_option"/>)",
                          R"(<param name="p" value="b" value_type="e_option"/>)"));
}

TEST_F(ExportOfNewProject, ExportProjectData_ValueThatDoesNotGoWithItsType_IsWritten) {
  auto* map = database_.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
  map->emplace("a", Parameter("a", "", projectdb::e_string));
  map->emplace("b", Parameter("b", "", projectdb::e_bool));
  map->emplace("c", Parameter("c", "", projectdb::e_option));
  map->emplace("d", Parameter("d", "on", projectdb::e_noarg));
  map->emplace("e", Parameter("e", "", projectdb::kNoParameterType));
  map->emplace("f", Parameter("f", "", ParameterType(7)));
  EXPECT_THAT(
      ShowSortedChildren(ExportedRoot().Child("debugger")),
      ElementsAre(R"(<param name="a" value="" value_type="e_string"/>)",
                  R"(<param name="b" value="" value_type="e_bool"/>)",
                  R"(<param name="c" value="" value_type="e_option"/>)",
                  R"(<param name="d" value="on" value_type="e_noarg"/>)",
                  R"(<param name="e" value=""/>)", R"(<param name="f" value="" value_type=""/>)"));
}

struct TypeCase {
  int type;
  const char* value;
  const char* expected;
};

void PrintTo(const TypeCase& c, std::ostream* out) { *out << "type " << c.type; }

class ExportedParameterType : public ExportOfNewProject,
                              public testing::WithParamInterface<TypeCase> {};

TEST_P(ExportedParameterType, ExportProjectData_WritesTheTypeAsText) {
  database_.AddDebuggerParameter("p", GetParam().value, ParameterType(GetParam().type));
  EXPECT_EQ(Show(ExportedRoot().Child("debugger").Child("param")), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Types, ExportedParameterType,
    testing::Values(TypeCase{0, "v", R"(<param name="p" value="v" value_type="e_string"/>)"},
                    TypeCase{1, "v", R"(<param name="p" value="v" value_type="e_bool"/>)"},
                    TypeCase{2, "v", R"(<param name="p" value="v" value_type="e_option"/>)"},
                    TypeCase{3, "", R"(<param name="p" value="" value_type="e_noarg"/>)"},
                    TypeCase{4, "v", R"(<param name="p" value="v"/>)"},
                    TypeCase{7, "v", R"(<param name="p" value="v" value_type=""/>)"},
                    TypeCase{-1, "v", R"(<param name="p" value="v" value_type=""/>)"}));

/// With a project whose flow processes have no names yet.
class ExportOfUnnamedProcesses : public Export, public testing::WithParamInterface<int> {
 protected:
  ExportOfUnnamedProcesses() { database_.SetupProjectDatabase(); }
};

TEST_P(ExportOfUnnamedProcesses, ExportProjectData_UsesTheDefaultName) {
  const std::vector<std::string> names = {"kel:synthesis", "kel:place_and_route",
                                          "kel:bitstream_generation", "kel:debugger"};
  const auto type = static_cast<std::size_t>(GetParam());
  EXPECT_EQ(ExportedRoot().children.at(7 + type).name, names[type]);
}

TEST_P(ExportOfUnnamedProcesses, ExportProjectData_WritesToolAndParameters) {
  const auto type = static_cast<ProcType>(GetParam());
  database_.SetFlowProcessExecutableName(type, "tool");
  database_.AddFlowProcessParameter(type, "param", "p", "v", projectdb::e_string);
  const XmlElement process = ExportedRoot().children.at(7 + static_cast<std::size_t>(type));
  EXPECT_EQ(process.attributes, (Attributes{{"tool_name", "tool"}}));
  EXPECT_THAT(ShowSortedChildren(process),
              ElementsAre(R"(<param name="p" value="v" value_type="e_string"/>)"));
}

TEST_P(ExportOfUnnamedProcesses, ExportProjectData_LeavesTheProcessUnnamed) {
  database_.ExportProjectData(path_);
  EXPECT_EQ(database_.GetFlowProcess(static_cast<ProcType>(GetParam()))->name, "");
}

INSTANTIATE_TEST_SUITE_P(Processes, ExportOfUnnamedProcesses, testing::Range(0, 4));

// Other threads.

/// Gives what is written to a named pipe, which lets a test act while an export is under way.
class SlowReader {
 public:
  explicit SlowReader(const std::string& path) {
    mkfifo(path.c_str(), 0600);
    // Without blocking: there is no writer yet.
    file_ = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  }
  ~SlowReader() { close(file_); }
  SlowReader(const SlowReader&) = delete;
  SlowReader& operator=(const SlowReader&) = delete;

  bool WaitForWriter() const {
    pollfd request{file_, POLLIN, 0};
    return poll(&request, 1, 60000) == 1;
  }

  std::string ReadAll() const {
    fcntl(file_, F_SETFL, 0);
    std::string text;
    char block[65536];
    for (ssize_t size = 0; (size = read(file_, block, sizeof(block))) > 0;) {
      text.append(block, static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  int file_ = -1;
};

TEST_F(ExportOfNewProject, ExportProjectData_WhileTheFileIsWritten_TheProjectCanBeUsed) {
  // More than any buffer holds, so that the export cannot end before it is read.
  for (int i = 0; i < 20000; ++i) database_.AddMiscellaneousFile("notes_" + std::to_string(i));
  const SlowReader reader(path_);
  auto exported = std::async(std::launch::async, [&] { database_.ExportProjectData(path_); });
  const bool writing = reader.WaitForWriter();
  database_.SetProjectName("later");
  database_.CleanProjectDatabase();
  const bool still_writing =
      exported.wait_for(std::chrono::seconds(0)) == std::future_status::timeout;
  WriteFile(directory_ / "read.xml", reader.ReadAll());
  exported.get();
  ASSERT_TRUE(writing && still_writing);
  const XmlElement root = ReadXmlFile(directory_ / "read.xml");
  EXPECT_EQ(root.attributes.at("name"), "soc");
  EXPECT_EQ(root.Child("misc_info").children.size(), 20000U);
}

TEST(ExportThreads, ExportProjectData_ManyObjectsAtOnce_EveryFileIsWhole) {
  const MessageRecorder recorder;
  const TemporaryDirectory directory;
  const auto export_and_load = [&](int number) {
    const std::string path = directory / (std::to_string(number) + ".xml");
    for (int round = 0; round < 20; ++round) {
      KelProjectDatabase database;
      database.CreateNewProjectDatabase("p" + std::to_string(number));
      database.ExportProjectData(path);
      KelProjectDatabase loaded;
      if (!loaded.LoadProjectData(path, "")) return std::string("not loaded");
      if (loaded.GetProjectName() != database.GetProjectName()) return loaded.GetProjectName();
    }
    return std::string();
  };
  std::vector<std::future<std::string>> threads;
  threads.reserve(8);
  for (int number = 0; number < 8; ++number) {
    threads.push_back(std::async(std::launch::async, export_and_load, number));
  }
  for (auto& thread : threads) EXPECT_EQ(thread.get(), "");
}

}  // namespace
