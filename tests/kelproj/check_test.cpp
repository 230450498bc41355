#include <regex>

#include <nlohmann/json.hpp>

#include "testing/project_loading.h"
#include "tests/kelproj/check_test.h"

namespace {

using namespace test_support;

using Json = nlohmann::json;

// Where the system has no expressions, those of GoogleTest are few.
MATCHER_P(MatchesExpression, expression, "") {
  return std::regex_match(arg, std::regex(expression));
}

std::string UnknownElement() { return MixerXml("\n  <device_info/>\n  <floorplan/>\n"); }

std::string DeprecatedElement() { return MixerXml("\n  <package_info/>\n"); }

TEST_F(Check, SampleAndNewProject_HaveNoProblems) {
  MakeProject();
  EXPECT_EQ(Run({"check", "blinker.xml", SampleProject()}), Done());
}

TEST_F(Check, Problem_IsToldWithItsPlaceAndTheAnswerIsNoForAnError) {
  struct {
    std::string bytes;
    int status;
    const char* shown;
  } const cases[] = {
      {UnknownElement(), 1, "mixer.xml:3:[0-9]+: error: [^\n]*floorplan(.|\n)*"},
      {"<project>\n<device_info>\n", 1, "mixer.xml:[0-9]+:[0-9]+: error: (.|\n)*\n"},
      {DeprecatedElement(), 0, "mixer.xml:2:[0-9]+: warning: [^\n]*package_info[^\n]*\n"},
      // Found by the installed schema.
      {UnknownType(), 1, "mixer.xml:3:(.|\n)*: error: [^\n]*e_float(.|\n)*"}};
  for (const auto& [bytes, status, shown] : cases) {
    Write("mixer.xml", bytes);
    const Outcome outcome = Run({"check", "mixer.xml"});
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, MatchesExpression(shown));
  }
}

TEST_F(Check, ControlCharactersInAProblem_DoNotReachATerminal) {
  Write("mixer.xml", R"(<?xml version="1.1"?>
<project><debugger><param name="cable" value="usb" value_type="&#x1b;[31m&#x9b;"/></debugger></project>)");
  const std::string shown = Run({"check", "mixer.xml"}).out;
  EXPECT_THAT(shown, HasSubstr("\"\\x1b[31m\\x9b\" is not a type"));
  EXPECT_THAT(shown, Not(HasSubstr("\x1b")));
}

TEST_F(Check, Schema_TakesThePlaceOfTheInstalledOne) {
  Write("mixer.xml", UnknownType());
  Write("any.xsd", kAnySchema);
  EXPECT_EQ(Run({"check", "mixer.xml", "--schema", "any.xsd"}).status, 0);
}

TEST_F(Check, SchemaThatIsNotThere_IsTrouble) {
  EXPECT_EQ(Run({"check", SampleProject(), "--schema", "other.xsd"}),
            Failed("other.xsd does not exist"));
}

