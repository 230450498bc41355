#include <cstddef>
#include <filesystem>

#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "testing/throwing_handler.h"

namespace {

using namespace projectdb;
using namespace test_support;

using Complaints = std::vector<MessageRecorder::Message>;

class Load : public testing::Test, public Loading {
 protected:
  /// Loads a project file with these sections.
  bool LoadSections(const std::string& sections) { return LoadBytes(ProjectXml(sections)); }

  void ExpectRefusedAndNoProject(const std::string& bytes, const std::string& schema = "") {
    SCOPED_TRACE(bytes + schema);
    EXPECT_FALSE(LoadBytes(bytes, schema));
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_THAT(project(), ElementsAre("no project"));
  }

  /// Loads the complete project and, on top of it, a file that is refused.
  void ExpectRefusedAndTheProjectUntouched(const std::string& bytes,
                                           const std::string& schema = "") {
    ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
    EXPECT_FALSE(LoadBytes(bytes, schema));
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
  }
};

struct FileCase {
  const char* name;
  std::string bytes;
  Lines project;               ///< What an object without a project then holds.
  Complaints complaints = {};  ///< What is posted behind the message that the file is read.
  bool result = true;
};

class LoadFileCase : public Load, public testing::WithParamInterface<FileCase> {};

TEST_P(LoadFileCase, LoadProjectData_NoProject_GivesWhatTheFileSays) {
  EXPECT_EQ(LoadBytes(GetParam().bytes), GetParam().result);
  EXPECT_EQ(project(), GetParam().project);
  Complaints expected = GetParam().complaints;
  expected.insert(expected.begin(), ReadingMessage(path()));
  EXPECT_EQ(messages, expected);
}

FileCase FileWithSections(const char* name, const std::string& sections, Lines project,
                          Complaints complaints = {}, bool result = true) {
  return {name, ProjectXml(sections), std::move(project), std::move(complaints), result};
}

FileCase FileWithAttributes(const char* name, const std::string& attributes, Lines project) {
  return {name, ProjectXml("", attributes), std::move(project)};
}

const std::string kNoise = "text <!-- comment --><?instruction?><![CDATA[<bogus/>]]>";

const FileCase kFileCases[] = {
    FileWithAttributes("Attributes_Reserved_GoToTheirFields",
                       R"(name="demo" sw_version="9.9" last_change_date="yesterday")",
                       {"name: demo", "info.last_change_date: yesterday", "info.sw_version: 9.9"}),
    FileWithAttributes("Attributes_Others_AreKept",
                       R"(site="lab 4" Name="other" xsix="x" xmlnsx="" )",
                       {"info.Name: other", "info.site: lab 4", "info.xmlnsx: ", "info.xsix: x"}),
    FileWithAttributes("Attributes_Prefixed_AreKeptUnderTheirQualifiedNames",
                       R"(xmlns:v="urn:v" v:id="7" kel:name="k" xml:lang="en")",
                       {"info.kel:name: k", "info.v:id: 7", "info.xml:lang: en"}),
    FileWithAttributes("Attributes_DeclarationsAndSchemaHints_AreDropped",
                       R"(xsi:schemaLocation="http://schema.kel.example/wdp_proj gone.xsd" )"
                       R"(xsi:noNamespaceSchemaLocation="gone.xsd" xmlns:v="urn:v")",
                       {}),
    FileWithAttributes("Attributes_Text_IsStoredExactlyAsRead",
                       "name=\"  A  b&#9;&#10;&#13;&amp;&lt;&gt;&quot;&apos;'{}%s é &#x1F41F; \"",
                       {"name:   A  b\t\n\r&<>\"''{}%s é 🐟 "}),
    FileCase{"Roots_Empty_GivesAnEmptyProject", "<project/>", {}},
    FileCase{"Roots_NamedLikeASection", "<device_info name=\"demo\"/>", {"name: demo"}},
    FileCase{"Roots_NamedLikeASkippedSection",
             "<security>" + DeviceInfoXml("Orrin") + "</security>",
             {"device.family: Orrin"}},

    FileWithSections("Tags_Unknown_LoadsTheRestAndComplainsOnceByTheLocalName",
                     R"(<constraint_info><inter_file name="i"/></constraint_info>)"
                     "<kel:bogus>" +
                         DeviceInfoXml("hidden") + "<inner/></kel:bogus>" + DeviceInfoXml("Orrin"),
                     {"device.family: Orrin", "constraint.interface: i"},
                     {UnexpectedMessage("bogus")}, false),
    FileWithSections("Tags_SeveralUnknown_ComplainsOfEachInOrder", "<b/><device_info/><a/><b/>", {},
                     {UnexpectedMessage("b"), UnexpectedMessage("a"), UnexpectedMessage("b")},
                     false),
    FileWithSections(
        "Tags_CloseToKnownOnes_AreUnknown",
        "<Device_info/><device_inf/><device_info2/><SECURITY/><project/><param/><family/>"
        "<größe/><io_place_file/>",
        {},
        {UnexpectedMessage("Device_info"), UnexpectedMessage("device_inf"),
         UnexpectedMessage("device_info2"), UnexpectedMessage("SECURITY"),
         UnexpectedMessage("project"), UnexpectedMessage("param"), UnexpectedMessage("family"),
         UnexpectedMessage("größe"), UnexpectedMessage("io_place_file")},
        false),
    FileWithSections("Tags_PackageInfo_WarnsAndSucceeds",
                     R"(<package_info name="x"><family name="old"/></package_info>)", {},
                     {DeprecatedMessage("package_info")}),
    FileWithSections("Tags_Security_IsSkippedSilently",
                     R"(<security key="k"><anything/></security>)", {}),
    FileWithSections("Tags_SkippedOnes_DoNotHideAFailure", "<bogus/><package_info/><security/>", {},
                     {UnexpectedMessage("bogus"), DeprecatedMessage("package_info")}, false),
    FileWithSections(
        "Tags_WithoutChildren_Succeed",
        "<device_info/><design_info/><constraint_info/><isf_info/><sim_info/><misc_info/>"
        "<ip_info/>",
        {}),
    FileWithSections(
        "Tags_InReverseOrder_GiveTheSameProject",
        R"(<debugger tool_name="d"/><misc_info><misc_file name="m"/></misc_info>)"
        R"(<design_info><top_vhdl_arch name="a"/><top_module name="t"/></design_info>)" +
            DeviceInfoXml("Orrin"),
        {"device.family: Orrin", "design.top_module: t", "design.top_vhdl_arch: a",
         "misc.files[0]: m", "debugger.name: debugger", "debugger.tool: d"}),
    FileWithSections(
        "Tags_OneTwice_IsReadTwiceIntoTheSameFields",
        R"(<device_info><family name="F1"/><device name="D1"/></device_info>)"
        R"(<design_info def_veri_version="v"><design_file name="a"/></design_info>)"
        R"(<isf_info><isf_file name="i1"/></isf_info><sim_info><sim_file name="s1"/></sim_info>)"
        R"(<synthesis tool_name="one"><param name="a" value="1"/></synthesis>)"
        R"(<device_info><family name="F2"/></device_info>)"
        R"(<design_info><design_file name="b"/></design_info>)"
        R"(<isf_info><isf_file name="i2"/></isf_info><sim_info><sim_file name="s2"/></sim_info>)"
        R"(<synthesis tool_name="two"><param name="b" value="2"/></synthesis>)",
        {"device.family: F2", "device.device: D1", "design.files[0]: a", "design.files[1]: b",
         "isf.files[0]: i1", "isf.files[1]: i2", "simulation.files[0]: s1",
         "simulation.files[1]: s2", "synthesis.name: synthesis", "synthesis.tool: two",
         "synthesis.param.a: 1", "synthesis.param.b: 2"}),

    FileCase{"Children_CommentsTextAndInstructions_AreSkipped",
             "<?xml version=\"1.0\"?><!-- c --><?i?>" +
                 ProjectXml(kNoise + "<device_info>" + kNoise + "<family name=\"Orrin\">" + kNoise +
                            "</family>" + kNoise + "</device_info><debugger>" + kNoise +
                            "<param name=\"a\" value=\"1\"/>" + kNoise + "</debugger>" + kNoise),
             {"device.family: Orrin", "debugger.name: debugger", "debugger.param.a: 1"}},
    FileWithSections(
        "Children_Unknown_TheRestIsStillLoaded",
        R"(<device_info><family name="F"/><bogus/><device name="D"/></device_info>)"
        R"(<design_info def_veri_version="v"><bogus/><top_module name="T"/></design_info>)"
        R"(<constraint_info><bogus/><inter_file name="I"/></constraint_info>)"
        R"(<isf_info><bogus/><isf_file name="S"/></isf_info>)"
        R"(<place_and_route><bogus/><param name="a" value="1"/></place_and_route>)"
        R"(<debugger tool_name="dbg"/>)",
        {"device.family: F", "device.device: D", "design.top_module: T",
         "design.def_veri_version: v", "constraint.interface: I", "isf.files[0]: S",
         "place_and_route.name: place_and_route", "place_and_route.param.a: 1",
         "debugger.name: debugger", "debugger.tool: dbg"},
        {}, false),
    FileWithSections("Children_UnknownWhereAllAreAccepted_Succeed",
                     R"(<sim_info><bogus/><misc_file name="m"/></sim_info>)"
                     R"(<misc_info><bogus/><sim_file name="s"/></misc_info>)"
                     R"(<ip_info><bogus/><ip_src_file name="s"/><ip><bogus/></ip></ip_info>)",
                     {"ip[0]: \"\""}),
    FileWithSections(
        "Children_BelowAcceptedOnes_AreIgnored",
        R"(<device_info><family name="F"><bogus/><device name="D"/></family></device_info>)",
        {"device.family: F"}),
    FileWithSections("Children_OldPlacementTags_WarnOnceEachAndAddNothing",
                     R"(<constraint_info><io_place_file name="a"/><sdc_file name="s.sdc"/>)"
                     R"(<core_place_file name="b"/><io_place_file/></constraint_info>)",
                     {"constraint.sdc[0]: s.sdc"},
                     {DeprecatedMessage("io_place_file"), DeprecatedMessage("core_place_file"),
                      DeprecatedMessage("io_place_file")}),
    FileWithSections(
        "Children_OfDeviceInfo_TheLastOfEachWinsInAnyOrder",
        R"(<device_info><timing_model name="t1"/><device name="d1"/><family name="f1"/>)"
        R"(<device name="d2"/><timing_model name="t2"/><family name="f2"/></device_info>)",
        {"device.family: f2", "device.device: d2", "device.timing_model: t2"}),
    FileWithSections("Children_WithoutName_AssignTheEmptyText",
                     R"(<device_info><family name="F"/><device name="D"/><timing_model name="T"/>)"
                     "<family/><device/><timing_model/></device_info>"
                     R"(<design_info><top_module name="M"/><top_vhdl_arch name="A"/><top_module/>)"
                     "<top_vhdl_arch/></design_info>"
                     R"(<constraint_info><inter_file name="I"/><inter_file/></constraint_info>)",
                     {}),
    FileWithSections("Children_WithAPrefixedNameAttribute_HaveNoName",
                     R"(<device_info><family kel:name="F" NAME="G"/></device_info>)", {}),
    FileWithSections(
        "Children_OfDesignInfo_FilesAreAppendedAndTheLastTopLevelWins",
        R"(<design_info><top_vhdl_arch name="a1"/>)"
        R"(<design_file name="b.v" version="2" library="l"/><top_module name="t1"/>)"
        R"(<design_file name="a.v" version="1"/><top_module name="t2"/>)"
        R"(<design_file name="b.v" library="m"/><design_file/><design_file name=""/>)"
        R"(<top_vhdl_arch name="a2"/></design_info>)",
        {"design.top_module: t2", "design.top_vhdl_arch: a2",
         "design.files[0]: b.v version=2 library=l", "design.files[1]: a.v version=1",
         "design.files[2]: b.v library=m", "design.files[3]: \"\"", "design.files[4]: \"\""}),
    FileWithSections("Children_OfDesignInfo_NoneAreNeededForItsAttributes",
                     R"(<design_info def_veri_version="v" def_vhdl_version="h"/>)",
                     {"design.def_veri_version: v", "design.def_vhdl_version: h"}),
    FileWithSections("Children_OfDesignInfo_AbsentAttributesClearTheDefaultVersions",
                     R"(<design_info def_veri_version="v" def_vhdl_version="h"/><design_info/>)",
                     {}),
    FileWithSections(
        "Children_OfConstraintInfo_SdcFilesAreAppendedWithoutEmptyNamesAndTheLastInterFileWins",
        R"(<constraint_info><sdc_file name="b.sdc"/><sdc_file name=""/><sdc_file/>)"
        R"(<inter_file name="one"/><sdc_file name="a.sdc"/><sdc_file name=" "/>)"
        R"(<inter_file name=" ./a//../B.csv "/><sdc_file name="b.sdc"/></constraint_info>)",
        {"constraint.sdc[0]: b.sdc", "constraint.sdc[1]: a.sdc", "constraint.sdc[2]:  ",
         "constraint.sdc[3]: b.sdc", "constraint.interface:  ./a//../B.csv "}),
    FileWithSections("Children_OfIsfInfo_AreAppendedInOrderWithoutEmptyNames",
                     R"(<isf_info><isf_file name="b"/><isf_file/><isf_file name=""/>)"
                     R"(<isf_file name="a"/><isf_file name="b"/></isf_info>)",
                     {"isf.files[0]: b", "isf.files[1]: a", "isf.files[2]: b"}),
    FileWithSections(
        "Children_OfIpInfo_InstancesAndTheirFilesAreKeptInOrder",
        R"(<ip_info><ip instance_name="u2" path="ip/b"><ip_src_file name="z.v"/>)"
        R"(<ip_src_file name="a.v"/><ip_src_file/></ip>)"
        R"(<ip instance_name="u1"/><ip/></ip_info>)",
        {R"(ip[0]: u2 path=ip/b file=z.v file=a.v file="")", "ip[1]: u1", R"(ip[2]: "")"}),
    FileWithSections(
        "Children_OfIpInfo_AreDirectOnesOnly",
        R"(<ip_info><ip_src_file name="lost.v"/><group><ip instance_name="lost"/></group>)"
        R"(<ip instance_name="u"><ip instance_name="lost"/>)"
        R"(<group><ip_src_file name="lost.v"/></group><ip_src_file name="a.v"/></ip>)"
        R"(</ip_info>)",
        {"ip[0]: u file=a.v"}),
    FileWithSections(
        "Children_OfFileLists_AreCollectedFromEveryDepthInDocumentOrder",
        R"(<sim_info><sim_file name="1" version="v" library="l"/><g><g>)"
        R"(<sim_file name="2"/></g><sim_file name="3"><sim_file name="4"/></sim_file></g>)"
        R"(<sim_file/></sim_info>)"
        R"(<misc_info><misc_file name="1" version="v" library="l"/><g><g>)"
        R"(<misc_file name="2"/></g><misc_file name="3"><misc_file name="4"/></misc_file>)"
        R"(</g><misc_file/></misc_info>)",
        {"simulation.files[0]: 1 version=v library=l", "simulation.files[1]: 2",
         "simulation.files[2]: 3", "simulation.files[3]: 4", "simulation.files[4]: \"\"",
         "misc.files[0]: 1 version=v library=l", "misc.files[1]: 2", "misc.files[2]: 3",
         "misc.files[3]: 4", "misc.files[4]: \"\""}),
    FileWithSections("Children_OfFileLists_AreIgnoredInAnotherNamespace",
                     R"(<sim_info xmlns:o="urn:other"><o:sim_file name="1"/>)"
                     R"(<sim_file xmlns="" name="2"/><o:group><kel:sim_file name="3"/></o:group>)"
                     R"(</sim_info><misc_info><misc_file xmlns="urn:other" name="1"/>)"
                     R"(<misc_file name="2"/></misc_info>)",
                     {"simulation.files[0]: 3", "misc.files[0]: 2"}),

    FileCase{"Namespaces_None_ElementsAreReadByLocalNames",
             "<project name=\"n\">" + DeviceInfoXml("Orrin") +
                 "<design_info><design_file name=\"a.v\"/></design_info>"
                 "<ip_info><ip instance_name=\"u\"/></ip_info>"
                 "<debugger><param name=\"a\" value=\"1\"/></debugger></project>",
             {"name: n", "device.family: Orrin", "design.files[0]: a.v", "ip[0]: u",
              "debugger.name: debugger", "debugger.param.a: 1"}},
    FileCase{"Namespaces_None_FileListsHaveNoEntries",
             "<project><sim_info><sim_file name=\"s\"/></sim_info>"
             "<misc_info><misc_file name=\"m\"/></misc_info></project>",
             {}},
    FileCase{"Namespaces_Another_SectionsAreReadByLocalNames",
             "<o:project xmlns:o=\"urn:other\"><o:device_info><o:family name=\"Orrin\"/>"
             "</o:device_info></o:project>",
             {"device.family: Orrin"}},
    FileWithSections("Namespaces_Prefixed_ElementsAreReadAsUnprefixedOnes",
                     "<kel:device_info><kel:family name=\"Orrin\"/></kel:device_info>"
                     "<kel:sim_info><kel:sim_file name=\"s\"/></kel:sim_info>",
                     {"device.family: Orrin", "simulation.files[0]: s"}),

    FileWithSections(
        "FlowProcesses_Elements_NameTheirOwnProcesses",
        R"(<debugger tool_name="d" name="other"/><kel:synthesis tool_name="s"/>)"
        R"(<bitstream_generation tool_name="b"/><place_and_route tool_name="p"/>)",
        {"synthesis.name: synthesis", "synthesis.tool: s", "place_and_route.name: place_and_route",
         "place_and_route.tool: p", "bitstream_generation.name: bitstream_generation",
         "bitstream_generation.tool: b", "debugger.name: debugger", "debugger.tool: d"}),
    FileWithSections(
        "FlowProcesses_AbsentToolName_ClearsTheToolName",
        R"(<debugger tool_name="d"/><synthesis tool_name="s"/><debugger/><synthesis/>)",
        {"synthesis.name: synthesis", "debugger.name: debugger"}),
    FileWithSections(
        "FlowProcesses_Maps_HoldTheirOwnParameters",
        R"(<synthesis><param name="n" value="1"/><dynparam name="n" value="2"/>)"
        R"(<defmacro name="n" value="3"/></synthesis>)"
        R"(<place_and_route><param name="n" value="4"/></place_and_route>)"
        R"(<bitstream_generation><param name="n" value="5"/></bitstream_generation>)"
        R"(<debugger><param name="n" value="6"/></debugger>)",
        {"synthesis.name: synthesis", "synthesis.defmacro.n: 3", "synthesis.dynparam.n: 2",
         "synthesis.param.n: 1", "place_and_route.name: place_and_route",
         "place_and_route.param.n: 4", "bitstream_generation.name: bitstream_generation",
         "bitstream_generation.param.n: 5", "debugger.name: debugger", "debugger.param.n: 6"}),
    FileWithSections("FlowProcesses_ValueTypes_AreConvertedAndOthersGiveNoType",
                     R"(<debugger><param name="a" value="x" value_type="e_string"/>)"
                     R"(<param name="b" value="x" value_type="e_bool"/>)"
                     R"(<param name="c" value="x" value_type="e_option"/>)"
                     R"(<param name="d" value="" value_type="e_noarg"/>)"
                     R"(<param name="e" value="x"/><param name="f" value="x" value_type=""/>)"
                     R"(<param name="g" value="x" value_type="E_STRING"/>)"
                     R"(<param name="h" value="x" value_type="e_string "/>)"
                     R"(<param name="i" value="x" value_type="string"/>)"
                     R"(<param name="j" value="x" value_type="0"/></debugger>)",
                     {"debugger.name: debugger", "debugger.param.a: x type=e_string",
                      "debugger.param.b: x type=e_bool", "debugger.param.c: x type=e_option",
                      R"(debugger.param.d: "" type=e_noarg)", "debugger.param.e: x",
                      "debugger.param.f: x", "debugger.param.g: x", "debugger.param.h: x",
                      "debugger.param.i: x", "debugger.param.j: x"}),
    FileWithSections("FlowProcesses_RefusedParameters_AreLeftOutAndTheResultIsTrue",
                     R"(<debugger><param name="a" value="x" value_type="e_noarg"/>)"
                     R"(<param name="b" value="" value_type="e_string"/>)"
                     R"(<param name="c" value="" value_type="e_bool"/>)"
                     R"(<param name="d" value="" value_type="e_option"/>)"
                     R"(<param name="e" value="" value_type="nonsense"/><param name="f"/><param/>)"
                     R"(<param name="next" value="1" value_type="e_string"/></debugger>)",
                     {"debugger.name: debugger", "debugger.param.next: 1 type=e_string"}),
    FileWithSections("FlowProcesses_RepeatedName_ReplacesTheEarlierValueOfTheSameType",
                     R"(<debugger><param name="n" value="1" value_type="e_string"/>)"
                     R"(<param name="m" value="2" value_type="e_string"/>)"
                     R"(<param name="n" value="3" value_type="e_string"/>)"
                     R"(<param name="m" value="true" value_type="e_bool"/></debugger>)",
                     {"debugger.name: debugger", "debugger.param.m: 2 type=e_string",
                      "debugger.param.n: 3 type=e_string"}),
    FileWithSections("FlowProcesses_ParameterWithoutName_IsStoredUnderTheEmptyName",
                     R"(<debugger><param value="v" value_type="e_string"/></debugger>)",
                     {"debugger.name: debugger", "debugger.param.: v type=e_string"})};

INSTANTIATE_TEST_SUITE_P(Files, LoadFileCase, testing::ValuesIn(kFileCases), ByName());

TEST_F(Load, LoadProjectData_UnknownChildOfSection_ReturnsFalseWithoutMessage) {
  const std::pair<const char*, std::vector<const char*>> cases[] = {
      {"device_info", {"bogus", "top_module"}},
      {"design_info", {"bogus", "sdc_file"}},
      {"constraint_info", {"bogus", "isf_file"}},
      {"isf_info", {"bogus", "io_place_file"}},
      {"synthesis", {"bogus", "Param"}},
      {"place_and_route", {"bogus", "dynparam", "defmacro"}},
      {"bitstream_generation", {"bogus", "dynparam", "defmacro"}},
      {"debugger", {"bogus", "dynparam", "defmacro"}}};
  for (const auto& [section, children] : cases) {
    for (const char* child : children) {
      SCOPED_TRACE(testing::Message() << section << "/" << child);
      const std::string attributes = "name=\"a\" value=\"1\" value_type=\"e_string\"";
      EXPECT_FALSE(LoadSections(ElementXml(section, "", ElementXml(child, attributes))));
      EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
    }
  }
  for (const ProcType process : {e_place_and_route, e_bitstream_generation, e_debugger}) {
    EXPECT_THAT(database.GetFlowProcess(process)->parameter_maps, IsEmpty());
  }
}

TEST_F(Load, LoadProjectData_FileListEntryFarDown_IsCollected) {
  ASSERT_TRUE(LoadSections("<sim_info>" + Repeated("<g>", 10000) + "<sim_file name=\"deep\"/>" +
                           Repeated("</g>", 10000) + "</sim_info>"));
  EXPECT_THAT(project(), ElementsAre("simulation.files[0]: deep"));
}

TEST_F(Load, LoadProjectData_Maps_ArePlacedInDocumentOrderEvenIfTheirParametersAreRefused) {
  ASSERT_TRUE(LoadSections(R"(<synthesis><defmacro name="a" value="1"/><param name="a"/>)"
                           R"(<defmacro name="b" value="3"/><dynparam name="a" value="4"/>)"
                           "</synthesis><debugger/>"));
  EXPECT_THAT(database.GetFlowProcess(e_synthesis)->parameter_map_index,
              UnorderedElementsAre(Pair("defmacro", 0), Pair("param", 1), Pair("dynparam", 2)));
  EXPECT_THAT(*database.FindFlowProcessParameterMap(e_synthesis, "param"), IsEmpty());
  EXPECT_THAT(database.GetFlowProcess(e_debugger)->parameter_maps, IsEmpty());
}

TEST_F(Load, LoadProjectData_CompleteFile_FillsTheWholeProject) {
  EXPECT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
}

TEST_F(Load, LoadProjectData_AbsentAttributesAndChildren_LeaveTheirFields) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  ASSERT_TRUE(LoadSections("<device_info/><constraint_info/><isf_info/><ip_info/>"));
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
}

