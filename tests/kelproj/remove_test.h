#pragma once

#include "tests/kelproj/kelproj_test.h"

namespace test_support {

class Remove : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    std::filesystem::create_directories(PathOf("rtl"));
    std::filesystem::create_directories(PathOf("ip/pll"));
    for (const char* name : {"a.v", "rtl/a.v", "rtl/b.v", "clocks.sdc", "floor.isf", "notes.md",
                             "ip/pll/pll.ip", "ip/pll/pll.v"}) {
      Write(name, "");
    }
    ASSERT_EQ(Run({"add", "blinker.xml", "--rtl", "a.v", "rtl/a.v", "rtl/b.v"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--sim", "rtl/b.v", "a.v"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--misc", "notes.md"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--sdc", "clocks.sdc"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--isf", "floor.isf"}), Done());
    ASSERT_EQ(Run({"add", "blinker.xml", "--ip", "u_pll", "--path", "ip/pll/pll.ip", "ip/pll/pll.v",
                   "rtl/b.v"}),
              Done());
  }
};

}  // namespace test_support