TEST_F(Check, SeveralFiles_AreEachCheckedUnderTheirNames) {
  Write("a.xml", UnknownElement());
  Write("b ü.xml", DeprecatedElement());
  const Outcome outcome = Run({"check", "a.xml", SampleProject(), "b ü.xml"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, AllOf(StartsWith("a.xml:3:"), HasSubstr("\nb ü.xml:2:")));
}

TEST_F(Check, MissingFile_IsTroubleAndTheOthersAreStillChecked) {
  Write("a.xml", UnknownElement());
  const Outcome outcome = Run({"check", "missing.xml", "a.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "kelproj: error: missing.xml does not exist\n");
  EXPECT_THAT(outcome.out, StartsWith("a.xml:3:"));
}

TEST_F(Check, FileOfAnotherEnding_IsAnError) {
  MakeProject();
  std::filesystem::rename(PathOf("blinker.xml"), PathOf("blinker.prj"));
  const Outcome outcome = Run({"check", "blinker.prj"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, AllOf(StartsWith("blinker.prj: error: "), HasSubstr(".xml")));
}

TEST_F(Check, Json_HasTheProblemsOfEachFile) {
  Write("a.xml", UnknownElement());
  const Outcome outcome = Run({"check", "a.xml", SampleProject(), "--json"});
  EXPECT_EQ(outcome.status, 1);
  const Json files = Json::parse(outcome.out);
  EXPECT_EQ(files.at(0).at("file"), "a.xml");
  EXPECT_EQ(files.at(0).at("problems").at(0).at("severity"), "error");
  EXPECT_EQ(files.at(0).at("problems").at(0).at("line"), 3);
  EXPECT_EQ(files.at(1), Json({{"file", SampleProject()}, {"problems", Json::array()}}));
}

TEST_F(Check, Json_HasTheFilesThatCannotBeReadToo) {
  Write("a.xml", UnknownElement());
  std::filesystem::create_directory(PathOf("b.xml"));
  const Outcome outcome = Run({"check", "missing.xml", "a.xml", "b.xml", "--json"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err,
            "kelproj: error: missing.xml does not exist\nkelproj: error: b.xml is a directory\n");
  const Json files = Json::parse(outcome.out);
  ASSERT_EQ(files.size(), 3u);
  const Json missing = {{"severity", "error"}, {"message", "missing.xml does not exist"}};
  EXPECT_EQ(files.at(0), Json({{"file", "missing.xml"}, {"problems", Json::array({missing})}}));
  EXPECT_EQ(files.at(1).at("file"), "a.xml");
  EXPECT_EQ(files.at(2).at("problems").at(0).at("message"), "b.xml is a directory");
}

TEST_F(Check, Strict_AnswersNoForAWarningToo) {
  Write("mixer.xml", DeprecatedElement());
  MakeProject();
  EXPECT_EQ(Run({"check", "mixer.xml"}).status, 0);
  EXPECT_EQ(Run({"check", "mixer.xml", "--strict"}).status, 1);
  EXPECT_EQ(Run({"check", "mixer.xml", "--strict"}).out, Run({"check", "mixer.xml"}).out);
  EXPECT_EQ(Run({"check", "blinker.xml", SampleProject(), "--strict"}), Done());
}

TEST_F(CheckContents, FileTwiceAmongTheSourcesOfAnInstance_IsAWarning) {
  EXPECT_EQ(CheckProject("<ip_info><ip instance_name=\"pll\" path=\"ip/pll.ip\">"
                         "<ip_src_file name=\"pll.v\"/><ip_src_file name=\"./pll.v\"/>"
                         "</ip></ip_info>"),
            Printed("mixer.xml: warning: ip.pll.files[1]: \"./pll.v\" is the file of "
                    "ip.pll.files[0] too\n"));
}

TEST_F(CheckContents, FileInTwoListsOrDescriptionOfTwoInstances_IsNoWarning) {
  EXPECT_EQ(CheckProject("<design_info><design_file name=\"a.v\"/></design_info>"
                         "<sim_info><sim_file name=\"a.v\"/></sim_info>"),
            Done());
  EXPECT_EQ(CheckProject("<ip_info><ip instance_name=\"a\" path=\"pll.ip\"/>"
                         "<ip instance_name=\"b\" path=\"pll.ip\"/></ip_info>"),
            Done());
}

TEST_F(CheckContents, InstancesOfOneName_AreAWarning) {
  EXPECT_EQ(CheckProject("<ip_info><ip instance_name=\"pll\" path=\"a.ip\"/>"
                         "<ip instance_name=\"ram\" path=\"b.ip\"/>"
                         "<ip instance_name=\"pll\" path=\"c.ip\"/></ip_info>"),
            Printed("mixer.xml: warning: ip[2]: \"pll\" is the instance name of ip[0] too\n"));
}

TEST_F(CheckContents, AbsoluteNameBelowTheProjectsDirectory_IsAWarning) {
  const std::string name = PathOf("rtl/a.v");
  EXPECT_EQ(CheckProject(DesignFiles({name, "/no/such/b.v", Directory() + "2/c.v"})),
            Printed("mixer.xml: warning: design.files[0]: \"" + name +
                    "\" is absolute; the project can move along with it only as a relative name, "
                    "since it is below the project's directory\n"));
}

TEST_F(CheckContents, TimingConstraintFileOfAnotherEnding_IsAWarning) {
  EXPECT_EQ(CheckProject("<constraint_info><sdc_file name=\"a.sdc\"/>"
                         "<sdc_file name=\"clocks.tcl\"/></constraint_info>"),
            Printed("mixer.xml: warning: constraint.sdc[1]: \"clocks.tcl\" does not end in "
                    ".sdc\n"));
}

TEST_F(CheckContents, FileOrParameterWithoutAName_IsAWarning) {
  EXPECT_EQ(CheckProject("<sim_info><sim_file library=\"work\"/></sim_info><debugger>" +
                         Parameter("", "usb", "e_string") + "</debugger>"),
            Printed("mixer.xml: warning: simulation.files[0]: it names no file\n"
                    "mixer.xml: warning: debugger.param: a parameter has no name\n"));
}

TEST_F(CheckContents, ValueThatIsNoBool_IsAWarning) {
  const auto check = [this](const std::string& value) {
    return CheckProject("<debugger>" + Parameter("trace", value, "e_bool") + "</debugger>");
  };
  for (const char* value : {"true", "false", "on", "off", "yes", "no", "0", "1"}) {
    EXPECT_EQ(check(value), Done()) << value;
  }
  for (const std::string value : {"maybe", "True", "2", "true "}) {
    EXPECT_EQ(check(value), Printed("mixer.xml: warning: debugger.param.trace: \"" + value +
                                    "\" is no value of type e_bool; expected true, false, on, "
                                    "off, yes, no, 0 or 1\n"));
  }
  EXPECT_EQ(CheckProject("<debugger>" + Parameter("trace", "maybe", "e_string") + "</debugger>"),
            Done());
}

TEST_F(CheckContents, NumberOfThreadsThatIsNotTaken_IsAWarning) {
  const auto check = [this](const std::string& process, const std::string& value) {
    return CheckProject("<" + process + ">" + Parameter("max_threads", value, "e_string") + "</" +
                        process + ">");
  };
  for (const char* value : {"1", "2", "16", "007", "99999"}) {
    EXPECT_EQ(check("synthesis", value), Done()) << value;
  }
  for (const std::string process : {"synthesis", "place_and_route"}) {
    for (const std::string value : {"0", "-1", "four", "4 ", " 4", "1e3", "+4"}) {
      EXPECT_EQ(check(process, value),
                Printed("mixer.xml: warning: " + process + ".param.max_threads: \"" + value +
                        "\" is no number of threads; the tool takes its own default\n"));
    }
  }
  EXPECT_EQ(check("debugger", "four"), Done());
}

TEST_F(CheckContents, TwoTopModulesOrParametersOfOneName_AreAWarningInTheirLine) {
  EXPECT_THAT(CheckProject("<design_info>\n<top_module name=\"a\"/>\n"
                           "<top_module name=\"b\"/></design_info>")
                  .out,
              MatchesExpression("mixer.xml:3:[0-9]+: warning: [^\n]*top_module[^\n]*\n"));
  EXPECT_THAT(CheckProject("<debugger>\n" + Parameter("cable", "usb", "e_string") + "\n" +
                           Parameter("cable", "net", "e_string") + "</debugger>")
                  .out,
              MatchesExpression("mixer.xml:3:[0-9]+: warning: [^\n]*cable[^\n]*\n"));
}

TEST_F(CheckContents, OfAFileWithAnError_AreNotLookedAt) {
  EXPECT_THAT(CheckProject(DesignFiles({"a.v", "a.v"}) + "<floorplan/>").out,
              Not(HasSubstr("design.files")));
}

constexpr char kNamelessFile[] = "mixer.xml: warning: design.files[1]: it names no file\n";

TEST_F(CheckFiles, FilesThatDoNotExist_AreEachAnError) {
  const Outcome outcome = Run({"check", "mixer.xml", "--files"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out,
            std::string(kNamelessFile) +
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

TEST_F(CheckFiles, Directory_IsNamedAsOne) {
  std::filesystem::create_directory(PathOf("top.v"));
  EXPECT_THAT(Run({"check", "mixer.xml", "--files"}).out,
              HasSubstr("mixer.xml: error: design.files[0]: \"top.v\" is a directory\n"));
}

TEST_F(CheckFiles, FilesThatExist_AreNotNamed) {
  for (const char* name : {"top.v", "clocks.sdc", "pins.interface.csv", "pads.isf", "tb höhe.sv",
                           "ip/pll.ip", "ip/pll.v"}) {
    Write(name, "");
  }
  EXPECT_EQ(Run({"check", "mixer.xml", "--files"}).out,
            std::string(kNamelessFile) +
                "mixer.xml: error: design.files[1]: \"\" does not exist\n"
                "mixer.xml: error: misc.files[0]: \"/no/such/notes.md\" does not exist\n");
}

TEST_F(CheckFiles, FromAnotherDirectory_AreLookedForBesideTheProjectIfTheOptionIsGiven) {
  Write("top.v", "");
  EXPECT_THAT(Run({"check", PathOf("mixer.xml"), "--files"}, {"/"}).out, Not(HasSubstr("top.v")));
  EXPECT_EQ(Run({"check", "mixer.xml"}), Printed(kNamelessFile));
}

TEST_F(CheckFiles, FileThatDoesNotLoad_HasItsOwnErrorsAlone) {
  Write("mixer.xml", UnknownElement());
  EXPECT_THAT(Run({"check", "mixer.xml", "--files"}).out, Not(HasSubstr("does not exist")));
}

TEST_F(CheckFiles, Unlisted_NamesTheHdlFilesBelowTheProjectThatNoListHas) {
  for (const char* directory : {"rtl/core", ".cache"}) {
    std::filesystem::create_directories(PathOf(directory));
  }
  for (const char* name :
       {"top.v", "tb höhe.sv", "ip/pll.v", "ip/ram.v", "rtl/core/a b.sv", "rtl/b.vhd", "rtl/c.vhdl",
        "rtl/notes.txt", "rtl/clocks.sdc", ".cache/d.v", "unlisted.v"}) {
    Write(name, "");
  }
  const std::string shown = std::string(kNamelessFile) +
                            "mixer.xml: warning: \"ip/ram.v\" is in no list of the project\n"
                            "mixer.xml: warning: \"rtl/b.vhd\" is in no list of the project\n"
                            "mixer.xml: warning: \"rtl/c.vhdl\" is in no list of the project\n"
                            "mixer.xml: warning: \"rtl/core/a b.sv\" is in no list of the project\n"
                            "mixer.xml: warning: \"unlisted.v\" is in no list of the project\n";
  EXPECT_EQ(Run({"check", "mixer.xml", "--unlisted"}), Printed(shown));
  EXPECT_EQ(Run({"check", "mixer.xml", "--unlisted", "--strict"}), AnsweredNo(shown));
  EXPECT_THAT(Run({"check", "--help"}).out, HasSubstr(".v, .sv, .vhd or .vhdl"));
  EXPECT_EQ(Run({"check", "mixer.xml"}), Printed(kNamelessFile));
}

TEST_F(Check, Directory_IsTrouble) {
  std::filesystem::create_directory(PathOf("mixer.xml"));
  EXPECT_EQ(Run({"check", "mixer.xml"}), Failed("mixer.xml is a directory"));
}

TEST_F(CheckContents, FileTwiceInAList_IsAWarningHoweverItIsSpelled) {
  std::filesystem::create_directories(PathOf("rtl/core"));
  for (const char* spelling : {"rtl/a.v", "./rtl/a.v", "rtl//a.v", "rtl/core/../a.v"}) {
    EXPECT_EQ(CheckProject(DesignFiles({"rtl/b.v", "rtl/a.v", spelling})),
              Printed(std::string("mixer.xml: warning: design.files[2]: \"") + spelling +
                      "\" is the file of design.files[1] too\n"));
  }
}

TEST_F(MovedInstallation, Schema_IsThatBesideTheProgram) {
  WriteFile(Schema(), kAnySchema);
  EXPECT_EQ(RunProcess({Program(), "check", PathOf("mixer.xml")}).status, 0);
}

TEST_F(MovedInstallation, NoSchemaForACommandThatTakesNone_IsTroubleAndTellsWhatToDo) {
  if (std::filesystem::exists(KELPROJ_INSTALLED_SCHEMA)) GTEST_SKIP() << "there is one";
  const Outcome outcome = RunProcess({Program(), "set", PathOf("mixer.xml"), "info.owner", "a"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, EndsWith(": install the program whole\n"));
}

}  // namespace