TEST_F(Load, LoadProjectData_EmptyAttributes_AreStored) {
  ASSERT_TRUE(LoadBytes(ProjectXml("", "name=\"n\" site=\"s\"")));
  ASSERT_TRUE(LoadBytes(ProjectXml("", "name=\"\" site=\"\"")));
  EXPECT_THAT(project(), ElementsAre("info.site: "));
}

TEST_F(Load, LoadProjectData_SameFileTwice_DoublesListsAndKeepsTheRest) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  const auto twice = [](auto& list) {
    const auto once = list;
    list.insert(list.end(), once.begin(), once.end());
  };
  ProjectContents expected = CompleteProject(directory.path());
  twice(expected.design_info.design_files);
  twice(expected.design_constraint.sdc_files);
  twice(expected.design_isf.isf_files);
  twice(expected.sim_files);
  twice(expected.misc_files);
  twice(expected.ip_info.ips);
  EXPECT_THAT(AllDifferences(expected, database), IsEmpty());
}

TEST_F(Load, LoadProjectData_ExistingProject_IsMergedInto) {
  ASSERT_TRUE(database.CreateNewProjectDatabase("first"));
  database.SetProjectCurrentPath(PathText(directory.path()));
  database.SetDeviceTimingModel("typical");
  database.AddDesignRTLFile("/first.v", "v", "l");
  database.AddSynthesisParameter("kept", "1", e_string);
  database.AddSynthesisParameter("changed", "1", e_string);
  database.AddSynthesisParameter("typed", "1", e_string);
  database.AddProjectInfoAttribute("kept", "k");
  database.AddProjectInfoAttribute("changed", "1");
  const ProjectContents before = GetProjectContents(database);
  ASSERT_TRUE(LoadBytes(
      ProjectXml(DeviceInfoXml("Orrin") +
                     R"(<design_info><design_file name="/second.v"/></design_info><synthesis>)"
                     R"(<param name="changed" value="2" value_type="e_string"/>)"
                     R"(<param name="typed" value="true" value_type="e_bool"/>)"
                     R"(<param name="added" value="3" value_type="e_string"/></synthesis>)",
                 R"(changed="2" added="3")")));
  EXPECT_THAT(AllDifferences(before, database),
              ElementsAre(R"(info.added: nothing -> "3")", R"(info.changed: "1" -> "2")",
                          R"(device.family: "Varel" -> "Orrin")",
                          R"(design.files[1]: nothing -> "/second.v")",
                          R"(synthesis.param.added: nothing -> "3 type=e_string")",
                          R"(synthesis.param.changed: "1 type=e_string" -> "2 type=e_string")"));
}

