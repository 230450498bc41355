// What no command that changes a project file may do, whatever the file is.

#include <algorithm>

#include "tests/kelproj/change_test.h"

namespace {

using namespace test_support;

const Command kChanges[] = {{"set", "blinker.xml", "name", "changed"},
                            {"add", "blinker.xml", "--misc", "blinker.xml"},
                            {"set-interface", "blinker.xml", "pins.interface.csv"},
                            {"format", "blinker.xml", "--no-stamps"}};

INSTANTIATE_TEST_SUITE_P(, Change, testing::ValuesIn(kChanges));

TEST_P(Change, MissingFileOrDirectory_Fails) {
  EXPECT_EQ(Run(GetParam()).status, 2);
  EXPECT_THAT(Names(), IsEmpty());
  std::filesystem::create_directory(PathOf("blinker.xml"));
  EXPECT_EQ(Run(GetParam()).status, 2);
}

TEST_P(Change, FileThatDoesNotLoad_IsNotWritten) {
  MakeProject();
  const std::string whole = Read("blinker.xml");
  const auto with = [&whole](const std::string& element) {
    return std::string(whole).insert(whole.find("</kel:project>"), element);
  };
  for (const std::string& bytes :
       {std::string(), whole.substr(0, 600), with("<kel:floorplan/>"),
        with("<kel:debugger><kel:defmacro name=\"a\" value=\"b\"/></kel:debugger>")}) {
    Write("blinker.xml", bytes);
    EXPECT_EQ(Run(GetParam()).status, 2);
    EXPECT_EQ(Read("blinker.xml"), bytes);
    EXPECT_THAT(Names(), ElementsAre("blinker.xml"));
  }
}

TEST_P(Change, FileThatDoesNotLoad_IsToldWithThePlaceOfTheError) {
  Write("blinker.xml", "<project>\n  <floorplan/>\n</project>\n");
  EXPECT_THAT(Run(GetParam()).err, HasSubstr("blinker.xml:2:3: error: "));
}

TEST_P(Change, FileThatOnlyTheSchemaRefuses_IsWrittenByForceAlone) {
  const std::string bytes = "<project>\n  <device_info/>\n</project>\n";
  Write("blinker.xml", bytes);
  const auto refused = Run(GetParam());
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err, AllOf(StartsWith("blinker.xml:1:10: error: "),
                                 EndsWith("kelproj: error: blinker.xml has errors; it is "
                                          "not changed without --force\n")));
  EXPECT_EQ(Read("blinker.xml"), bytes);
  Command forced = GetParam();
  forced.emplace_back("--force");
  const auto done = Run(forced);
  EXPECT_EQ(done.status, 0);
  EXPECT_THAT(done.err, HasSubstr("blinker.xml:1:10: error: "));
  EXPECT_NE(Read("blinker.xml"), bytes);
}

TEST_P(Change, ParameterThatIsNotKept_IsToldWithItsPlace) {
  Write("blinker.xml",
        "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\">\n  <kel:debugger>\n"
        "    <kel:param name=\"cable\" value=\"\" value_type=\"e_string\"/>\n"
        "  </kel:debugger>\n</kel:project>\n");
  const auto outcome = Run(GetParam());
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr("blinker.xml:3:5: warning: "));
}

TEST_P(Change, MadeTwice_LeavesTheFileAloneTheSecondTime) {
  MakeProject();
  Run(GetParam());
  const std::string before = Read("blinker.xml");
  Run(GetParam());
  EXPECT_EQ(Read("blinker.xml"), before);
}

/// Every command that changes a file, with a project in which there is something to change.
class ChangeOfContents : public KelprojTest, public testing::WithParamInterface<Command> {
 protected:
  void SetUp() override {
    MakeProject();
    for (const char* name : {"a.v", "b.v", "pins.interface.csv"}) Write(name, "");
    Write("part.json", R"({"name": "changed"})");
    ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "b.v"}), Done());
    ASSERT_EQ(Run({"set", "blinker.xml", "info.owner", "M. Ferreira"}), Done());
  }

  // The line of the text that is put before the first element with the name.
  std::size_t Insert(const std::string& text, const std::string& element) const {
    std::string bytes = Read("blinker.xml");
    const std::size_t at = bytes.find("<kel:" + element);
    bytes.insert(at, text + "\n");
    Write("blinker.xml", bytes);
    const auto begin = bytes.begin();
    return static_cast<std::size_t>(
               std::count(begin, begin + static_cast<std::ptrdiff_t>(at), '\n')) +
           1;
  }
};

INSTANTIATE_TEST_SUITE_P(, ChangeOfContents,
                         testing::Values(Command{"set", "blinker.xml", "name", "changed"},
                                         Command{"unset", "blinker.xml", "info.owner"},
                                         Command{"add", "blinker.xml", "--sim", "a.v"},
                                         Command{"remove", "blinker.xml", "a.v"},
                                         Command{"rename", "blinker.xml", "a.v", "c.v"},
                                         Command{"move", "blinker.xml", "--rtl", "a.v", "--last"},
                                         Command{"set-interface", "blinker.xml",
                                                 "pins.interface.csv"},
                                         Command{"apply", "blinker.xml", "part.json"},
                                         Command{"format", "blinker.xml", "--no-stamps"}));

