#include <atomic>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/denied.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/project_snapshot.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/throwing_handler.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::ElementsAre;
using testing::IsEmpty;

class Load : public testing::Test, public Loading {
 protected:
  /// Loads a project file with these sections.
  bool LoadSections(const std::string& sections) { return LoadBytes(ProjectXml(sections)); }

  /// Loads a project file whose root has these attributes.
  bool LoadAttributes(const std::string& attributes) {
    return LoadBytes(ProjectXml("", attributes));
  }

  std::optional<std::string> Attribute(const std::string& name) const {
    std::string value;
    if (!database.GetProjectInfoAttribute(name, value)) return std::nullopt;
    return value;
  }

  std::string Resolved(const std::string& name) const { return directory / name; }
};

using Rows = std::vector<std::vector<std::string>>;

// ---- What is refused before the file is read

TEST_F(Load, LoadProjectData_EmptyFileName_ReturnsFalseWithoutMessage) {
  EXPECT_FALSE(LoadFile("", directory / "missing.xsd"));
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(Load, LoadProjectData_EmptyFileName_MakesNoProject) {
  LoadFile("");
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(Load, LoadProjectData_OtherExtension_SaysThatTheFileDoesNotExist) {
  for (const std::string name : {"p.XML", "p.Xml", "p.xmL", "p.xmlx", "p.xm", "p.xml.bak", "p.xml ",
                                 "p.xml.", "p", "pxml", ".xml"}) {
    SCOPED_TRACE(name);
    const std::string path = Write(name, ProjectXml(""));
    EXPECT_FALSE(LoadFile(path));
    EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }
}

TEST_F(Load, LoadProjectData_TrailingSlash_SaysThatTheFileDoesNotExist) {
  const std::string path = Write("p.xml", ProjectXml("")) + "/";
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
}

TEST_F(Load, LoadProjectData_MissingFile_PostsOneErrorAndReturnsFalse) {
  const std::string path = directory / "gone.xml";
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
}

TEST_F(Load, LoadProjectData_MissingFile_LeavesTheProjectUntouched) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject before(database);
  LoadFile(directory / "gone.xml");
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(Load, LoadProjectData_MissingFileInMissingDirectory_SaysThatTheFileDoesNotExist) {
  const std::string path = directory / "no/such/p.xml";
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
}

TEST_F(Load, LoadProjectData_LinkToNothing_SaysThatTheFileDoesNotExist) {
  const std::string path = directory / "p.xml";
  std::filesystem::create_symlink(directory / "gone", path);
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
}

TEST_F(Load, LoadProjectData_FileAndSchemaMissing_SaysNothingOfTheSchema) {
  const std::string path = directory / "gone.xml";
  EXPECT_FALSE(LoadFile(path, directory / "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
}

TEST_F(Load, LoadProjectData_MissingFile_MessageHasThePathAsItWasPassed) {
  for (const std::string path : {"./a/../{}.xml", "no//such.xml", "{0}{1:x}.xml", "a\"b.xml"}) {
    SCOPED_TRACE(path);
    EXPECT_FALSE(LoadFile(path));
    EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
  }
}

TEST_F(Load, LoadProjectData_Directory_IsReadAndRefusedAsMalformed) {
  const std::string path = directory / "p.xml";
  std::filesystem::create_directory(path);
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path), MalformedMessage(path)));
}

TEST_F(Load, LoadProjectData_UnreadableFile_IsRefusedAsMalformed) {
  const std::string path = Write("p.xml", ProjectXml(""));
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(path);
  if (!denied.effective() || !std::filesystem::exists(path)) GTEST_SKIP() << "cannot be denied";
  EXPECT_FALSE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path), MalformedMessage(path)));
}

// ---- The schema

TEST_F(Load, LoadProjectData_NoSchema_PostsNothingButReading) {
  EXPECT_TRUE(LoadBytes(ProjectXml("")));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
}

TEST_F(Load, LoadProjectData_MissingSchema_WarnsAfterReadingAndLoads) {
  const std::string schema = directory / "gone.xsd";
  EXPECT_TRUE(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage(schema)));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