TEST_F(Load, LoadProjectData_MalformedFile_IsRefusedAndMakesNoProject) {
  for (const std::string bytes :
       {"text", "<project>", "<project></projekt>", "<project/><project/>", "<project name=top/>",
        "<project a=\"1\" a=\"2\"/>", "<p:project/>", "<project name=\"&undefined;\"/>",
        "<project><device_info></project>"}) {
    ExpectRefusedAndNoProject(bytes);
  }
  EXPECT_TRUE(LoadBytes(ProjectXml("")));
}

TEST_F(Load, LoadProjectData_MalformedFile_LeavesTheProjectUntouched) {
  ExpectRefusedAndTheProjectUntouched("<project name=\"new\"><device_info/>");
}

TEST_F(Load, LoadProjectData_MalformedFile_MessagesHaveThePathAsItWasPassed) {
  Write("{}.xml", "<project>");
  const WorkingDirectory working_directory(directory.path());
  EXPECT_FALSE(LoadFile(".//{}.xml"));
  EXPECT_EQ(messages, RefusedMessages(".//{}.xml"));
}

TEST_F(Load, LoadProjectData_MissingSchema_WarnsAfterReadingByThePathAsItWasPassedAndLoads) {
  EXPECT_TRUE(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), "./no//{}.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage("./no//{}.xsd")));
  EXPECT_THAT(project(), ElementsAre("device.family: Orrin"));
}

