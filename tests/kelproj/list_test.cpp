#include <nlohmann/json.hpp>

#include "testing/project_loading.h"
#include "tests/kelproj/list_test.h"

namespace {

using namespace test_support;
using ListJson = nlohmann::json;

TEST_F(List, FromTheProjectsDirectory_PrintsAllFilesInTheProjectsOrder) {
  EXPECT_EQ(RunList({}), Printed("rtl/my core/up counter.v\n"
                                 "rtl/lamp.sv\n" +
                                 Pad() +
                                 "\n"
                                 "../tb höhe.sv\n"
                                 "notes.md\n"
                                 "clocks.sdc\n"
                                 "pins.interface.csv\n"
                                 "pads.isf\n"
                                 "ip/pll.ip\n"
                                 "ip/gen/pll.v\n"));
}

TEST_F(List, FromElsewhere_PrintsNamesThatTheUserCanOpen) {
  EXPECT_EQ(RunList({"--sim", "--sdc", "--ip"}, "out", "../lamp/lamp.xml"),
            Printed("../tb höhe.sv\n../lamp/clocks.sdc\n../lamp/ip/pll.ip\n"
                    "../lamp/ip/gen/pll.v\n"));
}

TEST_F(List, KindsLibrariesAndVersions_ChooseAmongTheFiles) {
  const std::string pad = Pad() + "\n";
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"--rtl"}, "rtl/my core/up counter.v\nrtl/lamp.sv\n" + pad},
      {{"--interface"}, "pins.interface.csv\n"},
      {{"--isf"}, "pads.isf\n"},
      // The order is the project's.
      {{"--sdc", "--misc"}, "notes.md\nclocks.sdc\n"},
      {{"--library", "light"}, "rtl/lamp.sv\n"},
      {{"--library", "light", "--sdc"}, "clocks.sdc\n"},
      {{"--library", "light", "--sdc", "--rtl"}, "rtl/lamp.sv\nclocks.sdc\n"},
      // Of other kinds, all are listed if the kind is asked for, and none otherwise.
      {{"--library", "light", "--misc"}, "notes.md\n"},
      {{"--library", "default"}, "rtl/my core/up counter.v\n" + pad},
      {{"--library", "light", "--format", "iverilog"}, "rtl/lamp.sv\n"},
      {{"--library", "light", "--ip", "--format", "iverilog"}, "ip/gen/pll.v\n"},
      {{"--hdl-version", "sv_2017"}, "rtl/lamp.sv\n../tb höhe.sv\n"},
      {{"--hdl-version", "sv_2017", "--rtl"}, "rtl/lamp.sv\n"},
      {{"--hdl-version", "sv_2017", "--hdl-version", "verilog_2001", "--library", "default"},
       "rtl/my core/up counter.v\n" + pad},
      {{"--library", "dark"}, ""}};
  for (const auto& [options, names] : cases) EXPECT_EQ(RunList(options), Printed(names));
}

TEST_F(List, StoredOrAbsolute_PrintsThatForm) {
  EXPECT_EQ(RunList({"--sim", "--ip", "--stored"}, "out", "../lamp/lamp.xml"),
            Printed("../tb höhe.sv\nip/pll.ip\ngen/pll.v\n"));
  EXPECT_EQ(RunList({"--sim", "--ip", "--absolute"}, "out", "../lamp/lamp.xml"),
            Printed(PathOf("tb höhe.sv") + "\n" + PathOf("lamp/ip/pll.ip") + "\n" +
                    PathOf("lamp/ip/gen/pll.v") + "\n"));
}

TEST_F(List, ZeroTerminated_EndsEachNameByAZeroByte) {
  using std::string_literals::operator""s;
  EXPECT_EQ(RunList({"-0", "--misc", "--sdc"}), Printed("notes.md\0clocks.sdc\0"s));
}

