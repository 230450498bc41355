#include <nlohmann/json.hpp>

#include "tests/kelproj/list_test.h"
#include "tests/kelproj/listed_design.h"

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

}  // namespace