TEST_F(Load, LoadProjectData_MissingSchema_MessageHasThePathAsItWasPassed) {
  EXPECT_TRUE(LoadBytes(ProjectXml(""), "./no//{}.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage("./no//{}.xsd")));
}

TEST_F(Load, LoadProjectData_MissingSchemaAndMalformedFile_PostsReadingSchemaMalformed) {
  EXPECT_FALSE(LoadBytes("<project>", "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage("gone.xsd"),
                                    MalformedMessage(path())));
}

TEST_F(Load, LoadProjectData_FileThatSatisfiesTheSchema_Loads) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  EXPECT_TRUE(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

TEST_F(Load, LoadProjectData_SchemaOfAnyName_IsApplied) {
  const std::string schema = Write("rules of the house", DeviceOnlySchema());
  EXPECT_FALSE(LoadBytes(ProjectXml("<isf_info/>"), schema));
}

TEST_F(Load, LoadProjectData_RelativeSchemaPath_IsBelowTheWorkingDirectory) {
  Write("s.xsd", DeviceOnlySchema());
  const WorkingDirectory working_directory(directory.path());
  EXPECT_FALSE(LoadBytes(ProjectXml("<isf_info/>"), "s.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
}

TEST_F(Load, LoadProjectData_FileThatBreaksTheSchema_IsRefusedAsMalformed) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  for (const std::string sections :
       {"<isf_info/>", "<device_info/><bogus/>", "<device_info>x</device_info>"}) {
    SCOPED_TRACE(sections);
    EXPECT_FALSE(LoadBytes(ProjectXml(sections), schema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
  }
}

TEST_F(Load, LoadProjectData_FileThatBreaksTheSchema_MakesNoProject) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  ASSERT_FALSE(LoadBytes(ProjectXml("<isf_info/>"), schema));
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(Load, LoadProjectData_FileThatBreaksTheSchema_LeavesTheProjectUntouched) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject before(database);
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  ASSERT_FALSE(LoadBytes(CompleteProjectXml(), schema));
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(Load, LoadProjectData_FileOutsideTheSchemasNamespace_IsRefusedAsMalformed) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  EXPECT_FALSE(LoadBytes("<project/>", schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
}

TEST_F(Load, LoadProjectData_SchemaThatCannotBeUsed_IsRefusedAsMalformed) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"empty.xsd", ""},
      {"truncated.xsd", DeviceOnlySchema().substr(0, 200)},
      {"no_schema.xsd", "<project/>"},
      {"unknown_type.xsd", DeviceOnlySchema("<xs:element name=\"e\" type=\"xs:nonsense\"/>")},
  };
  for (const auto& [name, bytes] : cases) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(LoadBytes(ProjectXml(""), Write(name, bytes)));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }
}

TEST_F(Load, LoadProjectData_DirectoryAsSchema_IsRefusedAsMalformed) {
  EXPECT_FALSE(LoadBytes(ProjectXml(""), directory.path().string()));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
}

TEST_F(Load, LoadProjectData_UnreadableSchema_IsRefusedAsMalformed) {
  const std::string project = Write("p.xml", ProjectXml(""));
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(schema);
  if (!denied.effective() || !std::filesystem::exists(schema)) GTEST_SKIP() << "cannot be denied";
  EXPECT_FALSE(LoadFile(project, schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(project), MalformedMessage(project)));
}

// ---- The schema that comes with the library

const std::string kShippedSchema = test_support::ShippedSchema();

TEST_F(Load, LoadProjectData_ShippedSchema_AcceptsTheCompleteFile) {
  EXPECT_TRUE(LoadBytes(CompleteProjectXml(), kShippedSchema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
}

TEST_F(Load, LoadProjectData_ShippedSchema_GivesTheSameProjectAsNone) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject without(database);
  database.CleanProjectDatabase();
  ASSERT_TRUE(LoadBytes(CompleteProjectXml(), kShippedSchema));
  EXPECT_EQ(WholeProject(database), without);
}

TEST_F(Load, LoadProjectData_ShippedSchema_AcceptsWhatLoadsWithoutLoss) {
  for (const std::string sections :
       {"", "<debugger/><device_info/><device_info/>",
        "<device_info><device/><family/><device/></device_info>",
        "<design_info><top_vhdl_arch/><design_file/><top_module/></design_info>",
        "<constraint_info><inter_file/><core_place_file><y/></core_place_file></constraint_info>",
        "<package_info a=\"b\"><any>thing</any></package_info>", "<security><any/></security>",
        "<synthesis><defmacro/><param value_type=\"\"/><dynparam/></synthesis>"}) {
    SCOPED_TRACE(sections);
    EXPECT_TRUE(LoadBytes(ProjectXml(sections, "any=\"thing\""), kShippedSchema));
  }
}

TEST_F(Load, LoadProjectData_ShippedSchema_RefusesWhatIsOutsideTheFormat) {
  for (const std::string sections :
       {"<bogus/>", "<device_info><bogus/></device_info>", "<sim_info><misc_file/></sim_info>",
        "<place_and_route><dynparam/></place_and_route>",
        "<synthesis><param value_type=\"e_number\"/></synthesis>"}) {
    SCOPED_TRACE(sections);
    EXPECT_FALSE(LoadBytes(ProjectXml(sections), kShippedSchema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
  }
}

// ---- Malformed files

TEST_F(Load, LoadProjectData_MalformedFile_PostsReadingThenMalformed) {
  for (const std::string bytes :
       {"", "text", "<project>", "<project></projekt>", "<project/><project/>",
        "<project name=top/>", "<project a=\"1\" a=\"2\"/>", "<p:project/>",
        "<project name=\"&undefined;\"/>", "<project><device_info></project>"}) {
    SCOPED_TRACE(bytes);
    EXPECT_FALSE(LoadBytes(bytes));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), MalformedMessage(path())));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }
}

TEST_F(Load, LoadProjectData_MalformedFile_LeavesTheProjectUntouched) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const WholeProject before(database);
  ASSERT_FALSE(LoadFile(Write("q.xml", "<project name=\"new\"><device_info/>")));
  EXPECT_EQ(WholeProject(database), before);
}

TEST_F(Load, LoadProjectData_MalformedFile_MessagesHaveThePathAsItWasPassed) {
  Write("{}.xml", "<project>");
  const WorkingDirectory working_directory(directory.path());
  EXPECT_FALSE(LoadFile(".//{}.xml"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(".//{}.xml"), MalformedMessage(".//{}.xml")));
}

TEST_F(Load, LoadProjectData_AfterARefusedFile_LoadsTheNext) {
  ASSERT_FALSE(LoadBytes("<project>"));
  EXPECT_TRUE(LoadSections(DeviceInfoXml("Orrin")));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

// ---- The whole

ProjectSnapshot CompleteProject(const std::string& directory) {
  const auto parameter = [](const std::string& value, int type) { return std::tuple(value, type); };
  ProjectSnapshot project;
  project.name = "demo";
  project.current_path = directory;
  project.software_version = "0.0.1";
  project.last_modify_time = "long ago";
  project.properties = {{"family", "Orrin"},      {"device", "O40"},
                        {"timing_model", "slow"}, {"top_module", "top"},
                        {"top_vhdl_arch", "rtl"}, {"inter_file", "c.interface.csv"}};
  project.attributes = {{"vendor_id", "77"}};
  project.design_files = {{directory + "/a.v", "v2k", "work"}, {directory + "/b.vhd", "", "lib"}};
  project.file_lists = {{"sim", {directory + "/tb.v"}},
                        {"misc", {directory + "/notes.txt"}},
                        {"sdc", {directory + "/c.sdc"}},
                        {"ip_src", {directory + "/ip/u.v"}}};
  project.ip_instances = {{"u", "ip/u.cfg", "u.v"}};
  project.processes = {
      {"synthesis",
       "syn",
       {{"param", {{"mode", parameter("fast", e_option)}, {"flat", parameter("", e_noarg)}}},
        {"dynparam", {{"W", parameter("8", e_string)}}},
        {"defmacro", {{"SIM", parameter("1", kNoParameterType)}}}}},
      {"place_and_route", "pnr", {{"param", {{"seed", parameter("1", e_string)}}}}},
      {"bitstream_generation", "", {{"param", {{"zip", parameter("true", e_bool)}}}}},
      {"debugger", "dbg", {}}};
  return project;
}

TEST_F(Load, LoadProjectData_CompleteFile_FillsTheWholeProject) {
  EXPECT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_EQ(TakeSnapshot(database, {"vendor_id"}), CompleteProject(directory.path().string()));
}

TEST_F(Load, LoadProjectData_CompleteFile_FillsWhatOnlyAnExportShows) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_THAT(ExportedValues(database, "isf_file", "name"), ElementsAre("d.isf"));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_veri_version"), ElementsAre("v2k"));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_vhdl_version"), ElementsAre("vhdl08"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "version"), ElementsAre("sv"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "library"), ElementsAre("sim"));
  EXPECT_THAT(ExportedValues(database, "misc_file", "version"), ElementsAre("1"));
  EXPECT_THAT(ExportedValues(database, "misc_file", "library"), ElementsAre("docs"));
}

TEST_F(Load, LoadProjectData_EmptyRoot_MakesAnEmptyProject) {
  EXPECT_TRUE(LoadBytes("<project/>"));
  ProjectSnapshot expected = TakeSnapshot(KelProjectDatabase());
  expected.current_path = directory.path().string();
  expected.processes.resize(4);
  EXPECT_EQ(TakeSnapshot(database), expected);
}

TEST_F(Load, LoadProjectData_SectionsInReverseOrder_GiveTheSameProject) {
  EXPECT_TRUE(LoadSections(
      "<debugger tool_name=\"d\"/><misc_info><misc_file name=\"m\"/></misc_info>"
      "<design_info><top_vhdl_arch name=\"a\"/><top_module name=\"t\"/></design_info>" +
      DeviceInfoXml("Orrin")));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  EXPECT_EQ(database.GetDesignTopModuleName(), "t");
  EXPECT_EQ(database.GetDesignTopVHDLArchitecture(), "a");
  EXPECT_EQ(database.GetFlowProcessExecutableName(e_debugger), "d");
}

// ---- The root element