TEST_F(List, Json_HasEachFileWithItsListAndWhatItIsStoredWith) {
  const Outcome outcome =
      RunList({"--json", "--hdl-version", "sv_2017", "--rtl", "--ip"}, "out", "../lamp/lamp.xml");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      ListJson::parse(outcome.out),
      ListJson(
          {{{"list", "design.files"},
            {"name", "rtl/lamp.sv"},
            {"path", "../lamp/rtl/lamp.sv"},
            {"version", "sv_2017"},
            {"library", "light"}},
           {{"list", "ip"}, {"name", "ip/pll.ip"}, {"path", "../lamp/ip/pll.ip"}},
           {{"list", "ip.pll.files"}, {"name", "gen/pll.v"}, {"path", "../lamp/ip/gen/pll.v"}}}));
}

TEST_F(List, ProjectWithoutFiles_PrintsNothing) {
  MakeProject();
  EXPECT_EQ(Run({"list", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"list", "blinker.xml", "--json"}), Printed("[]\n"));
}

TEST_F(List, WrongOptions_AreTrouble) {
  EXPECT_THAT(RunList({"-0", "--json"}), IsWrongUse("kelproj list", {"-0", "--json"}));
  EXPECT_THAT(RunList({"--stored", "--absolute"}),
              IsWrongUse("kelproj list", {"--stored", "--absolute"}));
  EXPECT_THAT(RunList({"--format", "ninja"}), IsWrongUse("kelproj list", {"--format", "ninja"}));
  EXPECT_EQ(RunList({"--target", "lamp.bit"}), Failed("only --format make has a target"));
  EXPECT_EQ(RunList({"--format", "make", "--target", ""}), Failed("the empty text names no file"));
}

TEST_F(List, FileThatDoesNotLoad_IsTroubleAndPrintsNothing) {
  Write("lamp/lamp.xml", "<project>");
  const Outcome outcome = RunList({});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, EndsWith("kelproj: error: lamp.xml does not load\n"));
}

// The design elaborates only if every macro, define parameter and file arrives as it is stored.
constexpr char kTop[] = R"(module top #(parameter WIDTH = 4, parameter RESET = 0,
      parameter ROM = "", parameter SPEED = "slow")
    (input wire clk, output wire [WIDTH-1:0] count);
  counter #(.WIDTH(WIDTH), .STEP(`STEP)) counter_i (.clk(clk), .count(count));
  generate
    if (WIDTH != 8 || RESET != 32'h0001_0000) begin : g_parameters
      a_parameter_is_missing missing_i ();
    end
    if (ROM != "fw/boot_rom.hex" || SPEED != "fast") begin : g_texts
      a_text_is_missing missing_text_i ();
    end
  endgenerate
`ifndef QUIET
  a_macro_without_value_is_missing missing_macro_i ();
`endif
endmodule
)";

constexpr char kCounter[] = R"(module counter #(parameter WIDTH = 1, parameter STEP = 1)
    (input wire clk, output reg [WIDTH-1:0] count);
  wire enable;
  gate gate_i (.enable(enable));
  always @(posedge clk) if (enable) count <= count + STEP[WIDTH-1:0];
endmodule
)";

constexpr char kGate[] = "module gate (output wire enable);\n  assign enable = 1'b1;\nendmodule\n";

constexpr char kDesign[] = R"(
  <design_info>
    <top_module name="top"/>
    <design_file name="rtl/top.v"/>
    <design_file name="rtl/my core/up counter.v"/>
  </design_info>
  <constraint_info><sdc_file name="clocks.sdc"/></constraint_info>
  <sim_info><sim_file name="no test bench.v"/></sim_info>
  <ip_info>
    <ip instance_name="gate" path="ip/gate.ip"><ip_src_file name="gate.v"/></ip>
  </ip_info>
  <synthesis>
    <dynparam name="WIDTH" value="8" value_type="e_string"/>
    <dynparam name="RESET" value="32'h0001_0000"/>
    <dynparam name="ROM" value="fw/boot_rom.hex" value_type="e_string"/>
    <dynparam name="SPEED" value="fast" value_type="e_option"/>
    <defmacro name="STEP" value="3"/>
    <defmacro name="QUIET" value="" value_type="e_noarg"/>
  </synthesis>
)";

