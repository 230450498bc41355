#pragma once

#include "tests/kelproj/kelproj_test.h"

namespace test_support {

class Add : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    std::filesystem::create_directories(PathOf("rtl"));
    std::filesystem::create_directories(PathOf("ip/pll"));
    for (const char* name : {"a.v", "b.v", "a.sdc", "a.isf", "pins.interface.csv", "notes.md",
                             "rtl/d.v", "rtl/e.v", "ip/pll/pll.ip", "ip/pll/pll.v"}) {
      Write(name, "");
    }
  }

  std::string Table() const { return Run({"show", "blinker.xml"}).out; }
};

}  // namespace test_support