TEST_F(Load, LoadProjectData_RootOfAnyName_Loads) {
  for (const std::string root : {"anything", "device_info", "security", "Project"}) {
    SCOPED_TRACE(root);
    EXPECT_TRUE(LoadBytes(ElementXml(root, "name=\"demo\"", DeviceInfoXml("Orrin"))));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
    EXPECT_EQ(database.GetProjectName(), "demo");
    EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  }
}

TEST_F(Load, LoadProjectData_ReservedAttributes_GoToTheirFields) {
  ASSERT_TRUE(LoadAttributes("name=\"demo\" sw_version=\"9.9\" last_change_date=\"yesterday\""));
  EXPECT_EQ(database.GetProjectName(), "demo");
  EXPECT_EQ(database.GetProjectSoftwareVersion(), "9.9");
  EXPECT_EQ(database.GetProjectLastModifyTime(), "yesterday");
}

TEST_F(Load, LoadProjectData_OtherAttributes_AreKept) {
  ASSERT_TRUE(LoadAttributes("site=\"lab 4\" Name=\"other\" xsix=\"x\" xmlnsx=\"y\""));
  EXPECT_EQ(Attribute("site"), "lab 4");
  EXPECT_EQ(Attribute("Name"), "other");
  EXPECT_EQ(Attribute("xsix"), "x");
  EXPECT_EQ(Attribute("xmlnsx"), "y");
}

TEST_F(Load, LoadProjectData_PrefixedAttribute_IsKeptUnderItsQualifiedName) {
  ASSERT_TRUE(LoadAttributes("xmlns:v=\"urn:v\" v:id=\"7\" kel:name=\"k\" xml:lang=\"en\""));
  EXPECT_EQ(Attribute("v:id"), "7");
  EXPECT_EQ(Attribute("kel:name"), "k");
  EXPECT_EQ(Attribute("xml:lang"), "en");
  EXPECT_EQ(database.GetProjectName(), "");
}

TEST_F(Load, LoadProjectData_DeclarationsAndSchemaHints_AreDropped) {
  ASSERT_TRUE(
      LoadAttributes("xsi:schemaLocation=\"http://schema.kel.example/wdp_proj gone.xsd\" "
                     "xsi:noNamespaceSchemaLocation=\"gone.xsd\" xmlns:v=\"urn:v\""));
  for (const std::string name : {"xmlns", "xmlns:kel", "xmlns:xsi", "xmlns:v", "xsi:schemaLocation",
                                 "xsi:noNamespaceSchemaLocation"}) {
    EXPECT_EQ(Attribute(name), std::nullopt) << name;
  }
}

TEST_F(Load, LoadProjectData_AbsentAttributes_LeaveTheirFields) {
  ASSERT_TRUE(LoadAttributes("name=\"n\" sw_version=\"v\" last_change_date=\"d\" site=\"s\""));
  ASSERT_TRUE(LoadAttributes(""));
  EXPECT_EQ(database.GetProjectName(), "n");
  EXPECT_EQ(database.GetProjectSoftwareVersion(), "v");
  EXPECT_EQ(database.GetProjectLastModifyTime(), "d");
  EXPECT_EQ(Attribute("site"), "s");
}

TEST_F(Load, LoadProjectData_EmptyAttributes_AreStored) {
  ASSERT_TRUE(LoadAttributes("name=\"n\" site=\"s\""));
  ASSERT_TRUE(LoadAttributes("name=\"\" site=\"\""));
  EXPECT_EQ(database.GetProjectName(), "");
  EXPECT_EQ(Attribute("site"), "");
}

TEST_F(Load, LoadProjectData_Text_IsStoredExactlyAsRead) {
  ASSERT_TRUE(
      LoadAttributes("name=\"  A  b&#9;&#10;&#13;&amp;&lt;&gt;&quot;&apos;'{}%s é &#x1F41F; \""));
  EXPECT_EQ(database.GetProjectName(), "  A  b\t\n\r&<>\"''{}%s é 🐟 ");
}

TEST_F(Load, LoadProjectData_FileNames_AreStoredWithoutNormalisation) {
  ASSERT_TRUE(
      LoadSections("<constraint_info><inter_file name=\" ./a//../B.csv \"/></constraint_info>"));
  EXPECT_EQ(database.GetInterfaceConstraint(), " ./a//../B.csv ");
}

// ---- Top-level tags