/// A program that reads a form of command files.
struct Reader {
  const char* format;
  std::vector<std::string> command;  ///< Before the name of the command file.
};

void PrintTo(const Reader& reader, std::ostream* out) { *out << reader.command.front(); }

const Reader kVerilator = {"f", {"verilator", "--lint-only", "-Wall", "-Wno-DECLFILENAME", "-f"}};
const Reader kIverilog = {"iverilog", {"iverilog", "-g2012", "-t", "null", "-c"}};

/// A small design that is read by other programs, by way of what the program prints for them.
class ListedDesign : public KelprojTest {
 protected:
  void SetUp() override {
    for (const char* directory : {"rtl/my core", "ip", "build/lint"}) {
      std::filesystem::create_directories(PathOf(directory));
    }
    Write("lamp.xml", ProjectXml(kDesign, "name=\"lamp\""));
    Write("rtl/top.v", kTop);
    Write("rtl/my core/up counter.v", kCounter);
    Write("ip/gate.v", kGate);
  }

  static bool IsThere(const std::string& program) {
    return RunProcess({program, program == "iverilog" ? "-V" : "--version"}).status == 0;
  }

  // Runs the program with what is printed for it.
  Outcome RunWithList(const std::vector<std::string>& list, std::vector<std::string> program,
                      const std::string& directory = "") const {
    const std::string here = directory.empty() ? Directory() : directory;
    const Outcome printed = Run(list, {here});
    if (printed.status != 0) return printed;
    WriteFile(here + "/printed", printed.out);
    program.emplace_back("printed");
    return RunProcess(program, {here});
  }

  Outcome ReadBy(const Reader& reader, const std::string& file,
                 const std::string& directory = "") const {
    return RunWithList({"list", file, "--format", reader.format}, reader.command, directory);
  }

  // A project with one file of this name, which has a module, and nothing else.
  void MakeProjectOfFile(const std::string& name) const {
    WriteFile(PathOf(name), "module one;\nendmodule\n");
    MakeProjectOfName(name);
  }

  // The same, whether the file is there or not.
  void MakeProjectOfName(const std::string& name) const {
    std::filesystem::remove(PathOf("one.xml"));
    ASSERT_EQ(Run({"new", "one", "-o", "one.xml", "--top", "one"}).status, 0);
    ASSERT_EQ(Run({"add", "one.xml", "--rtl", "--", name}).status, 0);
  }
};

TEST_F(ListedDesign, CommandFile_HasMacrosDefineParametersAndDesign) {
  EXPECT_EQ(Run({"list", "lamp.xml", "--format", "f"}),
            Printed("+define+QUIET\n"
                    "+define+STEP=3\n"
                    "-GRESET=32'h0001_0000\n"
                    "\"-GROM=\\\"fw/boot_rom.hex\\\"\"\n"
                    "\"-GSPEED=\\\"fast\\\"\"\n"
                    "-GWIDTH=8\n"
                    "rtl/top.v\n"
                    "\"rtl/my core/up counter.v\"\n"
                    "ip/gate.v\n"));
}

TEST_F(ListedDesign, SourceOfSeveralInstances_IsInACommandFileOnce) {
  const std::string sources = Run({"list", "lamp.xml", "--rtl", "--stored"}).out;
  const std::string first = sources.substr(0, sources.find('\n'));
  for (const char* instance : {"u_first", "u_second"}) {
    ASSERT_NE(
        Run({"add", "lamp.xml", "--ip", instance, "--path", std::string(instance) + ".ip", first})
            .status,
        2);
  }
  for (const char* format : {"f", "iverilog"}) {
    const std::string listed = Run({"list", "lamp.xml", "--format", format}).out;
    EXPECT_NE(listed.find(first), std::string::npos) << listed;
    EXPECT_EQ(listed.find(first), listed.rfind(first)) << listed;
  }
}

