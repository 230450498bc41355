#pragma once

#include "tests/kelproj/kelproj_test.h"

namespace test_support {

/// Merges what was made of base.xml in ours.xml and theirs.xml.
class Merge : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject("base.xml");
    Change({"set", "base.xml", "device.device", "Q8R25"});
    Change({"add", "base.xml", "--misc", "notes.md"});
    Write("ours.xml", Read("base.xml"));
    Write("theirs.xml", Read("base.xml"));
  }

  void Change(const std::vector<std::string>& arguments) const {
    ASSERT_EQ(Run(arguments).status, 0);
  }

  void ChangeBothWithoutConflict() const {
    Change({"set", "ours.xml", "device.device", "Q8R40"});
    Change({"add", "ours.xml", "--sdc", "clocks.sdc"});
    Change({"set", "theirs.xml", "synthesis.param.goal", "speed"});
    Change({"add", "theirs.xml", "--sdc", "pins.sdc"});
  }

  void ChangeBothToConflict() const {
    Change({"set", "ours.xml", "device.device", "Q8R40"});
    Change({"set", "theirs.xml", "device.device", "Q8R60"});
    Change({"set", "theirs.xml", "info.board", "Tern"});
  }

  // At the end of the project.
  void InsertElement(const std::string& file, const std::string& element) const {
    std::string text = Read(file);
    Write(file, text.insert(text.find("</kel:project>"), element));
  }

  Outcome RunMerge(std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"merge", "base.xml", "ours.xml", "theirs.xml"});
    return Run(options);
  }

  // What "diff" prints of two files, without its head.
  std::string Differences(const std::string& before, const std::string& after) const {
    const std::string head = "--- " + before + "\n+++ " + after + "\n";
    const std::string printed = Run({"diff", before, after}).out;
    return printed.compare(0, head.size(), head) == 0 ? printed.substr(head.size()) : printed;
  }

  static std::string Conflict(const std::string& name, const std::string& lines) {
    return "kelproj: error: " + name + ": 1 conflict (base / ours / theirs); ours is kept\n" +
           lines;
  }
};

/// Merges that end in trouble: nothing is printed, and the output stays as it is.
class MergeTrouble : public Merge {
 protected:
  void ExpectTrouble(const std::vector<std::string>& files, const std::string& reason) const {
    Write("out.xml", "what was there");
    std::vector<std::string> arguments = {"merge", "-o", "out.xml"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, EndsWith("kelproj: error: " + reason + "\n"));
    EXPECT_EQ(Read("out.xml"), "what was there");
  }
};

}  // namespace test_support
