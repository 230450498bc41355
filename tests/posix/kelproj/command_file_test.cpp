// What other programs make of what is printed for them.

#include <chrono>

#include "tests/kelproj/listed_design.h"

namespace {

using namespace test_support;

/// A program that reads a form of command files.
struct Reader {
  const char* format;
  std::vector<std::string> command;  ///< Before the name of the command file.
};

void PrintTo(const Reader& reader, std::ostream* out) { *out << reader.command.front(); }

const Reader kVerilator = {"f", {"verilator", "--lint-only", "-Wall", "-Wno-DECLFILENAME", "-f"}};
const Reader kIverilog = {"iverilog", {"iverilog", "-g2012", "-t", "null", "-c"}};

class DesignForPrograms : public ListedDesign {
 protected:
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

  // The same with the file, which has a module.
  void MakeProjectOfFile(const std::string& name) const {
    WriteFile(PathOf(name), "module one;\nendmodule\n");
    MakeProjectOfName(name);
  }
};

class CommandFile : public DesignForPrograms, public testing::WithParamInterface<Reader> {
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

TEST_F(DesignForPrograms, MacroValues_ReachTheLinterAsTheyAre) {
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

class ListForMake : public DesignForPrograms {
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
