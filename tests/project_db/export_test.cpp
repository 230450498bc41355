#include <algorithm>
#include <cctype>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <future>
#include <ostream>
#include <string>
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
#include "testing/flow_processes.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using projectdb::DesignFile;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterType;
using projectdb::ProcType;
using test_support::AllDifferences;
using test_support::AllElements;
using test_support::ChildNames;
using test_support::CompleteProject;
using test_support::CompleteProjectXml;
using test_support::MessageRecorder;
using test_support::ProjectXml;
using test_support::ReadFile;
using test_support::ReadXmlFile;
using test_support::Show;
using test_support::ShowSortedChildren;
using test_support::TemporaryDirectory;
using test_support::WithoutTimeStamp;
using test_support::WorkingDirectory;
using test_support::WriteFile;
using test_support::XmlElement;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;
using testing::UnorderedElementsAre;

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

// The file that is written.

TEST_F(ExportOfNewProject, ExportProjectData_RelativePath_IsBelowTheWorkingDirectory) {
  const WorkingDirectory working_directory(directory_.path());
  database_.ExportProjectData("exported.xml");
  EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(ExportOfNewProject, ExportProjectData_AnyNameEvenOneThatIsNotUtf8_IsWritten) {
  for (const std::string& path : {directory_ / "project.backup", directory_ / "pr\xFC.xml"}) {
    database_.ExportProjectData(path);
    EXPECT_EQ(ReadXmlFile(path).name, "kel:project");
  }
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

TEST_F(ExportOfCompleteProject, ExportProjectData_EveryElementHasNamespacePrefixAndNoText) {
  const XmlElement root = ExportedRoot();
  for (const XmlElement* element : AllElements(root)) {
    EXPECT_EQ(element->namespace_uri, kNamespaceInFile) << element->name;
    EXPECT_THAT(element->name, StartsWith("kel:"));
    EXPECT_TRUE(std::all_of(element->text.begin(), element->text.end(),
                            [](unsigned char c) { return std::isspace(c) != 0; }))
        << element->name << ": " << element->text;
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

TEST_F(ExportOfCompleteProject, ExportProjectData_LeavesTheProjectAsItWasAndPostsNothing) {
  const MessageRecorder recorder;
  database_.ExportProjectData(path_);
  EXPECT_THAT(AllDifferences(CompleteProject(directory_.path()), database_), IsEmpty());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

// The root element.

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
  EXPECT_EQ(ExportedAttribute("name"), "");
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

TEST_F(Export, ExportProjectData_ListsOfSections_AreWrittenInListOrderWithDuplicates) {
  const std::pair<const char*, std::string> sections[] = {
      {"device_info",
       R"(<device_info><family name=""/><device name=""/><timing_model name=""/></device_info>)"},
      {"design_info",
       R"(<design_info def_veri_version="" def_vhdl_version=""><top_module name=""/>)"
       R"(<design_file library="" name="z.v" version=""/>)"
       R"(<design_file library="" name="a.v" version=""/>)"
       R"(<design_file library="" name="z.v" version=""/><top_vhdl_arch name=""/></design_info>)"},
      {"constraint_info", R"(<constraint_info><sdc_file name="z.sdc"/><sdc_file name="a.sdc"/>)"
                          R"(<inter_file name="io.interface.csv"/></constraint_info>)"},
      {"isf_info", R"(<isf_info><isf_file name="z.isf"/><isf_file name="a.isf"/></isf_info>)"},
      {"sim_info", R"(<sim_info><sim_file library="w" name="z.v" version=""/>)"
                   R"(<sim_file library="" name="a.v" version="sv"/></sim_info>)"},
      {"misc_info", R"(<misc_info><misc_file library="default" name="z.txt" version=""/>)"
                    R"(<misc_file library="" name="../x/./a b.txt" version=""/></misc_info>)"},
      {"ip_info", R"(<ip_info><ip instance_name="z" path="p"><ip_src_file name="2.v"/>)"
                  R"(<ip_src_file name="1.v"/></ip><ip instance_name="a" path=""/></ip_info>)"}};
  for (const auto& [name, section] : sections) {
    database_.CleanProjectDatabase();
    Load(ProjectXml(section));
    EXPECT_EQ(ExportedSection(name), section);
  }
}

// Flow processes.

TEST_F(ExportOfNewProject, ExportProjectData_ToolSetBackToEmpty_IsOmitted) {
  database_.SetSynthesisExecutableName("syn");
  EXPECT_EQ(ExportedSection("synthesis"), R"(<synthesis tool_name="syn"/>)");
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

TEST_F(ExportOfNewProject, ExportProjectData_EmptyMapAndPlainParameters_LeaveNoTrace) {
  database_.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
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

TEST_F(ExportOfNewProject, ExportProjectData_ParameterTypes_AreWrittenAsText) {
  for (const int type : {0, 1, 2, 3, 4, 7, -1}) {
    const std::string name = std::to_string(type);
    ASSERT_TRUE(database_.AddDebuggerParameter(name, type == 3 ? "" : "v", ParameterType(type)));
  }
  EXPECT_THAT(ShowSortedChildren(ExportedRoot().Child("debugger")),
              ElementsAre(R"(<param name="-1" value="v" value_type=""/>)",
                          R"(<param name="0" value="v" value_type="e_string"/>)",
                          R"(<param name="1" value="v" value_type="e_bool"/>)",
                          R"(<param name="2" value="v" value_type="e_option"/>)",
                          R"(<param name="3" value="" value_type="e_noarg"/>)",
                          R"(<param name="4" value="v"/>)",
                          R"(<param name="7" value="v" value_type=""/>)"));
}

TEST_F(Export, ExportProjectData_UnnamedProcesses_AreWrittenUnderTheirDefaultNames) {
  database_.SetupProjectDatabase();
  for (const ProcType type : test_support::kProcesses) {
    database_.SetFlowProcessExecutableName(type, "tool" + std::to_string(type));
    database_.AddFlowProcessParameter(type, "param", "p", std::to_string(type),
                                      projectdb::kNoParameterType);
  }
  const XmlElement root = ExportedRoot();
  const char* const names[] = {"synthesis", "place_and_route", "bitstream_generation", "debugger"};
  for (const ProcType type : test_support::kProcesses) {
    const std::string number = std::to_string(type);
    const std::string name = names[type];
    EXPECT_EQ(Show(root.children.at(7 + static_cast<std::size_t>(type))),
              "<" + name + " tool_name=\"tool" + number + "\"><param name=\"p\" value=\"" + number +
                  "\"/></" + name + ">");
    EXPECT_EQ(database_.GetFlowProcess(type)->name, "");
  }
}

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

}  // namespace
