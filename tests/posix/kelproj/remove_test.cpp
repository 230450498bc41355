#include "tests/kelproj/remove_test.h"

namespace {

using namespace test_support;

TEST_F(Remove, OtherSpellingOfAName_MeansTheSameFile) {
  std::filesystem::create_directory_symlink("rtl", PathOf("sources"));
  for (const std::string& name :
       {std::string("./rtl//../rtl/b.v"), PathOf("rtl/b.v"), std::string("sources/b.v")}) {
    const std::string before = Read("blinker.xml");
    EXPECT_EQ(Run({"remove", "blinker.xml", name}), Done()) << name;
    EXPECT_THAT(Listed("design.files"), ElementsAre("a.v", "rtl/a.v"));
    Write("blinker.xml", before);
  }
}

}  // namespace
