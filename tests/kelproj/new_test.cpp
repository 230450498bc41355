#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class New : public KelprojTest {};

TEST_F(New, NameAndFile_CreatesAProjectOfThatNameWithTheDefaultsOfTheLibrary) {
  MakeProject();
  EXPECT_EQ(Get("blinker.xml", "name"), "blinker\n");
  EXPECT_EQ(Get("blinker.xml", "device.family"), "Varel\n");
  EXPECT_EQ(Get("blinker.xml", "device.device"), "Q8R25\n");
}

TEST_F(New, NameOfACommand_IsTheNameOfTheProject) {
  EXPECT_EQ(Run({"new", "show", "--output", "show.xml"}), Done());
  EXPECT_EQ(Get("show.xml", "name"), "show\n");
}

TEST_F(New, Options_SetTheirValues) {
  EXPECT_EQ(Run({"new", "mixer", "-o", "mixer.xml", "--family", "Varel II", "--device", "R40",
                 "--timing-model", "slow", "--top", "mixer_top"}),
            Done());
  EXPECT_EQ(Get("mixer.xml", "device.family"), "Varel II\n");
  EXPECT_EQ(Get("mixer.xml", "device.device"), "R40\n");
  EXPECT_EQ(Get("mixer.xml", "device.timing_model"), "slow\n");
  EXPECT_EQ(Get("mixer.xml", "design.top_module"), "mixer_top\n");
}

TEST_F(New, FileThatIsThere_IsKept) {
  Write("blinker.xml", "precious");
  EXPECT_EQ(Run({"new", "blinker", "-o", "blinker.xml"}), Failed("blinker.xml exists already"));
  EXPECT_EQ(Read("blinker.xml"), "precious");
}

TEST_F(New, FileThatWouldNotLoadForItsNameOrHasNoDirectory_IsNotCreated) {
  EXPECT_EQ(Run({"new", "blinker", "-o", "blinker.prj"}),
            Failed("blinker.prj: the name of a project file ends in .xml"));
  EXPECT_EQ(Run({"new", "blinker", "-o", "work/blinker.xml"}),
            Failed("there is no directory " + PathOf("work")));
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(New, TextThatXmlCannotHold_CreatesNothing) {
  EXPECT_EQ(Run({"new", "blink\x02", "-o", "blinker.xml"}).status, 2);
  EXPECT_THAT(Names(), IsEmpty());
}

}  // namespace