TEST_F(Load, LoadProjectData_UnknownTag_LoadsTheRestAndReturnsFalse) {
  EXPECT_FALSE(LoadSections("<constraint_info><inter_file name=\"i\"/></constraint_info><bogus/>" +
                            DeviceInfoXml("Orrin")));
  EXPECT_EQ(database.GetInterfaceConstraint(), "i");
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

TEST_F(Load, LoadProjectData_UnknownTag_PostsOneErrorWithTheLocalName) {
  EXPECT_FALSE(LoadSections("<kel:bogus><device_info/><inner/></kel:bogus>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("bogus")));
}

TEST_F(Load, LoadProjectData_UnknownTag_ContentIsNotRead) {
  LoadSections("<bogus>" + DeviceInfoXml("Orrin") + "</bogus>");
  EXPECT_EQ(database.GetDeviceFamily(), "");
}

TEST_F(Load, LoadProjectData_SeveralUnknownTags_PostsOneErrorEach) {
  EXPECT_FALSE(LoadSections("<b/><device_info/><a/><b/>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("b"),
                                    UnexpectedMessage("a"), UnexpectedMessage("b")));
}

TEST_F(Load, LoadProjectData_NamesCloseToKnownOnes_AreUnknown) {
  for (const std::string tag : {"Device_info", "device_inf", "device_info2", "SECURITY", "project",
                                "param", "family", "größe"}) {
    SCOPED_TRACE(tag);
    EXPECT_FALSE(LoadSections(ElementXml(tag)));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage(tag)));
  }
}

TEST_F(Load, LoadProjectData_PackageInfo_WarnsAndSucceeds) {
  EXPECT_TRUE(LoadSections("<package_info name=\"x\"><family name=\"old\"/></package_info>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), DeprecatedMessage("package_info")));
}

TEST_F(Load, LoadProjectData_Security_IsSkippedSilently) {
  EXPECT_TRUE(LoadSections("<security key=\"k\"><anything/></security>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
}

TEST_F(Load, LoadProjectData_SkippedTags_DoNotHideAFailure) {
  EXPECT_FALSE(LoadSections("<bogus/><package_info/><security/>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("bogus"),
                                    DeprecatedMessage("package_info")));
}

TEST_F(Load, LoadProjectData_CommentsTextAndInstructions_AreSkipped) {
  const std::string noise = "text <!-- comment --><?instruction?><![CDATA[<bogus/>]]>";
  EXPECT_TRUE(
      LoadBytes("<?xml version=\"1.0\"?><!-- c --><?i?>" +
                ProjectXml(noise + "<device_info>" + noise + "<family name=\"Orrin\">" + noise +
                           "</family>" + noise + "</device_info><synthesis>" + noise +
                           "<param name=\"a\" value=\"1\" value_type=\"e_string\"/>" + noise +
                           "</synthesis>" + noise)));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  EXPECT_EQ(database.GetSynthesisParameterValue("a"), "1");
}

// ---- Children of sections

TEST_F(Load, LoadProjectData_UnknownChildOfSection_ReturnsFalseWithoutMessage) {
  const std::string cases[][2] = {{"device_info", "bogus"},
                                  {"device_info", "top_module"},
                                  {"design_info", "bogus"},
                                  {"design_info", "sdc_file"},
                                  {"constraint_info", "bogus"},
                                  {"constraint_info", "isf_file"},
                                  {"isf_info", "bogus"},
                                  {"isf_info", "io_place_file"},
                                  {"synthesis", "bogus"},
                                  {"synthesis", "Param"},
                                  {"place_and_route", "dynparam"},
                                  {"place_and_route", "defmacro"},
                                  {"place_and_route", "bogus"},
                                  {"bitstream_generation", "dynparam"},
                                  {"bitstream_generation", "defmacro"},
                                  {"bitstream_generation", "bogus"},
                                  {"debugger", "dynparam"},
                                  {"debugger", "defmacro"},
                                  {"debugger", "bogus"}};
  for (const auto& [section, child] : cases) {
    SCOPED_TRACE(testing::Message() << section << "/" << child);
    EXPECT_FALSE(LoadSections(ElementXml(
        section, "", ElementXml(child, "name=\"a\" value=\"1\" value_type=\"e_string\""))));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  }
}

TEST_F(Load, LoadProjectData_UnknownChildOfSection_TheRestIsStillLoaded) {
  EXPECT_FALSE(LoadSections(
      "<device_info><family name=\"F\"/><bogus/><device name=\"D\"/></device_info>"
      "<design_info def_veri_version=\"v\"><bogus/><top_module name=\"T\"/></design_info>"
      "<constraint_info><bogus/><inter_file name=\"I\"/></constraint_info>"
      "<isf_info><bogus/><isf_file name=\"S\"/></isf_info>"
      "<place_and_route><bogus/><param name=\"a\" value=\"1\" "
      "value_type=\"e_string\"/></place_and_route>"
      "<debugger tool_name=\"dbg\"/>"));
  EXPECT_EQ(database.GetDeviceFamily(), "F");
  EXPECT_EQ(database.GetDeviceModel(), "D");
  EXPECT_EQ(database.GetDesignTopModuleName(), "T");
  EXPECT_THAT(ExportedValues(database, "design_info", "def_veri_version"), ElementsAre("v"));
  EXPECT_EQ(database.GetInterfaceConstraint(), "I");
  EXPECT_THAT(ExportedValues(database, "isf_file", "name"), ElementsAre("S"));
  EXPECT_EQ(database.GetPlaceAndRouteParameterValue("a"), "1");
  EXPECT_EQ(database.GetFlowProcessExecutableName(e_debugger), "dbg");
}

TEST_F(Load, LoadProjectData_UnknownChildWhereAllAreAccepted_Succeeds) {
  for (const std::string sections :
       {"<sim_info><bogus/><misc_file name=\"m\"/></sim_info>", "<misc_info><bogus/></misc_info>",
        "<ip_info><bogus/><ip_src_file name=\"s\"/></ip_info>",
        "<ip_info><ip><bogus/></ip></ip_info>"}) {
    SCOPED_TRACE(sections);
    EXPECT_TRUE(LoadSections(sections));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  }
}

TEST_F(Load, LoadProjectData_SectionsWithoutChildren_Succeed) {
  EXPECT_TRUE(
      LoadSections("<device_info/><design_info/><constraint_info/><isf_info/><sim_info/>"
                   "<misc_info/><ip_info/><synthesis/><place_and_route/>"
                   "<bitstream_generation/><debugger/>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
}

TEST_F(Load, LoadProjectData_ContentBelowAcceptedChildren_IsIgnored) {
  EXPECT_TRUE(
      LoadSections("<device_info><family name=\"F\"><bogus/><device name=\"D\"/></family>"
                   "</device_info>"));
  EXPECT_EQ(database.GetDeviceModel(), "");
}

TEST_F(Load, LoadProjectData_OldPlacementTags_WarnOnceEachAndSucceed) {
  EXPECT_TRUE(
      LoadSections("<constraint_info><io_place_file name=\"a\"/><sdc_file name=\"s.sdc\"/>"
                   "<core_place_file/><io_place_file/></constraint_info>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), DeprecatedMessage("io_place_file"),
                                    DeprecatedMessage("core_place_file"),
                                    DeprecatedMessage("io_place_file")));
}

TEST_F(Load, LoadProjectData_OldPlacementTags_AddNothing) {
  ASSERT_TRUE(
      LoadSections("<constraint_info><io_place_file name=\"a\"/><core_place_file name=\"b\"/>"
                   "</constraint_info>"));
  EXPECT_THAT(TakeSnapshot(database).file_lists.at("sdc"), IsEmpty());
  EXPECT_EQ(database.GetInterfaceConstraint(), "");
}

TEST_F(Load, LoadProjectData_OldPlacementTagOutsideItsSection_IsUnknown) {
  EXPECT_FALSE(LoadSections("<io_place_file/>"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("io_place_file")));
}

TEST_F(Load, LoadProjectData_DeviceInfo_LastOfEachChildWinsInAnyOrder) {
  EXPECT_TRUE(
      LoadSections("<device_info><timing_model name=\"t1\"/><device name=\"d1\"/>"
                   "<family name=\"f1\"/><device name=\"d2\"/><timing_model name=\"t2\"/>"
                   "<family name=\"f2\"/></device_info>"));
  EXPECT_EQ(database.GetDeviceFamily(), "f2");
  EXPECT_EQ(database.GetDeviceModel(), "d2");
  EXPECT_EQ(database.GetDeviceTimingModel(), "t2");
}

TEST_F(Load, LoadProjectData_ChildWithoutName_AssignsTheEmptyText) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  ASSERT_TRUE(
      LoadSections("<device_info><family/><device/><timing_model/></device_info>"
                   "<design_info><top_module/><top_vhdl_arch/></design_info>"
                   "<constraint_info><inter_file/></constraint_info>"));
  for (const auto& [property, value] : TakeSnapshot(database).properties) {
    EXPECT_EQ(value, "") << property;
  }
}

TEST_F(Load, LoadProjectData_PrefixedNameAttribute_IsNotTheName) {
  ASSERT_TRUE(LoadSections("<device_info><family kel:name=\"F\" NAME=\"G\"/></device_info>"));
  EXPECT_EQ(database.GetDeviceFamily(), "");
}

TEST_F(Load, LoadProjectData_AbsentChildren_LeaveTheirFields) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const auto before = TakeSnapshot(database).properties;
  ASSERT_TRUE(LoadSections("<device_info/><design_info/><constraint_info/>"));
  EXPECT_EQ(TakeSnapshot(database).properties, before);
}

TEST_F(Load, LoadProjectData_DesignInfo_FilesAreAppendedInDocumentOrder) {
  ASSERT_TRUE(
      LoadSections("<design_info><top_vhdl_arch name=\"a1\"/>"
                   "<design_file name=\"b.v\" version=\"2\" library=\"l\"/>"
                   "<top_module name=\"t1\"/><design_file name=\"a.v\" version=\"1\"/>"
                   "<top_module name=\"t2\"/><design_file name=\"b.v\" library=\"m\"/>"
                   "<top_vhdl_arch name=\"a2\"/></design_info>"));
  EXPECT_EQ(
      TakeSnapshot(database).design_files,
      (Rows{{Resolved("b.v"), "2", "l"}, {Resolved("a.v"), "1", ""}, {Resolved("b.v"), "", "m"}}));
  EXPECT_EQ(database.GetDesignTopModuleName(), "t2");
  EXPECT_EQ(database.GetDesignTopVHDLArchitecture(), "a2");
}

TEST_F(Load, LoadProjectData_DesignInfoWithoutChildren_ReadsItsAttributes) {
  ASSERT_TRUE(LoadSections("<design_info def_veri_version=\"v\" def_vhdl_version=\"h\"/>"));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_veri_version"), ElementsAre("v"));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_vhdl_version"), ElementsAre("h"));
}

TEST_F(Load, LoadProjectData_DesignInfoWithoutAttributes_ClearsTheDefaultVersions) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  ASSERT_TRUE(LoadSections("<design_info/>"));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_veri_version"), ElementsAre(""));
  EXPECT_THAT(ExportedValues(database, "design_info", "def_vhdl_version"), ElementsAre(""));
}

TEST_F(Load, LoadProjectData_FileEntriesWithoutAttributes_AreAppendedEmpty) {
  ASSERT_TRUE(
      LoadSections("<design_info><design_file/><design_file name=\"\"/></design_info>"
                   "<sim_info><sim_file/></sim_info><misc_info><misc_file/></misc_info>"));
  for (const std::string attribute : {"name", "version", "library"}) {
    SCOPED_TRACE(attribute);
    EXPECT_THAT(ExportedValues(database, "design_file", attribute), ElementsAre("", ""));
    EXPECT_THAT(ExportedValues(database, "sim_file", attribute), ElementsAre(""));
    EXPECT_THAT(ExportedValues(database, "misc_file", attribute), ElementsAre(""));
  }
}

TEST_F(Load, LoadProjectData_SdcFiles_AreAppendedInOrderWithoutEmptyNames) {
  ASSERT_TRUE(
      LoadSections("<constraint_info><sdc_file name=\"b.sdc\"/><sdc_file name=\"\"/><sdc_file/>"
                   "<sdc_file name=\"a.sdc\"/><sdc_file name=\" \"/><sdc_file name=\"b.sdc\"/>"
                   "</constraint_info>"));
  EXPECT_THAT(ExportedValues(database, "sdc_file", "name"),
              ElementsAre("b.sdc", "a.sdc", " ", "b.sdc"));
}

TEST_F(Load, LoadProjectData_InterFile_LastOneWins) {
  ASSERT_TRUE(
      LoadSections("<constraint_info><inter_file name=\"one\"/><sdc_file name=\"s.sdc\"/>"
                   "<inter_file name=\"two\"/></constraint_info>"));
  EXPECT_EQ(database.GetInterfaceConstraint(), "two");
}

TEST_F(Load, LoadProjectData_InterFileEmptyAtTheEnd_Wins) {
  ASSERT_TRUE(
      LoadSections("<constraint_info><inter_file name=\"one\"/><inter_file name=\"\"/>"
                   "</constraint_info>"));
  EXPECT_EQ(database.GetInterfaceConstraint(), "");
}

TEST_F(Load, LoadProjectData_IsfFiles_AreAppendedInOrderWithoutEmptyNames) {
  ASSERT_TRUE(
      LoadSections("<isf_info><isf_file name=\"b\"/><isf_file/><isf_file name=\"\"/>"
                   "<isf_file name=\"a\"/><isf_file name=\"b\"/></isf_info>"));
  EXPECT_THAT(ExportedValues(database, "isf_file", "name"), ElementsAre("b", "a", "b"));
}

TEST_F(Load, LoadProjectData_FileLists_CollectEveryDepthInDocumentOrder) {
  for (const auto& [section, entry] :
       {std::pair("sim_info", "sim_file"), {"misc_info", "misc_file"}}) {
    SCOPED_TRACE(section);
    const auto file = [tag = std::string(entry)](const char* name, const std::string& inner = "") {
      return ElementXml(tag, name, inner);
    };
    const std::string group = ElementXml(
        "group", "",
        ElementXml("group", "", file("name=\"2\"")) + file("name=\"3\"", file("name=\"4\"")));
    ASSERT_TRUE(
        LoadSections(ElementXml(section, "", file("name=\"1\"") + group + file("name=\"5\""))));
    EXPECT_THAT(ExportedValues(database, entry, "name"), ElementsAre("1", "2", "3", "4", "5"));
  }
}

TEST_F(Load, LoadProjectData_FileListEntriesOfAnotherNamespace_AreIgnored) {
  ASSERT_TRUE(LoadSections(
      "<sim_info xmlns:o=\"urn:other\"><o:sim_file name=\"1\"/><sim_file xmlns=\"\" name=\"2\"/>"
      "<o:group><kel:sim_file name=\"3\"/></o:group></sim_info>"
      "<misc_info><misc_file xmlns=\"urn:other\" name=\"1\"/><misc_file name=\"2\"/></misc_info>"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), ElementsAre("3"));
  EXPECT_THAT(ExportedValues(database, "misc_file", "name"), ElementsAre("2"));
}

TEST_F(Load, LoadProjectData_FileListEntriesOfTheOtherList_AreIgnored) {
  ASSERT_TRUE(
      LoadSections("<sim_info><misc_file name=\"m\"/></sim_info>"
                   "<misc_info><sim_file name=\"s\"/></misc_info>"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), IsEmpty());
  EXPECT_THAT(ExportedValues(database, "misc_file", "name"), IsEmpty());
}

TEST_F(Load, LoadProjectData_FileListEntryFarDown_IsCollected) {
  std::string open;
  std::string close;
  for (int depth = 0; depth < 10000; ++depth) {
    open += "<g>";
    close += "</g>";
  }
  ASSERT_TRUE(
      LoadSections("<sim_info>" + open + "<sim_file name=\"deep\"/>" + close + "</sim_info>"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), ElementsAre("deep"));
}

TEST_F(Load, LoadProjectData_IpInfo_KeepsInstancesAndTheirFilesInOrder) {
  ASSERT_TRUE(
      LoadSections("<ip_info><ip instance_name=\"u2\" path=\"ip/b\"><ip_src_file name=\"z.v\"/>"
                   "<ip_src_file name=\"a.v\"/><ip_src_file/></ip>"
                   "<ip instance_name=\"u1\"/><ip/></ip_info>"));
  EXPECT_EQ(TakeSnapshot(database).ip_instances,
            (Rows{{"u2", "ip/b", "z.v", "a.v", ""}, {"u1", ""}, {"", ""}}));
}

TEST_F(Load, LoadProjectData_IpInfo_ReadsDirectChildrenOnly) {
  ASSERT_TRUE(LoadSections(
      "<ip_info><ip_src_file name=\"lost.v\"/><group><ip instance_name=\"lost\"/></group>"
      "<ip instance_name=\"u\"><ip instance_name=\"lost\"/>"
      "<group><ip_src_file name=\"lost.v\"/></group><ip_src_file name=\"a.v\"/></ip>"
      "</ip_info>"));
  EXPECT_EQ(TakeSnapshot(database).ip_instances, (Rows{{"u", "", "a.v"}}));
}

// ---- Namespaces

TEST_F(Load, LoadProjectData_FileWithoutNamespace_IsReadByLocalNames) {
  EXPECT_TRUE(
      LoadBytes("<project name=\"n\">" + DeviceInfoXml("Orrin") +
                "<design_info><design_file name=\"a.v\"/></design_info>"
                "<ip_info><ip instance_name=\"u\"/></ip_info>"
                "<synthesis><param name=\"a\" value=\"1\" value_type=\"e_string\"/></synthesis>"
                "</project>"));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  EXPECT_EQ(TakeSnapshot(database).design_files, (Rows{{Resolved("a.v"), "", ""}}));
  EXPECT_EQ(TakeSnapshot(database).ip_instances, (Rows{{"u", ""}}));
  EXPECT_EQ(database.GetSynthesisParameterValue("a"), "1");
}

TEST_F(Load, LoadProjectData_FileWithoutNamespace_HasNoFileListEntries) {
  EXPECT_TRUE(
      LoadBytes("<project><sim_info><sim_file name=\"s\"/></sim_info>"
                "<misc_info><misc_file name=\"m\"/></misc_info></project>"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), IsEmpty());
  EXPECT_THAT(ExportedValues(database, "misc_file", "name"), IsEmpty());
}

TEST_F(Load, LoadProjectData_SectionsOfAnotherNamespace_AreReadByLocalNames) {
  EXPECT_TRUE(
      LoadBytes("<o:project xmlns:o=\"urn:other\"><o:device_info><o:family name=\"Orrin\"/>"
                "</o:device_info></o:project>"));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

TEST_F(Load, LoadProjectData_PrefixedElements_AreReadAsUnprefixedOnes) {
  EXPECT_TRUE(
      LoadSections("<kel:device_info><kel:family name=\"Orrin\"/></kel:device_info>"
                   "<kel:sim_info><kel:sim_file name=\"s\"/></kel:sim_info>"));
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), ElementsAre("s"));
}

// ---- Flow processes

constexpr std::pair<ProcType, const char*> kProcesses[] = {
    {e_synthesis, "synthesis"},
    {e_place_and_route, "place_and_route"},
    {e_bitstream_generation, "bitstream_generation"},
    {e_debugger, "debugger"}};

std::string ParameterXml(const std::string& map, const std::string& attributes) {
  return ElementXml(map, attributes);
}

std::string ParameterXml(const std::string& name, const std::string& value,
                         const std::string& type) {
  return ParameterXml("param",
                      "name=\"" + name + "\" value=\"" + value + "\" value_type=\"" + type + "\"");
}

std::string SynthesisXml(const std::string& parameters) {
  return "<synthesis>" + parameters + "</synthesis>";
}

class LoadFlowProcess : public Load {
 protected:
  /// The value and type of a parameter of synthesis.
  std::optional<std::pair<std::string, int>> SynthesisParameter(
      const std::string& name, const std::string& map = "param") const {
    const auto parameter = database.GetFlowProcessParameter(e_synthesis, map, name);
    if (!parameter) return std::nullopt;
    return std::pair(parameter->value, int{parameter->type});
  }
};

using ValueAndType = std::optional<std::pair<std::string, int>>;

TEST_F(LoadFlowProcess, LoadProjectData_ProcessElement_NamesItsOwnProcess) {
  for (const auto& [type, tag] : kProcesses) {
    SCOPED_TRACE(tag);
    database.CleanProjectDatabase();
    EXPECT_TRUE(LoadSections("<kel:" + std::string(tag) + " tool_name=\"tool\" name=\"other\"/>"));
    for (const auto& [other_type, other_tag] : kProcesses) {
      EXPECT_EQ(database.GetFlowProcess(other_type)->name, other_type == type ? tag : "");
      EXPECT_EQ(database.GetFlowProcessExecutableName(other_type),
                other_type == type ? "tool" : "");
    }
  }
}

TEST_F(LoadFlowProcess, LoadProjectData_NoToolName_ClearsTheToolName) {
  for (const auto& [type, tag] : kProcesses) {
    SCOPED_TRACE(tag);
    ASSERT_TRUE(LoadSections(ElementXml(tag, "tool_name=\"tool\"")));
    ASSERT_TRUE(LoadSections(ElementXml(tag)));
    EXPECT_EQ(database.GetFlowProcessExecutableName(type), "");
  }
}

TEST_F(LoadFlowProcess, LoadProjectData_AcceptedMapNames_GiveMapsOfTheirProcess) {
  const std::tuple<ProcType, std::string, std::string> cases[] = {
      {e_synthesis, "synthesis", "param"},
      {e_synthesis, "synthesis", "dynparam"},
      {e_synthesis, "synthesis", "defmacro"},
      {e_place_and_route, "place_and_route", "param"},
      {e_bitstream_generation, "bitstream_generation", "param"},
      {e_debugger, "debugger", "param"}};
  for (const auto& [type, tag, map] : cases) {
    SCOPED_TRACE(testing::Message() << tag << "/" << map);
    EXPECT_TRUE(LoadSections(
        ElementXml(tag, "", ParameterXml(map, "name=\"n\" value=\"v\" value_type=\"e_option\""))));
    const auto parameter = database.GetFlowProcessParameter(type, map, "n");
    ASSERT_TRUE(parameter.has_value());
    EXPECT_EQ(parameter->name, "n");
    EXPECT_EQ(parameter->value, "v");
    EXPECT_EQ(parameter->type, e_option);
  }
}

TEST_F(LoadFlowProcess, LoadProjectData_RefusedMapName_MakesNoMap) {
  ASSERT_FALSE(
      LoadSections("<place_and_route>" +
                   ParameterXml("dynparam", "name=\"n\" value=\"v\" value_type=\"e_string\"") +
                   "</place_and_route>"));
  EXPECT_THAT(database.GetFlowProcess(e_place_and_route)->parameter_maps, IsEmpty());
}

TEST_F(LoadFlowProcess, LoadProjectData_MapNames_ArePlacedInDocumentOrder) {
  ASSERT_TRUE(LoadSections(SynthesisXml(ParameterXml("defmacro", "name=\"a\" value=\"1\"") +
                                        ParameterXml("param", "name=\"a\" value=\"2\"") +
                                        ParameterXml("defmacro", "name=\"b\" value=\"3\"") +
                                        ParameterXml("dynparam", "name=\"a\" value=\"4\""))));
  const auto& index = database.GetFlowProcess(e_synthesis)->parameter_map_index;
  EXPECT_EQ(index.at("defmacro"), 0);
  EXPECT_EQ(index.at("param"), 1);
  EXPECT_EQ(index.at("dynparam"), 2);
}

TEST_F(LoadFlowProcess, LoadProjectData_ProcessWithoutParameters_HasNoMaps) {
  ASSERT_TRUE(LoadSections("<synthesis tool_name=\"t\"/>"));
  EXPECT_THAT(database.GetFlowProcess(e_synthesis)->parameter_maps, IsEmpty());
}

TEST_F(LoadFlowProcess, LoadProjectData_PlainParameterList_StaysEmpty) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_THAT(database.GetFlowProcess(e_synthesis)->parameters, IsEmpty());
}

