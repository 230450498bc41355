#include <regex>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

std::string With(const std::string& text, const char* pattern, const char* replacement) {
  return std::regex_replace(text, std::regex(pattern), replacement);
}

class Format : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    ASSERT_EQ(Run({"set", "blinker.xml", "info.owner", "a", "info.zone", "b"}), Done());
    canonical_ = Read("blinker.xml");
    // Attributes in an order of its own, and stamps of the past.
    unformatted_ = With(canonical_, "owner=\"a\"(.*?)zone=\"b\"", "zone=\"b\"$1owner=\"a\"");
    unformatted_ = With(unformatted_, "sw_version=\"[^\"]*\"", "sw_version=\"0.0.9\"");
    unformatted_ = With(unformatted_, "last_change_date=\"[^\"]*\"", "last_change_date=\"past\"");
    Write("other.xml", unformatted_);
  }

  Outcome RunOn(const std::string& input, const std::vector<std::string>& arguments) const {
    ProcessSettings settings;
    settings.input = input;
    return Run(arguments, settings);
  }

  std::string canonical_;
  std::string unformatted_;
};

TEST_F(Format, File_GetsTheCanonicalFormAndKeepsItsContentsAndStamps) {
  std::filesystem::copy_file(PathOf("other.xml"), PathOf("former.xml"));
  EXPECT_EQ(Run({"format", "other.xml"}), Done());
  const std::string bytes = Read("other.xml");
  EXPECT_LT(bytes.find("owner="), bytes.find("zone="));
  EXPECT_EQ(Run({"diff", "former.xml", "other.xml"}), Done());
  EXPECT_EQ(Get("other.xml", "sw_version"), "0.0.9\n");
  EXPECT_EQ(Get("other.xml", "last_change_date"), "past\n");
}

TEST_F(Format, FileInTheForm_IsNotWritten) {
  const auto before = std::filesystem::last_write_time(PathOf("blinker.xml"));
  EXPECT_EQ(Run({"format", "blinker.xml"}), Done());
  EXPECT_EQ(Read("blinker.xml"), canonical_);
  EXPECT_EQ(std::filesystem::last_write_time(PathOf("blinker.xml")), before);
}

TEST_F(Format, SavedByAnyChange_IsInTheForm) {
  ASSERT_EQ(Run({"set", "other.xml", "info.desk", "4"}), Done());
  EXPECT_EQ(Run({"format", "--check", "other.xml"}), Done());
}

TEST_F(Format, Twice_ChangesNothingMore) {
  ASSERT_EQ(Run({"format", "other.xml"}), Done());
  const std::string once = Read("other.xml");
  EXPECT_EQ(Run({"format", "other.xml"}), Done());
  EXPECT_EQ(Read("other.xml"), once);
}

TEST_F(Format, Check_NamesTheFilesThatAreNotInTheFormAndWritesNone) {
  EXPECT_EQ(Run({"format", "--check", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"format", "--check", "other.xml", "blinker.xml", "./other.xml"}),
            AnsweredNo("other.xml\n./other.xml\n"));
  EXPECT_EQ(Read("other.xml"), unformatted_);
}

TEST_F(Format, CheckAfterFormat_NamesNone) {
  ASSERT_EQ(Run({"format", "other.xml", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"format", "--check", "other.xml", "blinker.xml"}), Done());
}

TEST_F(Format, ToStandardOutput_LeavesTheFile) {
  const Outcome outcome = Run({"format", "--stdout", "other.xml"});
  EXPECT_EQ(Read("other.xml"), unformatted_);
  ASSERT_EQ(Run({"format", "other.xml"}), Done());
  EXPECT_EQ(outcome, Printed(Read("other.xml")));
}

TEST_F(Format, WithoutStamps_HasThemNotAndSaysTheSame) {
  EXPECT_EQ(Run({"format", "--no-stamps", "blinker.xml"}), Done());
  EXPECT_THAT(Read("blinker.xml"),
              AllOf(Not(HasSubstr("sw_version")), Not(HasSubstr("last_change_date"))));
  Write("former.xml", canonical_);
  EXPECT_EQ(Run({"diff", "former.xml", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"check", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"format", "--check", "--no-stamps", "blinker.xml"}), Done());
  EXPECT_EQ(Run({"format", "--check", "--no-stamps", "former.xml"}), AnsweredNo("former.xml\n"));
}

TEST_F(Format, StandardInput_GoesToStandardOutputInTheForm) {
  EXPECT_EQ(RunOn(canonical_, {"format", "-"}), Printed(canonical_));
  ASSERT_EQ(Run({"format", "--no-stamps", "other.xml"}), Done());
  EXPECT_EQ(RunOn(unformatted_, {"format", "--no-stamps", "-"}), Printed(Read("other.xml")));
}

TEST_F(Format, SavesOfTheSameContents_AreTheSameWithoutStamps) {
  const Outcome before = RunOn(canonical_, {"format", "--no-stamps", "-"});
  ASSERT_EQ(Run({"set", "blinker.xml", "name", "other"}), Done());
  ASSERT_EQ(Run({"set", "blinker.xml", "name", "blinker"}), Done());
  EXPECT_EQ(RunOn(Read("blinker.xml"), {"format", "--no-stamps", "-"}), before);
}

TEST_F(Format, StandardInputInTheForm_PassesTheCheck) {
  EXPECT_EQ(RunOn(canonical_, {"format", "--check", "-"}), Done());
  EXPECT_EQ(RunOn(unformatted_, {"format", "--check", "-"}), AnsweredNo("-\n"));
}

TEST_F(Format, StandardInputThatDoesNotLoad_PrintsNothingAndFails) {
  EXPECT_EQ(RunOn("", {"format", "--no-stamps", "-"}), Failed("standard input is empty"));
  for (const std::string& input :
       {std::string("no project"), canonical_.substr(0, canonical_.size() / 2)}) {
    const Outcome outcome = RunOn(input, {"format", "--no-stamps", "-"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err,
                AllOf(StartsWith("standard input:"),
                      EndsWith("kelproj: error: standard input has errors; it is not changed "
                               "without --force\n")));
  }
}

TEST_F(Format, OneBadFileOfSeveral_DoesNotKeepTheOthersFromTheirForm) {
  Write("broken.xml", "<project>");
  const Outcome outcome = Run({"format", "missing.xml", "broken.xml", "other.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("kelproj: error: missing.xml does not exist\n"),
                                 HasSubstr("\nkelproj: error: broken.xml has errors")));
  EXPECT_EQ(Read("broken.xml"), "<project>");
  EXPECT_EQ(Run({"format", "--check", "other.xml"}), Done());
}

TEST_F(Format, StandardInputWithAName_IsCalledSoInMessages) {
  const Outcome outcome = RunOn("<broken", {"format", "-", "--path", "hw/soc.xml"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, AllOf(StartsWith("hw/soc.xml:1:"),
                                 EndsWith("hw/soc.xml has errors; it is not changed without "
                                          "--force\n")));
  EXPECT_THAT(Run({"format", "blinker.xml", "--path", "hw/soc.xml"}),
              IsWrongUse("kelproj format", {"--path requires -"}));
}

}  // namespace