TEST_F(Load, LoadProjectData_MissingSchemaAndMalformedFile_PostsReadingSchemaMalformed) {
  EXPECT_FALSE(LoadBytes("<project>", "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage("gone.xsd"),
                                    MalformedMessage(path())));
}

TEST_F(Load, LoadProjectData_FileThatSatisfiesTheSchema_Loads) {
  const std::string schema = Write("rules of the house", DeviceOnlySchema());
  EXPECT_TRUE(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  EXPECT_THAT(project(), ElementsAre("device.family: Orrin"));
}

TEST_F(Load, LoadProjectData_RelativeSchemaPath_IsBelowTheWorkingDirectory) {
  Write("s.xsd", DeviceOnlySchema());
  const WorkingDirectory working_directory(directory.path());
  EXPECT_FALSE(LoadBytes(ProjectXml("<isf_info/>"), "s.xsd"));
  EXPECT_EQ(messages, RefusedMessages(path()));
}

TEST_F(Load, LoadProjectData_FileThatBreaksTheSchema_IsRefusedAndMakesNoProject) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  for (const std::string& bytes :
       {ProjectXml("<isf_info/>"), ProjectXml("<device_info/><bogus/>"),
        ProjectXml("<device_info>x</device_info>"), std::string("<project/>")}) {
    ExpectRefusedAndNoProject(bytes, schema);
  }
}