TEST_F(LoadFlowProcess, LoadProjectData_ValueTypes_AreConvertedAndOthersGiveNoType) {
  const std::tuple<std::string, std::string, int> cases[] = {{"x", "value_type=\"e_string\"", 0},
                                                             {"x", "value_type=\"e_bool\"", 1},
                                                             {"x", "value_type=\"e_option\"", 2},
                                                             {"", "value_type=\"e_noarg\"", 3},
                                                             {"x", "", 4},
                                                             {"x", "value_type=\"\"", 4},
                                                             {"x", "value_type=\"E_STRING\"", 4},
                                                             {"x", "value_type=\"e_string \"", 4},
                                                             {"x", "value_type=\"string\"", 4},
                                                             {"x", "value_type=\"0\"", 4}};
  for (const auto& [value, attribute, type] : cases) {
    SCOPED_TRACE(attribute);
    database.CleanProjectDatabase();
    std::string attributes = "name=\"n\" value=\"";
    attributes.append(value).append("\" ").append(attribute);
    EXPECT_TRUE(LoadSections(SynthesisXml(ParameterXml("param", attributes))));
    EXPECT_EQ(SynthesisParameter("n"), ValueAndType({value, type}));
  }
}

TEST_F(LoadFlowProcess, LoadProjectData_RefusedParameter_IsLeftOutAndTheResultIsTrue) {
  for (const std::string& parameter :
       {ParameterXml("n", "x", "e_noarg"), ParameterXml("n", "", "e_string"),
        ParameterXml("n", "", "e_bool"), ParameterXml("n", "", "e_option"),
        ParameterXml("n", "", "nonsense"), ParameterXml("param", "name=\"n\""),
        ParameterXml("param", "")}) {
    SCOPED_TRACE(parameter);
    EXPECT_TRUE(LoadSections(SynthesisXml(parameter + ParameterXml("next", "1", "e_string"))));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
    EXPECT_EQ(SynthesisParameter("n"), std::nullopt);
    EXPECT_EQ(SynthesisParameter("next"), ValueAndType({"1", e_string}));
  }
}

