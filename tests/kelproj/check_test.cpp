#include <nlohmann/json.hpp>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;
using testing::MatchesRegex;

using Json = nlohmann::json;

constexpr char kUnknownElement[] =
    "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\" name=\"mixer\">\n"
    "  <kel:device_info/>\n"
    "  <kel:floorplan/>\n"
    "</kel:project>\n";

constexpr char kDeprecatedElement[] =
    "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\" name=\"mixer\">\n"
    "  <kel:package_info/>\n"
    "</kel:project>\n";

// Wrong by the schema alone.
constexpr char kUnknownType[] =
    "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\" name=\"mixer\">\n"
    "  <kel:debugger>\n"
    "    <kel:param name=\"cable\" value=\"usb\" value_type=\"e_float\"/>\n"
    "  </kel:debugger>\n"
    "</kel:project>\n";

constexpr char kAnySchema[] =
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
    "targetNamespace=\"http://schema.kel.example/wdp_proj\">"
    "<xs:element name=\"project\" type=\"xs:anyType\"/></xs:schema>\n";

class Check : public KelprojTest {};

TEST_F(Check, SampleAndNewProject_HaveNoProblems) {
  MakeProject();
  EXPECT_EQ(Run({"check", "blinker.xml", SampleProject()}), Done());
}

TEST_F(Check, Problem_IsToldWithItsPlaceAndTheAnswerIsNoForAnError) {
  struct {
    const char* bytes;
    int status;
    const char* shown;
  } const cases[] = {
      {kUnknownElement, 1, "mixer.xml:3:[0-9]+: error: [^\n]*floorplan(.|\n)*"},
      {"<project>\n<device_info>\n", 1, "mixer.xml:[0-9]+:[0-9]+: error: .*\n"},
      {kDeprecatedElement, 0, "mixer.xml:2:[0-9]+: warning: [^\n]*package_info[^\n]*\n"},
      // Found by the installed schema.
      {kUnknownType, 1, "mixer.xml:3:(.|\n)*: error: [^\n]*e_float(.|\n)*"}};
  for (const auto& [bytes, status, shown] : cases) {
    Write("mixer.xml", bytes);
    const Outcome outcome = Run({"check", "mixer.xml"});
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, MatchesRegex(shown));
  }
}

TEST_F(Check, Schema_TakesThePlaceOfTheInstalledOne) {
  Write("mixer.xml", kUnknownType);
  Write("any.xsd", kAnySchema);
  EXPECT_EQ(Run({"check", "mixer.xml", "--schema", "any.xsd"}).status, 0);
}

TEST_F(Check, SchemaThatIsNotThere_IsTrouble) {
  EXPECT_EQ(Run({"check", SampleProject(), "--schema", "other.xsd"}),
            Failed("there is no schema other.xsd"));
}