TEST_F(ListedDesign, IverilogCommandFile_NamesTheTopModuleWithItsParameters) {
  EXPECT_EQ(Run({"list", "lamp.xml", "--format", "iverilog"}),
            Printed("+define+QUIET\n"
                    "+define+STEP=3\n"
                    "+parameter+top.RESET=32'h00010000\n"
                    "+parameter+top.ROM=\"fw/boot_rom.hex\"\n"
                    "+parameter+top.SPEED=\"fast\"\n"
                    "+parameter+top.WIDTH=8\n"
                    "rtl/top.v\n"
                    "rtl/my core/up counter.v\n"
                    "ip/gate.v\n"));
}

TEST_F(ListedDesign, KindsOfFilesForACommandFile_TakeThePlaceOfTheDesign) {
  EXPECT_EQ(Run({"list", "lamp.xml", "--format", "iverilog", "--sim", "--ip"}),
            Printed("+define+QUIET\n"
                    "+define+STEP=3\n"
                    "+parameter+top.RESET=32'h00010000\n"
                    "+parameter+top.ROM=\"fw/boot_rom.hex\"\n"
                    "+parameter+top.SPEED=\"fast\"\n"
                    "+parameter+top.WIDTH=8\n"
                    "no test bench.v\n"
                    "ip/gate.v\n"));
}

class CommandFile : public ListedDesign, public testing::WithParamInterface<Reader> {
 protected:
  void SetUp() override {
    ListedDesign::SetUp();
    const std::string& program = GetParam().command.front();
    if (!IsThere(program)) GTEST_SKIP() << "there is no " << program;
  }
};

INSTANTIATE_TEST_SUITE_P(Programs, CommandFile, testing::Values(kVerilator, kIverilog),
                         [](const auto& reader) { return reader.param.command.front(); });

TEST_P(CommandFile, HereAndElsewhere_IsRead) {
  EXPECT_EQ(ReadBy(GetParam(), "lamp.xml"), Done());
  EXPECT_EQ(ReadBy(GetParam(), "../../lamp.xml", PathOf("build/lint")), Done());
  EXPECT_EQ(ReadBy(GetParam(), PathOf("lamp.xml"), PathOf("build/lint")), Done());
}

TEST_P(CommandFile, OtherValue_IsReadToo) {
  ASSERT_EQ(Run({"set", "lamp.xml", "synthesis.dynparam.WIDTH", "9"}).status, 0);
  EXPECT_THAT(ReadBy(GetParam(), "lamp.xml").err, HasSubstr("a_parameter_is_missing"));
}

TEST_P(CommandFile, OddNames_AreReadAsTheyAre) {
  for (const char* name : {"-one.v", "+one.v", "#one.v", " one.v", "one  two.v", "one\"two\".v",
                           "one'two.v", "one\\two.v", "one(2).v", "ö ne.v", "one;two.v", "one*.v",
                           "one\ttwo.v", "one,two.v", "one$.v", "~one.v"}) {
    MakeProjectOfFile(name);
    EXPECT_EQ(ReadBy(GetParam(), "one.xml"), Done()) << name;
  }
}