TEST_F(LoadFlowProcess, LoadProjectData_RefusedParameter_StillMakesItsMap) {
  ASSERT_TRUE(LoadSections(SynthesisXml(ParameterXml("n", "", "e_bool"))));
  const ParameterMap* const map = database.FindFlowProcessParameterMap(e_synthesis, "param");
  ASSERT_NE(map, nullptr);
  EXPECT_THAT(*map, IsEmpty());
}

TEST_F(LoadFlowProcess, LoadProjectData_RepeatedName_ReplacesTheEarlierValue) {
  EXPECT_TRUE(LoadSections(SynthesisXml(ParameterXml("n", "1", "e_string") +
                                        ParameterXml("m", "2", "e_string") +
                                        ParameterXml("n", "3", "e_string"))));
  EXPECT_EQ(SynthesisParameter("n"), ValueAndType({"3", e_string}));
}

TEST_F(LoadFlowProcess, LoadProjectData_RepeatedNameOfAnotherType_KeepsTheEarlierAndSucceeds) {
  EXPECT_TRUE(LoadSections(
      SynthesisXml(ParameterXml("n", "1", "e_string") + ParameterXml("n", "true", "e_bool"))));
  EXPECT_EQ(SynthesisParameter("n"), ValueAndType({"1", e_string}));
}

