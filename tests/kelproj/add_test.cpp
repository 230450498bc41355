#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class Add : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    for (const char* name : {"a.v", "b.v", "a.sdc", "a.isf", "pins.interface.csv", "notes.md"}) {
      Write(name, "");
    }
  }

  std::string Shown() const { return Run({"show", "blinker.xml"}).out; }
};

TEST_F(Add, Files_StandInTheListOfTheirKindWithWhatIsGiven) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"blinker.xml", "--rtl", "a.v", "b.v", "--hdl-version", "verilog_2001", "--library", "work"},
       "Design files (2)\n  a.v  verilog_2001  work\n  b.v  verilog_2001  work\n"},
      {{"blinker.xml", "--rtl", "a.v"}, "Design files (1)\n  a.v    default\n"},
      {{"blinker.xml", "--sim", "a.v", "--hdl-version", "sv_2017", "--library", "bench"},
       "Simulation files (1)\n  a.v  sv_2017  bench\n"},
      {{"blinker.xml", "--misc", "notes.md"}, "Miscellaneous files (1)\n  notes.md    default\n"},
      {{"blinker.xml", "--sdc", "a.sdc"}, "Timing constraint files (1)\n  a.sdc\n"},
      {{"blinker.xml", "--isf", "a.isf"}, "ISF files (1)\n  a.isf\n"},
      {{"--sdc", "blinker.xml", "a.sdc"}, "Timing constraint files (1)\n  a.sdc\n"}};
  for (auto [arguments, shown] : cases) {
    std::filesystem::remove(PathOf("blinker.xml"));
    MakeProject();
    arguments.insert(arguments.begin(), "add");
    EXPECT_EQ(Run(arguments), Done());
    EXPECT_THAT(Shown(), HasSubstr(shown));
  }
}

TEST_F(Add, FilesBehindOthers_KeepTheirOrder) {
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", "b.v"}), Done());
  ASSERT_EQ(Run({"add", "blinker.xml", "--misc", "a.v", "b.v"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Miscellaneous files (3)\n"
                                 "  b.v    default\n"
                                 "  a.v    default\n"
                                 "  b.v    default\n"));
}

TEST_F(Add, NamesWithBlanksQuotesBracketsAndUmlauts_AreKeptAsTheyAre) {
  const std::vector<std::string> names = {"ein \"Stück\" Text's.md", "[a,b]", "{}", "%%", "-x"};
  for (const std::string& name : names) Write(name, "");
  EXPECT_EQ(
      Run({"add", "blinker.xml", "--misc", names[0], names[1], names[2], names[3], "--", names[4]}),
      Done());
  EXPECT_THAT(Shown(), HasSubstr("Miscellaneous files (5)\n"
                                 "  ein \"Stück\" Text's.md    default\n"
                                 "  [a,b]                    default\n"
                                 "  {}                       default\n"
                                 "  %%                       default\n"
                                 "  -x                       default\n"));
}

TEST_F(Add, FileThatDoesNotExist_IsAddedWithAWarning) {
  const auto outcome = Run({"add", "blinker.xml", "--rtl", "rtl/c.v"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "kelproj: warning: \"rtl/c.v\" does not exist in " + Directory() + "\n");
  EXPECT_THAT(Shown(), HasSubstr("Design files (1)\n  rtl/c.v    default\n"));
}

TEST_F(Add, FromAnotherDirectory_NamesStayRelativeToTheProject) {
  EXPECT_EQ(Run({"add", PathOf("blinker.xml"), "--rtl", "a.v"}, {"/"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Design files (1)\n  a.v    default\n"));
}

TEST_F(Add, RefusedFile_FailsAndLeavesTheProject) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"add", "blinker.xml", "a.v"}, "one of --rtl, --sim, --misc, --sdc and --isf is needed"},
      {{"add", "blinker.xml", "--rtl", "a.v", ""}, "the empty text names no file"},
      {{"add", "blinker.xml", "--misc", "a.v", "--library", "work"},
       "only --rtl and --sim files have an HDL version and a library"},
      {{"add", "blinker.xml", "--sdc", "a.sdc", "notes.md"},
       "\"notes.md\" is no timing constraint file: its name must end in .sdc and not be that of "
       "a directory"},
      {{"set-interface", "blinker.xml", "pins.csv"},
       "\"pins.csv\" is no interface constraint file: its name must be NAME.interface.csv"}};
  for (const auto& [arguments, reason] : cases) ExpectUnchangedBy(arguments, Failed(reason));
}

TEST_F(Add, TwoKindsOrNoPath_IsWrongUse) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "--misc", "a.v"},
                    IsWrongUse("kelproj add", {"--rtl", "--misc"}));
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl"}, IsWrongUse("kelproj add", {"PATH"}));
}

TEST_F(Add, InterfaceConstraint_IsSet) {
  EXPECT_EQ(Run({"set-interface", "blinker.xml", "pins.interface.csv"}), Done());
  EXPECT_EQ(Get("blinker.xml", "constraint.interface"), "pins.interface.csv\n");
}

}  // namespace