TEST_P(CommandFile, NumbersAndTextsOfDefineParameters_AreReadAsTheyAre) {
  struct {
    const char* value;
    const char* type;
    const char* in_verilog;
  } const cases[] = {{"8", "e_string", "8"},
                     {"-3", "none", "-3"},
                     {"96_000", "none", "96000"},
                     {"0x10", "e_string", "16"},
                     {"8'b1010_1010", "e_string", "170"},
                     {"16'HfF", "e_option", "255"},
                     {"12abc", "e_string", "\"12abc\""},
                     {"true", "e_string", "\"true\""},
                     {"\"8\"", "e_string", "\"8\""},
                     {"\"fw/boot.hex\"", "none", "\"fw/boot.hex\""},
                     {"a,b//c#d'e=f;g%h$i", "e_string", "\"a,b//c#d'e=f;g%h$i\""}};
  for (const auto& [value, type, in_verilog] : cases) {
    MakeProjectOfFile("one.v");
    Write("one.v",
          "/* verilator lint_off WIDTH */\nmodule one #(parameter P = 0) ();\n  if (P != " +
              std::string(in_verilog) + ") a_value_is_wrong wrong_i ();\nendmodule\n");
    ASSERT_EQ(Run({"set", "one.xml", "synthesis.dynparam.P", value, "--type", type}), Done());
    EXPECT_EQ(ReadBy(GetParam(), "one.xml"), Done()) << value;
  }
}

TEST_F(ListedDesign, MacroValues_ReachTheLinterAsTheyAre) {
  if (!IsThere("verilator")) GTEST_SKIP() << "there is no verilator";
  Write("text.v",
        "module text;\n  if (`TEXT != \"a + b // c\" || `SUM != 3) begin\n"
        "    a_value_is_wrong wrong_i ();\n  end\nendmodule\n");
  ASSERT_EQ(Run({"new", "one", "-o", "one.xml", "--top", "text"}).status, 0);
  ASSERT_EQ(Run({"add", "one.xml", "--rtl", "text.v"}).status, 0);
  ASSERT_EQ(Run({"set", "one.xml", "synthesis.defmacro.TEXT", "\"a + b // c\""}).status, 0);
  ASSERT_EQ(Run({"set", "one.xml", "synthesis.defmacro.SUM", "(1 + 2)"}).status, 0);
  EXPECT_EQ(ReadBy(kVerilator, "one.xml"), Done());
}

TEST_F(ListedDesign, WhatAFormatCannotSay_IsTrouble) {
  MakeProjectOfName("one.v");
  const auto expect_refused = [this](const std::string& format, const std::string& reason) {
    EXPECT_EQ(Run({"list", "one.xml", "--format", format}), Failed(reason));
  };
  ASSERT_EQ(Run({"set", "one.xml", "synthesis.defmacro.LABEL", "a b"}).status, 0);
  expect_refused("iverilog",
                 "synthesis.defmacro.LABEL: \"LABEL=a b\" cannot be written for iverilog");
  const std::pair<const char*, const char*> defines[] = {
      {"fw/boot.hex", "none"}, {"true", "e_bool"},   {"4'bx", "none"},       {"a b", "e_string"},
      {"a\"b", "e_string"},    {"a\\b", "e_string"}, {"$(HOME)", "e_string"}};
  for (const auto& [value, type] : defines) {
    MakeProjectOfName("one.v");
    ASSERT_EQ(Run({"set", "one.xml", "synthesis.dynparam.ROM", value, "--type", type}), Done());
    const std::string reason =
        "synthesis.dynparam.ROM: \"ROM=" + std::string(value) + "\" cannot be written for ";
    expect_refused("iverilog", reason + "iverilog");
    const bool has_escape = std::string(value).find_first_of("\"\\") != std::string::npos;
    if (has_escape) expect_refused("f", reason + "-f of simulators and linters");
  }
  MakeProjectOfName("one$two.v");
  expect_refused("f", "\"one$two.v\" cannot be written for -f of simulators and linters");
  MakeProjectOfName("one ");
  expect_refused("iverilog", "\"one \" cannot be written for iverilog");
  for (const char* name : {"one=two.v", "one;two.v", "one|two.v", "one ", "one&", "one(2)"}) {
    MakeProjectOfName(name);
    expect_refused("make", "\"" + std::string(name) + "\" cannot be written for make");
  }
}

