#include <filesystem>

#include <gmock/gmock.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using test_support::Done;
using test_support::Failed;
using test_support::IsWrongUse;
using test_support::KelprojTest;
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

struct AddCase {
  std::vector<std::string> arguments;
  const char* shown;
};

void PrintTo(const AddCase& c, std::ostream* out) { *out << c.shown; }

class AddedFiles : public Add, public ::testing::WithParamInterface<AddCase> {};

TEST_P(AddedFiles, StandInTheListOfTheirKindWithWhatIsGiven) {
  EXPECT_EQ(Run(GetParam().arguments), Done());
  EXPECT_THAT(Shown(), HasSubstr(GetParam().shown));
}

INSTANTIATE_TEST_SUITE_P(
    Add, AddedFiles,
    ::testing::Values(
        AddCase{{"add", "blinker.xml", "--rtl", "a.v", "b.v", "--hdl-version", "verilog_2001",
                 "--library", "work"},
                "Design files (2)\n  a.v  verilog_2001  work\n  b.v  verilog_2001  work\n"},
        AddCase{{"add", "blinker.xml", "--rtl", "a.v"}, "Design files (1)\n  a.v    default\n"},
        AddCase{{"add", "blinker.xml", "--sim", "a.v", "--hdl-version", "sv_2017", "--library",
                 "bench"},
                "Simulation files (1)\n  a.v  sv_2017  bench\n"},
        AddCase{{"add", "blinker.xml", "--misc", "notes.md"},
                "Miscellaneous files (1)\n  notes.md    default\n"},
        AddCase{{"add", "blinker.xml", "--sdc", "a.sdc"}, "Timing constraint files (1)\n  a.sdc\n"},
        AddCase{{"add", "--sdc", "blinker.xml", "a.sdc"},
                "Timing constraint files (1)\n  a.sdc\n"}));

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

struct RefusedFile {
  std::vector<std::string> arguments;
  const char* reason;
};

void PrintTo(const RefusedFile& refusal, std::ostream* out) { *out << refusal.reason; }

class RefusedAdd : public Add, public ::testing::WithParamInterface<RefusedFile> {};

TEST_P(RefusedAdd, FailsAndLeavesTheFile) {
  ExpectUnchangedBy(GetParam().arguments, Failed(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Add, RefusedAdd,
    ::testing::Values(
        RefusedFile{{"add", "blinker.xml", "a.v"},
                    "one of --rtl, --sim, --misc and --sdc is needed"},
        RefusedFile{{"add", "blinker.xml", "--rtl", "a.v", ""}, "the empty text names no file"},
        RefusedFile{{"add", "blinker.xml", "--misc", "a.v", "--library", "work"},
                    "only --rtl and --sim files have an HDL version and a library"},
        RefusedFile{
            {"add", "blinker.xml", "--sdc", "a.sdc", "notes.md"},
            "\"notes.md\" is no timing constraint file: its name must end in .sdc and not be "
            "that of a directory"},
        RefusedFile{{"set-interface", "blinker.xml", "pins.csv"},
                    "\"pins.csv\" is no interface constraint file: its name must be "
                    "NAME.interface.csv"}));

TEST_F(Add, TwoKindsOrNoPath_IsWrongUse) {
  const std::string before = Read("blinker.xml");
  EXPECT_THAT(Run({"add", "blinker.xml", "--rtl", "--misc", "a.v"}),
              IsWrongUse("kelproj add", {"--rtl", "--misc"}));
  EXPECT_THAT(Run({"add", "blinker.xml", "--rtl"}), IsWrongUse("kelproj add", {"PATH"}));
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Add, InterfaceConstraint_IsSet) {
  EXPECT_EQ(Run({"set-interface", "blinker.xml", "pins.interface.csv"}), Done());
  EXPECT_EQ(Get("blinker.xml", "constraint.interface"), "pins.interface.csv\n");
}

}  // namespace