TEST_F(LoadFlowProcess, LoadProjectData_OneNameInSeveralMaps_IsSeveralParameters) {
  ASSERT_TRUE(LoadSections(SynthesisXml(ParameterXml("param", "name=\"n\" value=\"1\"") +
                                        ParameterXml("dynparam", "name=\"n\" value=\"2\"") +
                                        ParameterXml("defmacro", "name=\"n\" value=\"3\""))));
  EXPECT_EQ(SynthesisParameter("n", "param"), ValueAndType({"1", 4}));
  EXPECT_EQ(SynthesisParameter("n", "dynparam"), ValueAndType({"2", 4}));
  EXPECT_EQ(SynthesisParameter("n", "defmacro"), ValueAndType({"3", 4}));
}

TEST_F(LoadFlowProcess, LoadProjectData_ParameterWithoutName_IsStoredUnderTheEmptyName) {
  ASSERT_TRUE(
      LoadSections(SynthesisXml(ParameterXml("param", "value=\"v\" value_type=\"e_string\""))));
  EXPECT_EQ(SynthesisParameter(""), ValueAndType({"v", e_string}));
}

TEST_F(LoadFlowProcess, LoadProjectData_ThreadCounts_AreThoseOfTheFile) {
  ASSERT_TRUE(LoadSections(SynthesisXml(ParameterXml("max_threads", "6", "e_string")) +
                           "<place_and_route>" + ParameterXml("max_threads", "9", "e_string") +
                           "</place_and_route>"));
  EXPECT_EQ(database.GetSynthesisMaxThreads(2), 6u);
  EXPECT_EQ(database.GetPnRMaxThreads(2), 9u);
}

// ---- Loading into a project

TEST_F(Load, LoadProjectData_SectionTwice_IsReadTwiceIntoTheSameFields) {
  EXPECT_TRUE(LoadSections(
      "<device_info><family name=\"F1\"/><device name=\"D1\"/></device_info>"
      "<design_info def_veri_version=\"v\"><design_file name=\"a\"/></design_info>"
      "<isf_info><isf_file name=\"i1\"/></isf_info><sim_info><sim_file name=\"s1\"/></sim_info>"
      "<synthesis tool_name=\"one\"><param name=\"a\" value=\"1\"/></synthesis>"
      "<device_info><family name=\"F2\"/></device_info><design_info><design_file "
      "name=\"b\"/></design_info>"
      "<isf_info><isf_file name=\"i2\"/></isf_info><sim_info><sim_file name=\"s2\"/></sim_info>"
      "<synthesis tool_name=\"two\"><param name=\"b\" value=\"2\"/></synthesis>"));
  EXPECT_EQ(database.GetDeviceFamily(), "F2");
  EXPECT_EQ(database.GetDeviceModel(), "D1");
  EXPECT_THAT(ExportedValues(database, "design_info", "def_veri_version"), ElementsAre(""));
  EXPECT_THAT(ExportedValues(database, "design_file", "name"), ElementsAre("a", "b"));
  EXPECT_THAT(ExportedValues(database, "isf_file", "name"), ElementsAre("i1", "i2"));
  EXPECT_THAT(ExportedValues(database, "sim_file", "name"), ElementsAre("s1", "s2"));
  EXPECT_EQ(database.GetSynthesisExecutableName(), "two");
  EXPECT_EQ(database.GetSynthesisParameterValue("a"), "1");
  EXPECT_EQ(database.GetSynthesisParameterValue("b"), "2");
}

TEST_F(Load, LoadProjectData_SameFileTwice_DoublesListsAndKeepsTheRest) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const auto twice = [](auto& list) {
    const auto once = list;
    list.insert(list.end(), once.begin(), once.end());
  };
  ProjectSnapshot expected = CompleteProject(directory.path().string());
  twice(expected.design_files);
  twice(expected.ip_instances);
  for (auto& [name, list] : expected.file_lists) twice(list);
  EXPECT_EQ(TakeSnapshot(database, {"vendor_id"}), expected);
  EXPECT_THAT(ExportedValues(database, "isf_file", "name"), ElementsAre("d.isf", "d.isf"));
}