TEST_F(ListedDesign, DefineParameterWithoutTopModule_IsTroubleForIverilog) {
  ASSERT_EQ(Run({"set", "lamp.xml", "design.top_module", ""}).status, 0);
  EXPECT_EQ(Run({"list", "lamp.xml", "--format", "iverilog"}),
            Failed("synthesis.dynparam.RESET: \"RESET=32'h0001_0000\" of a project without top "
                   "module cannot be written for iverilog"));
}

TEST_F(ListedDesign, RuleForMake_NamesTheProjectFileAndEveryFile) {
  EXPECT_EQ(Run({"list", "../lamp.xml", "--rtl", "--format", "make"}, {PathOf("build")}),
            Printed("lamp.bit: \\\n"
                    "  ../lamp.xml \\\n"
                    "  ../rtl/top.v \\\n"
                    "  ../rtl/my\\ core/up\\ counter.v\n"
                    "\n"
                    "../lamp.xml:\n"
                    "\n"
                    "../rtl/top.v:\n"
                    "\n"
                    "../rtl/my\\ core/up\\ counter.v:\n"));
}

class ListForMake : public ListedDesign {
 protected:
  void SetUp() override {
    ListedDesign::SetUp();
    if (!IsThere("make")) GTEST_SKIP() << "there is no make";
    Write("Makefile", "include rules\nout.bit:\n\t@echo made\n\t@touch out.bit\n");
  }

  // What make says once the rules are as the project is.
  std::string Make(const std::string& file) const {
    Write("rules", Run({"list", file, "--format", "make", "--target", "out.bit"}).out);
    const Outcome outcome = RunProcess({"make", "--silent", "out.bit"}, {Directory()});
    return outcome.out + outcome.err;
  }

  void SetAge(const std::string& name, std::chrono::seconds age) const {
    std::filesystem::last_write_time(PathOf(name),
                                     std::filesystem::file_time_type::clock::now() - age);
  }

  void SetTargetAndFilesOld(const std::vector<std::string>& files) const {
    for (const std::string& file : files) SetAge(file, std::chrono::minutes(2));
    SetAge("out.bit", std::chrono::minutes(1));
  }
};

TEST_F(ListForMake, FileNewerThanTheTarget_HasItMadeAgain) {
  // Those that are not there would have it made each time.
  for (const char* name : {"no test bench.v", "clocks.sdc", "ip/gate.ip"}) Write(name, "");
  const std::vector<std::string> files = {
      "lamp.xml",   "rtl/top.v", "rtl/my core/up counter.v", "clocks.sdc",
      "ip/gate.ip", "ip/gate.v", "no test bench.v"};
  EXPECT_EQ(Make("lamp.xml"), "made\n");
  for (const std::string& newer : files) {
    SetTargetAndFilesOld(files);
    EXPECT_EQ(Make("lamp.xml"), "") << newer;
    SetAge(newer, std::chrono::seconds(1));
    EXPECT_EQ(Make("lamp.xml"), "made\n") << newer;
  }
}

TEST_F(ListForMake, FileThatIsThereNoLonger_HasItMadeAgain) {
  Make("lamp.xml");
  std::filesystem::remove(PathOf("rtl/top.v"));
  EXPECT_EQ(Make("lamp.xml"), "made\n");
}

TEST_F(ListForMake, OddNames_AreWatchedAsTheyAre) {
  for (const char* name : {"one two.v",   "one\ttwo.v", "\tone.v",   " one.v", "one#two.v",
                           "one:two.v",   "one$two.v",  "one%two.v", "one*.v", "one\\two.v",
                           "one\\ two.v", "one?.v",     "one[2].v",  "~one.v", "ö ne.v",
                           "one'two.v",   "one\"two.v", "one(2).v",  "-one.v", "one,2.v"}) {
    MakeProjectOfFile(name);
    Make("one.xml");
    SetTargetAndFilesOld({"one.xml", name});
    EXPECT_EQ(Make("one.xml"), "") << name;
    SetAge(name, std::chrono::seconds(1));
    EXPECT_EQ(Make("one.xml"), "made\n") << name;
  }
}

}  // namespace
