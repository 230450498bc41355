#include <filesystem>

#include <gmock/gmock.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::Done;
using test_support::Failed;
using test_support::KelprojTest;
using test_support::WrongArguments;
using ::testing::HasSubstr;

class Add : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    for (const char* name : {"a.v", "b.v", "a.sdc", "pins.interface.csv", "notes.md"}) {
      Write(name, "");
    }
  }

  std::string Shown() const { return Run({"show", "blinker.xml"}).out; }

  void ExpectUnchangedBy(const std::vector<std::string>& arguments,
                         const test_support::Outcome& outcome) const {
    const std::string before = Read("blinker.xml");
    EXPECT_EQ(Run(arguments), outcome);
    EXPECT_EQ(Read("blinker.xml"), before);
  }
};

TEST_F(Add, DesignFiles_HaveTheVersionAndLibraryThatAreGiven) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "b.v", "--hdl-version", "verilog_2001",
                 "--library", "work"}),
            Done());
  EXPECT_THAT(Shown(), HasSubstr("Design files (2)\n"
                                 "  a.v  verilog_2001  work\n"
                                 "  b.v  verilog_2001  work\n"));
}

TEST_F(Add, DesignFileAlone_HasNoVersionAndTheDefaultLibrary) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Design files (1)\n  a.v    default\n"));
}

TEST_F(Add, SimulationFile_HasTheVersionAndLibraryThatAreGiven) {
  EXPECT_EQ(
      Run({"add", "blinker.xml", "--sim", "a.v", "--hdl-version", "sv_2017", "--library", "bench"}),
      Done());
  EXPECT_THAT(Shown(), HasSubstr("Simulation files (1)\n  a.v  sv_2017  bench\n"));
}

TEST_F(Add, MiscellaneousFile_IsAdded) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--misc", "notes.md"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Miscellaneous files (1)\n  notes.md    default\n"));
}

TEST_F(Add, TimingConstraintFile_IsAdded) {
  EXPECT_EQ(Run({"add", "blinker.xml", "--sdc", "a.sdc"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Timing constraint files (1)\n  a.sdc\n"));
}

TEST_F(Add, KindBeforeTheProjectFile_IsTheSame) {
  EXPECT_EQ(Run({"add", "--sdc", "blinker.xml", "a.sdc"}), Done());
  EXPECT_THAT(Shown(), HasSubstr("Timing constraint files (1)\n  a.sdc\n"));
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
  test_support::ProcessSettings elsewhere;
  elsewhere.directory = "/";
  EXPECT_EQ(Run({"add", PathOf("blinker.xml"), "--rtl", "a.v"}, elsewhere), Done());
  EXPECT_THAT(Shown(), HasSubstr("Design files (1)\n  a.v    default\n"));
}

TEST_F(Add, NoKind_IsRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "a.v"},
                    Failed("one of --rtl, --sim, --misc and --sdc is needed"));
}

TEST_F(Add, TwoKinds_AreRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "--misc", "a.v"},
                    WrongArguments("--rtl excludes --misc", "kelproj add"));
}

TEST_F(Add, NoPath_IsRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl"},
                    WrongArguments("PATH is required", "kelproj add"));
}

TEST_F(Add, EmptyPath_IsRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "--rtl", "a.v", ""},
                    Failed("the empty text names no file"));
}

TEST_F(Add, LibraryOfAFileThatHasNone_IsRefused) {
  ExpectUnchangedBy({"add", "blinker.xml", "--misc", "a.v", "--library", "work"},
                    Failed("only --rtl and --sim files have an HDL version and a library"));
}

TEST_F(Add, OneWrongTimingConstraintFile_KeepsTheOthersOut) {
  ExpectUnchangedBy({"add", "blinker.xml", "--sdc", "a.sdc", "notes.md"},
                    Failed("\"notes.md\" is no timing constraint file: its name must end in .sdc "
                           "and not be that of a directory"));
}

TEST_F(Add, InterfaceConstraint_IsSet) {
  EXPECT_EQ(Run({"set-interface", "blinker.xml", "pins.interface.csv"}), Done());
  EXPECT_EQ(Get("blinker.xml", "constraint.interface"), "pins.interface.csv\n");
}

TEST_F(Add, OtherFileAsInterfaceConstraint_IsRefused) {
  ExpectUnchangedBy({"set-interface", "blinker.xml", "pins.csv"},
                    Failed("\"pins.csv\" is no interface constraint file: its name must be "
                           "NAME.interface.csv"));
}

}  // namespace