TEST_F(Load, LoadProjectData_FileThatBreaksTheSchema_LeavesTheProjectUntouched) {
  ExpectRefusedAndTheProjectUntouched(CompleteProjectXml(), Write("s.xsd", DeviceOnlySchema()));
}

TEST_F(Load, LoadProjectData_SchemaThatCannotBeUsed_IsRefusedAsMalformed) {
  const std::string schemas[] = {
      Write("empty.xsd", ""), Write("truncated.xsd", DeviceOnlySchema().substr(0, 200)),
      Write("no_schema.xsd", "<project/>"),
      Write("type.xsd", DeviceOnlySchema("<xs:element name=\"e\" type=\"xs:nonsense\"/>")),
      PathText(directory.path())};
  for (const std::string& schema : schemas) ExpectRefusedAndNoProject(ProjectXml(""), schema);
}

TEST_F(Load, LoadProjectData_ShippedSchema_GivesTheSameProjectAsNone) {
  EXPECT_TRUE(LoadBytes(CompleteProjectXml(), ShippedSchema()));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
}

TEST_F(Load, LoadProjectData_ShippedSchema_AcceptsWhatLoadsWithoutLossAndNothingElse) {
  for (const std::string sections :
       {"", "<debugger/><device_info/><device_info/>",
        "<device_info><device/><family/><device/></device_info>",
        "<design_info><top_vhdl_arch/><design_file/><top_module/></design_info>",
        "<constraint_info><inter_file/><core_place_file><y/></core_place_file></constraint_info>",
        "<package_info a=\"b\"><any>thing</any></package_info>", "<security><any/></security>",
        "<synthesis><defmacro/><param value_type=\"\"/><dynparam/></synthesis>"}) {
    EXPECT_TRUE(LoadBytes(ProjectXml(sections, "any=\"thing\""), ShippedSchema())) << sections;
  }
  database.CleanProjectDatabase();
  for (const std::string sections :
       {"<bogus/>", "<device_info><bogus/></device_info>", "<sim_info><misc_file/></sim_info>",
        "<place_and_route><dynparam/></place_and_route>",
        "<synthesis><param value_type=\"e_number\"/></synthesis>"}) {
    ExpectRefusedAndNoProject(ProjectXml(sections), ShippedSchema());
  }
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
  EXPECT_EQ(database.GetProjectCurrentPath(), PathText(std::filesystem::path(here) / "sub"));
}

