// What is the same on every system.

#include "testing/shipped_files.h"
#include "testing/threads.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class OnEverySystem : public KelprojTest {
 protected:
  Outcome Run(const std::vector<std::string>& arguments,
              const ProcessSettings& settings = {}) const {
    return RunAsProcess(arguments, settings);
  }
};

TEST_F(OnEverySystem, Names_HaveAnyCharactersAndAreStoredAndPrintedAsGiven) {
  for (const std::string name : {"ä", "漢字", "¥ 100%", "two words", "🐟", "a;b,c"}) {
    SCOPED_TRACE(name);
    const std::string file = name + ".xml";
    const std::string source = "src " + name + "/" + name + ".v";
    ASSERT_EQ(Run({"new", name, "-o", file, "--top", name}), Done());
    EXPECT_THAT(Names(), Contains(file));
    std::filesystem::create_directory(NativePath(PathOf("src " + name)));
    Write(source, "");
    EXPECT_EQ(Run({"add", file, "--rtl", source}), Done());
    EXPECT_EQ(Run({"list", file}), Printed(source + "\n"));
    EXPECT_EQ(Run({"check", file, "--files"}), Done());
    EXPECT_EQ(Run({"list", file, "--absolute"}), Printed(PathOf(source) + "\n"));
    EXPECT_EQ(Get(file, "design.top_module"), name + "\n");
    EXPECT_EQ(Run({"remove", file, "./" + source}), Done());
    EXPECT_EQ(Run({"list", file}), Done());
  }
}

TEST_F(OnEverySystem, CanonicalForm_HasTheSameBytes) {
  EXPECT_EQ(Run({"format", "--stdout", SampleProject()}),
            Printed(ReadFile(SourcePath("tests/save/canonical_soc_demo.xml"))));
}

TEST_F(OnEverySystem, WhatIsWritten_HasNoCarriageReturns) {
  MakeProject();
  ASSERT_EQ(Run({"set", "blinker.xml", "info.owner", "lab"}), Done());
  EXPECT_THAT(Read("blinker.xml"), Not(HasSubstr("\r")));
  for (const char* command : {"show", "list", "check"}) {
    EXPECT_THAT(Run({command, "blinker.xml"}).out, Not(HasSubstr("\r")));
  }
  EXPECT_THAT(Run({"show"}).err, Not(HasSubstr("\r")));
}

TEST_F(OnEverySystem, StandardInput_IsReadAsItIs) {
  MakeProject();
  ProcessSettings settings;
  settings.input = Read("blinker.xml");
  EXPECT_EQ(Run({"format", "-"}, settings), Printed(settings.input));
}

TEST_F(OnEverySystem, TwoLoopsOfAHundredChanges_LoseNothing) {
  constexpr int kLoops = 2;
  constexpr int kChangesOfLoop = 100;
  MakeProject();
  InThreads(kLoops, [&](int loop) {
    for (int i = 0; i < kChangesOfLoop; ++i) {
      const std::string name = std::to_string(loop) + "_" + std::to_string(i) + ".txt";
      EXPECT_EQ(Run({"add", "blinker.xml", "--misc", name}).status, 0);
    }
  });
  EXPECT_THAT(Listed("misc.files"), SizeIs(kLoops * kChangesOfLoop));
  EXPECT_THAT(Names(), ElementsAre("blinker.xml"));
}

}  // namespace