TEST_F(Load, LoadProjectData_ExistingProject_IsMergedInto) {
  MessageRecorder recorder;
  ASSERT_TRUE(database.CreateNewProjectDatabase("first"));
  database.SetDeviceTimingModel("typical");
  database.AddDesignRTLFile("/first.v", "v", "l");
  database.AddSynthesisParameter("kept", "1", e_string);
  database.AddSynthesisParameter("changed", "1", e_string);
  database.AddSynthesisParameter("typed", "1", e_string);
  database.AddProjectInfoAttribute("kept", "k");
  database.AddProjectInfoAttribute("changed", "1");
  ProjectSnapshot expected = TakeSnapshot(database, {"kept", "changed", "added"});

  ASSERT_TRUE(LoadBytes(ProjectXml(
      DeviceInfoXml("Orrin") + "<design_info><design_file name=\"/second.v\"/></design_info>" +
          SynthesisXml(ParameterXml("changed", "2", "e_string") +
                       ParameterXml("typed", "true", "e_bool") +
                       ParameterXml("added", "3", "e_string")),
      "changed=\"2\" added=\"3\"")));

  expected.current_path = directory.path().string();
  expected.properties["family"] = "Orrin";
  expected.design_files.push_back({"/second.v", "", ""});
  expected.processes[0].maps["param"]["changed"] = {"2", e_string};
  expected.processes[0].maps["param"]["added"] = {"3", e_string};
  expected.attributes["changed"] = "2";
  expected.attributes["added"] = "3";
  EXPECT_EQ(TakeSnapshot(database, {"kept", "changed", "added"}), expected);
}

TEST_F(Load, LoadProjectData_AfterClean_LoadsAFreshProject) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  database.CleanProjectDatabase();
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_EQ(TakeSnapshot(database, {"vendor_id"}), CompleteProject(directory.path().string()));
}

// ---- The project's directory

TEST_F(Load, LoadProjectData_AbsolutePath_ProjectIsInTheFilesDirectory) {
  ASSERT_TRUE(LoadBytes(ProjectXml("")));
  EXPECT_EQ(database.GetProjectCurrentPath(), directory.path().string());
}

TEST_F(Load, LoadProjectData_RelativePath_ProjectsDirectoryIsAbsolute) {
  std::filesystem::create_directory(directory / "sub");
  Write("p.xml", ProjectXml(""));
  Write("sub/p.xml", ProjectXml(""));
  const WorkingDirectory working_directory(directory.path());
  const std::string here = std::filesystem::current_path().string();
  ASSERT_TRUE(LoadFile("p.xml"));
  EXPECT_EQ(database.GetProjectCurrentPath(), here);
  ASSERT_TRUE(LoadFile("sub/p.xml"));
  EXPECT_EQ(database.GetProjectCurrentPath(), here + "/sub");
}

TEST_F(Load, LoadProjectData_FalseAfterReading_StillSetsTheDirectory) {
  ASSERT_FALSE(LoadSections("<bogus/>"));
  EXPECT_EQ(database.GetProjectCurrentPath(), directory.path().string());
}

TEST_F(Load, LoadProjectData_SecondFile_MovesTheProjectToItsDirectory) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  std::filesystem::create_directory(directory / "sub");
  ASSERT_TRUE(LoadFile(Write("sub/q.xml", ProjectXml(""))));
  EXPECT_EQ(database.GetProjectCurrentPath(), directory / "sub");
}

// ---- A diagnostics handler that throws

TEST_F(Load, LoadProjectData_HandlerThrows_TheExceptionReachesTheCaller) {
  const std::tuple<std::string, Diag::MessageType, std::string> cases[] = {
      {ProjectXml(""), Diag::MessageType::kInfo, ReadingMessage(path()).text},
      {ProjectXml(""), Diag::MessageType::kWarning, SchemaMissingMessage("gone.xsd").text},
      {"<project>", Diag::MessageType::kError, MalformedMessage(path()).text},
      {ProjectXml("<package_info/>"), Diag::MessageType::kWarning,
       SchemaMissingMessage("gone.xsd").text},
      {ProjectXml("<bogus/>"), Diag::MessageType::kError, UnexpectedMessage("bogus").text}};
  for (const auto& [bytes, type, text] : cases) {
    SCOPED_TRACE(text);
    Write("p.xml", bytes);
    const ThrowingHandler handler(type);
    std::string thrown;
    try {
      database.LoadProjectData(path(), "gone.xsd");
    } catch (const HandlerFailure& failure) {
      thrown = failure.what();
    }
    EXPECT_EQ(thrown, text);
  }
}

TEST_F(Load, LoadProjectData_HandlerThrowsBeforeTheWalk_MakesNoProject) {
  Write("p.xml", ProjectXml(""));
  const ThrowingHandler handler(Diag::MessageType::kInfo);
  EXPECT_THROW(database.LoadProjectData(path(), ""), HandlerFailure);
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(Load, LoadProjectData_HandlerThrowsDuringTheWalk_LeavesTheLockFree) {
  for (const std::string sections :
       {"<bogus/>", "<package_info/>", "<constraint_info><io_place_file/></constraint_info>"}) {
    SCOPED_TRACE(sections);
    Write("p.xml", ProjectXml(DeviceInfoXml("Orrin") + sections));
    for (const auto type : {Diag::MessageType::kWarning, Diag::MessageType::kError}) {
      const ThrowingHandler handler(type);
      try {
        database.LoadProjectData(path(), "");
      } catch (const HandlerFailure&) {
        // One of the two severities is that of the message.
      }
    }
    EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
    EXPECT_TRUE(LoadBytes(ProjectXml("")));
  }
}

// ---- Several threads

TEST_F(Load, LoadProjectData_ProjectCleanedByAnotherThreadMeanwhile_LoadsOnAndReturnsTrue) {
  Write("p.xml", CompleteProjectXml());
  std::atomic<bool> done{false};
  std::thread cleaner([&] {
    while (!done) {
      database.CleanProjectDatabase();
      std::this_thread::yield();
    }
  });
  int loaded = 0;
  for (int i = 0; i < 200; ++i) loaded += LoadFile(path()) ? 1 : 0;
  done = true;
  cleaner.join();
  EXPECT_EQ(loaded, 200);
}

TEST_F(Load, LoadProjectData_SeveralThreadsIntoOneObject_EachIsReadWhole) {
  Write("p.xml", CompleteProjectXml());
  const MessageRecorder recorder;
  std::vector<std::thread> threads;
  threads.reserve(4);
  std::atomic<int> loaded{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 25; ++k) loaded += database.LoadProjectData(path(), "") ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(loaded, 100);
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  ASSERT_EQ(files.size(), 200u);
  // Each load holds the object for its whole walk: the two files of one load stand together.
  for (std::size_t i = 0; i < files.size(); i += 2) {
    ASSERT_EQ(files[i].version + files[i + 1].version, "v2k") << i;
  }
}

}  // namespace