TEST_F(Load, LoadProjectData_FalseAfterReading_StillSetsTheDirectory) {
  ASSERT_FALSE(LoadSections("<bogus/>"));
  EXPECT_EQ(database.GetProjectCurrentPath(), directory.path().string());
}

TEST_F(Load, LoadProjectData_HandlerThrows_TheExceptionReachesTheCaller) {
  const std::pair<std::string, MessageRecorder::Message> cases[] = {
      {ProjectXml(""), ReadingMessage(path())},
      {ProjectXml(""), SchemaMissingMessage("gone.xsd")},
      {"<project>", MalformedMessage(path())},
      {ProjectXml("<package_info/>"), SchemaMissingMessage("gone.xsd")},
      {ProjectXml("<bogus/>"), UnexpectedMessage("bogus")}};
  for (const auto& [bytes, message] : cases) {
    SCOPED_TRACE(message.text);
    Write("p.xml", bytes);
    const ThrowingHandler handler(message.type);
    EXPECT_EQ(ErrorOf<HandlerFailure>([&] { database.LoadProjectData(path(), "gone.xsd"); }),
              message.text);
  }
}

TEST_F(Load, LoadProjectData_HandlerThrowsBeforeTheWalk_MakesNoProject) {
  Write("p.xml", ProjectXml(""));
  const ThrowingHandler handler(Diag::MessageType::kInfo);
  EXPECT_THROW(database.LoadProjectData(path(), ""), HandlerFailure);
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(Load, LoadProjectData_SeveralThreadsIntoOneObject_EachIsReadWhole) {
  Write("p.xml", CompleteProjectXml());
  const MessageRecorder recorder;
  InThreads(4, [&](int) {
    for (int k = 0; k < 25; ++k) EXPECT_TRUE(database.LoadProjectData(path(), ""));
  });
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  ASSERT_EQ(files.size(), 200u);
  // Each load holds the object for its whole walk: the two files of one load stand together.
  for (std::size_t i = 0; i < files.size(); i += 2) {
    ASSERT_EQ(files[i].version + files[i + 1].version, "v2k") << i;
  }
}

}  // namespace