TEST_P(ChangeOfContents, ElementThatALoadDoesNotKnow_IsAnErrorWithItsLineUnlessForced) {
  const std::string place =
      "blinker.xml:" + std::to_string(Insert("<kel:floorplan/>", "device_info")) + ":";
  const std::string before = Read("blinker.xml");
  Command command = GetParam();
  const Outcome refused = Run(command);
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err,
              AllOf(HasSubstr(place), EndsWith("kelproj: error: blinker.xml has errors; it is not "
                                               "changed without --force\n")));
  EXPECT_EQ(Read("blinker.xml"), before);
  command.emplace_back("--force");
  const Outcome forced = Run(command);
  EXPECT_EQ(forced.status, 0);
  EXPECT_THAT(forced.err, HasSubstr(place));
  EXPECT_THAT(Read("blinker.xml"), Not(HasSubstr("floorplan")));
}

TEST_P(ChangeOfContents, WhatASaveDrops_IsAWarningWithItsLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"<!-- who knows why -->", "the comment is not kept"},
      {"<kel:security/>", "<security> is not kept"},
      {"<kel:package_info/>", "<package_info> is deprecated and ignored"},
      {"<kel:synthesis><kel:param name=\"goal\" value=\"\" "
       "value_type=\"e_string\"/></kel:synthesis>",
       "parameter \"goal\" is ignored"}};
  const std::string former = Read("blinker.xml");
  for (const auto& [text, warning] : cases) {
    Write("blinker.xml", former);
    const std::size_t line = Insert(text, "device_info");
    const Outcome outcome = Run(GetParam());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, AllOf(StartsWith("blinker.xml:" + std::to_string(line) + ":"),
                                   HasSubstr(std::string(": warning: ") + warning)));
    EXPECT_THAT(Read("blinker.xml"), Not(HasSubstr(text)));
  }
}

TEST_P(ChangeOfContents, MisspeltAttribute_IsAnErrorWithItsLineUnlessForced) {
  const std::string place =
      "blinker.xml:" +
      std::to_string(Insert("<kel:ip_info><kel:ip instance_name=\"u\" path=\"p.ip\" pfad=\"p\"/>"
                            "</kel:ip_info>",
                            "ip_info")) +
      ":";
  Command command = GetParam();
  EXPECT_EQ(Run(command).status, 2);
  command.emplace_back("--force");
  const Outcome forced = Run(command);
  EXPECT_EQ(forced.status, 0);
  EXPECT_THAT(forced.err, AllOf(HasSubstr(place), HasSubstr("pfad")));
  EXPECT_THAT(Read("blinker.xml"), Not(HasSubstr("pfad")));
}

TEST_F(KelprojTest, FileOfAnotherEnding_IsRefusedWithOneMessage) {
  MakeProject();
  const std::string bytes = Read("blinker.xml");
  Write("blinker.txt", bytes);
  const Outcome refused = Failed("blinker.txt: the name of a project file ends in .xml");
  EXPECT_EQ(Run({"set", "blinker.txt", "name", "q"}), refused);
  EXPECT_EQ(Run({"set", "blinker.txt", "name", "q", "--force"}), refused);
  EXPECT_EQ(Run({"get", "blinker.txt", "name"}), refused);
  EXPECT_EQ(Run({"format", "blinker.txt"}), refused);
  EXPECT_EQ(Read("blinker.txt"), bytes);
}

TEST_F(KelprojTest, EmptyFile_IsRefusedWithOneMessage) {
  Write("blinker.xml", "");
  const Outcome refused = Failed("blinker.xml is empty");
  EXPECT_EQ(Run({"set", "blinker.xml", "name", "q"}), refused);
  EXPECT_EQ(Run({"set", "blinker.xml", "name", "q", "--force"}), refused);
  EXPECT_EQ(Run({"get", "blinker.xml", "name"}), refused);
  EXPECT_EQ(Run({"format", "blinker.xml", "--check"}), refused);
}

TEST_F(KelprojTest, ChangeThatChangesNothing_TellsOfNothingThatItWouldDrop) {
  MakeProject();
  Write("blinker.xml", Read("blinker.xml") + "<!-- the end -->\n");
  ExpectUnchangedBy({"set", "blinker.xml", "name", "blinker"}, Done());
}

TEST_F(KelprojTest, ParametersInAnyOrder_StandInThatOfTheirNames) {
  MakeProject();
  for (const char* name : {"zeta", "alpha", "mid"}) {
    Run({"set", "blinker.xml", std::string("synthesis.param.") + name, "1"});
  }
  const std::string bytes = Read("blinker.xml");
  EXPECT_LT(bytes.find("alpha"), bytes.find("mid"));
  EXPECT_LT(bytes.find("mid"), bytes.find("zeta"));
}

}  // namespace