TEST_F(Check, SeveralFiles_AreEachCheckedUnderTheirNames) {
  Write("a.xml", kUnknownElement);
  Write("b ü.xml", kDeprecatedElement);
  const Outcome outcome = Run({"check", "a.xml", SampleProject(), "b ü.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, AllOf(StartsWith("a.xml:3:"), HasSubstr("\nb ü.xml:2:")));
}

TEST_F(Check, MissingFile_IsTroubleAndTheOthersAreStillChecked) {
  Write("a.xml", kUnknownElement);
  const Outcome outcome = Run({"check", "missing.xml", "a.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "kelproj: error: missing.xml is no file that can be read\n");
  EXPECT_THAT(outcome.out, StartsWith("a.xml:3:"));
}

TEST_F(Check, DirectoryOrFileThatCannotBeRead_IsTrouble) {
  std::filesystem::create_directory(PathOf("mixer.xml"));
  EXPECT_EQ(Run({"check", "mixer.xml"}), Failed("mixer.xml is no file that can be read"));
  if (!PermissionsBind()) GTEST_SKIP() << "permissions do not bind root";
  MakeProject();
  const Permissions write_only(PathOf("blinker.xml"), 0222);
  EXPECT_EQ(RunUnprivileged({"check", "blinker.xml"}),
            Failed("blinker.xml is no file that can be read"));
}

TEST_F(Check, FileOfAnotherEnding_IsAnError) {
  MakeProject();
  std::filesystem::rename(PathOf("blinker.xml"), PathOf("blinker.prj"));
  const Outcome outcome = Run({"check", "blinker.prj"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, AllOf(StartsWith("blinker.prj: error: "), HasSubstr(".xml")));
}

TEST_F(Check, Json_HasTheProblemsOfEachFile) {
  Write("a.xml", kUnknownElement);
  const Outcome outcome = Run({"check", "a.xml", SampleProject(), "--json"});
  EXPECT_EQ(outcome.status, 1);
  const Json files = Json::parse(outcome.out);
  EXPECT_EQ(files.at(0).at("file"), "a.xml");
  EXPECT_EQ(files.at(0).at("problems").at(0).at("severity"), "error");
  EXPECT_EQ(files.at(0).at("problems").at(0).at("line"), 3);
  EXPECT_EQ(files.at(1), Json({{"file", SampleProject()}, {"problems", Json::array()}}));
}

class CheckFiles : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("ip"));
    Write("mixer.xml", R"(<kel:project xmlns:kel="http://schema.kel.example/wdp_proj" name="mixer">
  <kel:design_info><kel:design_file name="top.v"/><kel:design_file name=""/></kel:design_info>
  <kel:constraint_info>
    <kel:sdc_file name="clocks.sdc"/><kel:inter_file name="pins.interface.csv"/>
  </kel:constraint_info>
  <kel:isf_info><kel:isf_file name="pads.isf"/></kel:isf_info>
  <kel:sim_info><kel:sim_file name="tb höhe.sv"/></kel:sim_info>
  <kel:misc_info><kel:misc_file name="/no/such/notes.md"/></kel:misc_info>
  <kel:ip_info>
    <kel:ip instance_name="pll" path="ip/pll.ip"><kel:ip_src_file name="pll.v"/></kel:ip>
  </kel:ip_info>
</kel:project>
)");
  }
};

TEST_F(CheckFiles, FilesThatDoNotExist_AreEachAnError) {
  const Outcome outcome = Run({"check", "mixer.xml", "--files"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            "mixer.xml: error: design.files[0]: \"top.v\" does not exist\n"
            "mixer.xml: error: design.files[1]: \"\" does not exist\n"
            "mixer.xml: error: simulation.files[0]: \"tb höhe.sv\" does not exist\n"
            "mixer.xml: error: misc.files[0]: \"/no/such/notes.md\" does not exist\n"
            "mixer.xml: error: constraint.sdc[0]: \"clocks.sdc\" does not exist\n"
            "mixer.xml: error: constraint.interface: \"pins.interface.csv\" does not exist\n"
            "mixer.xml: error: isf.files[0]: \"pads.isf\" does not exist\n"
            "mixer.xml: error: ip[0]: \"ip/pll.ip\" does not exist\n"
            "mixer.xml: error: ip.pll.files[0]: \"pll.v\" does not exist\n");
}

TEST_F(CheckFiles, FilesThatExist_AreNotNamed) {
  for (const char* name : {"top.v", "clocks.sdc", "pins.interface.csv", "pads.isf", "tb höhe.sv",
                           "ip/pll.ip", "ip/pll.v"}) {
    Write(name, "");
  }
  EXPECT_EQ(Run({"check", "mixer.xml", "--files"}).out,
            "mixer.xml: error: design.files[1]: \"\" does not exist\n"
            "mixer.xml: error: misc.files[0]: \"/no/such/notes.md\" does not exist\n");
}

TEST_F(CheckFiles, FromAnotherDirectory_AreLookedForBesideTheProjectIfTheOptionIsGiven) {
  Write("top.v", "");
  EXPECT_THAT(Run({"check", PathOf("mixer.xml"), "--files"}, {"/"}).out, Not(HasSubstr("top.v")));
  EXPECT_EQ(Run({"check", "mixer.xml"}), Done());
}

TEST_F(CheckFiles, FileThatDoesNotLoad_HasItsOwnErrorsAlone) {
  Write("mixer.xml", kUnknownElement);
  EXPECT_THAT(Run({"check", "mixer.xml", "--files"}).out, Not(HasSubstr("does not exist")));
}

/// The program and the schema, moved to another place.
class MovedInstallation : public KelprojTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(PathOf("moved here/bin"));
    std::filesystem::create_directories(PathOf("moved here/share/projectdb"));
    std::filesystem::copy_file(KelprojProgram(), Program());
    Write("mixer.xml", kUnknownType);
  }

  std::string Program() const { return PathOf("moved here/bin/kelproj"); }
  std::string Schema() const { return PathOf("moved here/share/projectdb/wdp_proj.xsd"); }
};

TEST_F(MovedInstallation, ProgramBehindALink_FindsTheSchemaBesideItself) {
  WriteFile(Schema(), kAnySchema);
  std::filesystem::create_symlink(Program(), PathOf("kelproj"));
  EXPECT_EQ(RunProcess({PathOf("kelproj"), "check", PathOf("mixer.xml")}).status, 0);
}

TEST_F(MovedInstallation, NoSchema_IsTroubleAndTellsWhereItWasLookedFor) {
  if (std::filesystem::exists(KELPROJ_INSTALLED_SCHEMA)) GTEST_SKIP() << "there is one";
  EXPECT_EQ(RunProcess({Program(), "check", PathOf("mixer.xml")}),
            Failed("the installed schema is neither " + Schema() +
                   " nor " KELPROJ_INSTALLED_SCHEMA ": --schema names another"));
}

}  // namespace
